// SPDX-License-Identifier: MIT
#include "src/util/CPointerList.h"

#include "tests/support/ErrorOf.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <sys/resource.h>
#include <vector>

using test::ErrorOf;

#ifdef __SANITIZE_ADDRESS__
constexpr bool kAddressSanitizer = true;
#else
constexpr bool kAddressSanitizer = false;
#endif

namespace
{

// Tells its counter when it is deleted, through the virtual destructor.
struct Item {
    explicit Item(int* counter) : deleted(counter) {}
    virtual ~Item() { ++*deleted; }
    int* deleted;
};
struct DerivedItem : Item {
    explicit DerivedItem(int* counter, int* ownCounter) : Item(counter), own(ownCounter) {}
    ~DerivedItem() override { ++*own; }
    int* own;
};

} // namespace

TEST(PointerList, ANewOneIsEmptyAndHasNoSlots)
{
    const CPointerList<int*> list;
    EXPECT_EQ(list.items, nullptr);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.capacity, 0);
}

TEST(PointerList, KeepsItsFieldsInTheirOrder)
{
    const CPointerList<int*> list;
    const void* const items = &list.items;
    EXPECT_TRUE(std::less<>()(items, &list.count));
    EXPECT_TRUE(std::less<>()(&list.count, &list.capacity));
}

TEST(PointerList, EnsuresTheNextMultipleOfFourAbove)
{
    const std::pair<SInt32, SInt32> expected[] = {{0, 4},  {3, 4},  {4, 8},      {7, 8},
                                                  {8, 12}, {-1, 4}, {999, 1000}, {1000, 1004}};
    for (const auto& [n, capacity] : expected) {
        CPointerList<int*> list;
        list.EnsureSpace(n);
        EXPECT_EQ(list.capacity, capacity) << n;
    }
}

TEST(PointerList, EnsuringTheCapacityItHasChangesNothing)
{
    CPointerList<int*> list;
    list.EnsureSpace(7);
    int** const block = list.items;
    list.EnsureSpace(5);
    EXPECT_EQ(list.capacity, 8);
    EXPECT_EQ(list.items, block);
}

TEST(PointerList, EnsuringLessShrinksIt)
{
    CPointerList<int*> list;
    list.EnsureSpace(7);
    list.EnsureSpace(2);
    EXPECT_EQ(list.capacity, 4);
}

TEST(PointerList, KeepsItsItemsWhenItGrows)
{
    std::vector<int> values(100);
    CPointerList<int*> list;
    for (int& value : values)
        list.Append(&value);
    for (SInt32 index = 0; index < 100; ++index)
        EXPECT_EQ(list[index], &values[static_cast<std::size_t>(index)]);
}

TEST(PointerList, GrowsByFourSlotsAtATime)
{
    int value = 0;
    CPointerList<int*> list;
    std::vector<SInt32> capacities;
    for (int step = 0; step < 9; ++step) {
        list.Append(&value);
        capacities.push_back(list.capacity);
    }
    EXPECT_EQ(capacities, (std::vector<SInt32>{4, 4, 4, 4, 8, 8, 8, 8, 12}));
}

TEST(PointerList, LosesItsItemsBeyondASmallerCapacityWithoutTouchingThem)
{
    int values[6] = {};
    CPointerList<int*> list;
    for (int& value : values)
        list.Append(&value);
    list.EnsureSpace(2);
    EXPECT_EQ(list.count, 6);
    EXPECT_EQ(list[3], &values[3]);
    EXPECT_EQ(ErrorOf([&] { list[4]; }), paramErr);
    list.EnsureSpace(7);
    EXPECT_EQ(list[3], &values[3]);
    EXPECT_EQ(list[4], nullptr);
}

TEST(PointerList, RefusesAnIndexOutsideIt)
{
    int value = 0;
    CPointerList<int*> list;
    list.Append(&value);
    EXPECT_EQ(ErrorOf([&] { list[0]; }), noErr);
    EXPECT_EQ(ErrorOf([&] { list[1]; }), paramErr);
    EXPECT_EQ(ErrorOf([&] { list[-1]; }), paramErr);
}

TEST(PointerList, AnItemCanBeReplacedThroughItsIndex)
{
    int value = 0;
    CPointerList<int*> list;
    list.Append(&value);
    list[0] = nullptr;
    EXPECT_EQ(list.items[0], nullptr);
    EXPECT_EQ(list.count, 1);
}

TEST(PointerList, ClearingWithoutDeletionLeavesTheItemsAlive)
{
    int deleted = 0;
    Item item(&deleted);
    CPointerList<Item*> list;
    list.Append(&item);
    list.Clear(false);
    EXPECT_EQ(deleted, 0);
    EXPECT_EQ(list.count, 0);
}

TEST(PointerList, ClearingWithDeletionDeletesEachItemOnceThroughItsDestructor)
{
    int deleted = 0;
    int derivedDeleted = 0;
    CPointerList<Item*> list;
    list.Append(new Item(&deleted));
    list.Append(nullptr);
    list.Append(new DerivedItem(&deleted, &derivedDeleted));
    list.Clear(true);
    EXPECT_EQ(deleted, 2);
    EXPECT_EQ(derivedDeleted, 1);
    for (SInt32 slot = 0; slot < list.capacity; ++slot)
        EXPECT_EQ(list.items[slot], nullptr) << slot;
    list.Clear(true);
    EXPECT_EQ(deleted, 2);
}

TEST(PointerList, ClearingEmptiesTheSlotsAndKeepsThem)
{
    int value = 0;
    CPointerList<int*> list;
    for (int step = 0; step < 5; ++step)
        list.Append(&value);
    int** const block = list.items;
    list.Clear(false);
    EXPECT_EQ(list.capacity, 8);
    EXPECT_EQ(list.items, block);
    for (int slot = 0; slot < 5; ++slot)
        EXPECT_EQ(list.items[slot], nullptr);
}

TEST(PointerList, IsUnchangedIfItsSizeCannotBeCounted)
{
    int value = 0;
    CPointerList<int*> list;
    list.Append(&value);
    for (const SInt32 n : {INT32_MAX, -4, -8, INT32_MIN})
        EXPECT_EQ(ErrorOf([&] { list.EnsureSpace(n); }), memFullErr) << n;
    EXPECT_EQ(list.capacity, 4);
    EXPECT_EQ(list[0], &value);
}

TEST(PointerList, IsUnchangedIfThereIsNoMemory)
{
    if (kAddressSanitizer)
        GTEST_SKIP() << "the sanitizer reserves more address space than could be limited";
    int value = 0;
    CPointerList<int*> list;
    list.Append(&value);
    rlimit before{};
    getrlimit(RLIMIT_AS, &before);
    rlimit tight = before;
    tight.rlim_cur = std::min<rlim_t>(rlim_t{1} << 31, before.rlim_max);
    setrlimit(RLIMIT_AS, &tight);
    const OSErr err = ErrorOf([&] { list.EnsureSpace(1000 * 1000 * 1000); });
    setrlimit(RLIMIT_AS, &before);
    EXPECT_EQ(err, memFullErr);
    EXPECT_EQ(list.capacity, 4);
    EXPECT_EQ(list[0], &value);
}

TEST(PointerList, BehavesLikeAStandardVectorUnderRandomOperations)
{
    std::vector<int> values(64);
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        CPointerList<int*> list;
        std::vector<int*> model;
        for (int step = 0; step < 200; ++step) {
            const auto choice = random() % 100;
            int* item = &values[random() % values.size()];
            const std::size_t place = model.empty() ? 0 : random() % model.size();
            if (choice < 60) {
                list.Append(item);
                model.push_back(item);
            } else if (choice < 80 && !model.empty()) {
                list[static_cast<SInt32>(place)] = item;
                model[place] = item;
            } else if (choice < 98) {
                list.EnsureSpace(list.count + static_cast<SInt32>(random() % 20));
            } else {
                list.Clear(false);
                model.clear();
            }
            ASSERT_EQ(std::vector<int*>(list.items, list.items + list.count), model);
            ASSERT_EQ(list.capacity % 4, 0);
        }
    }
}
