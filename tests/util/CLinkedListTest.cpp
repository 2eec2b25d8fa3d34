// SPDX-License-Identifier: MIT
#include "src/util/CLinkedList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <new>
#include <random>
#include <vector>

// The address sanitizer has its own operators, which must not be mixed with others.
#ifndef __SANITIZE_ADDRESS__
#define COUNTS_DELETIONS

namespace
{

int gDeletions = 0;

} // namespace

// All of this program's; the tests below look only at the difference across one call.
void* operator new(std::size_t size)
{
    if (void* block = std::malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    ++gDeletions;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

#endif

namespace
{

// Items to point to; only their addresses matter.
std::array<char, 8> gItems;
void* const kA = &gItems[0];
void* const kB = &gItems[1];
void* const kC = &gItems[2];
void* const kD = &gItems[3];

using Items = std::vector<void*>;

Items RestOf(CLinkedList& list)
{
    Items rest;
    while (void* item = list.NextItem())
        rest.push_back(item);
    return rest;
}

Items AllOf(CLinkedList& list)
{
    list.ResetToFirst();
    return RestOf(list);
}

void Append(CLinkedList& list, const Items& items)
{
    for (void* item : items)
        list.AppendItem(item);
}

} // namespace

TEST(LinkedList, AnEmptyOneEndsAtOnce)
{
    CLinkedList list;
    list.ResetToFirst();
    EXPECT_EQ(list.NextItem(), nullptr);
}

TEST(LinkedList, ANewOneHasItsCursorAtTheEnd)
{
    CLinkedList list;
    list.PrependItem(kA);
    EXPECT_EQ(list.NextItem(), nullptr);
}

TEST(LinkedList, AppendsAtTheEndAndPrependsAtTheFront)
{
    CLinkedList list;
    Append(list, {kB, kC});
    list.PrependItem(kA);
    EXPECT_EQ(AllOf(list), (Items{kA, kB, kC}));
}

TEST(LinkedList, StaysAtTheEndOnceItHasGotThere)
{
    CLinkedList list;
    Append(list, {kA});
    EXPECT_EQ(AllOf(list), (Items{kA}));
    EXPECT_EQ(list.NextItem(), nullptr);
}

TEST(LinkedList, AStoredNullItemEndsAnIterationEarly)
{
    CLinkedList list;
    Append(list, {kA, nullptr, kB});
    EXPECT_EQ(AllOf(list), (Items{kA}));
    EXPECT_EQ(RestOf(list), (Items{kB}));
}

TEST(LinkedList, AnIterationDoesNotSeeWhatIsPrepended)
{
    CLinkedList list;
    Append(list, {kB, kC});
    list.ResetToFirst();
    list.NextItem();
    list.PrependItem(kA);
    EXPECT_EQ(RestOf(list), (Items{kC}));
}

TEST(LinkedList, AnIterationBeforeTheTailSeesWhatIsAppended)
{
    CLinkedList list;
    Append(list, {kA, kB});
    list.ResetToFirst();
    list.NextItem();
    list.AppendItem(kC);
    EXPECT_EQ(RestOf(list), (Items{kB, kC}));
}

TEST(LinkedList, AnIterationPastTheTailDoesNotSeeWhatIsAppended)
{
    CLinkedList list;
    Append(list, {kA});
    list.ResetToFirst();
    list.NextItem();
    list.AppendItem(kB);
    EXPECT_EQ(list.NextItem(), nullptr);
}

TEST(LinkedList, RemovingTheNextItemMovesTheIterationOn)
{
    CLinkedList list;
    Append(list, {kA, kB, kC});
    list.ResetToFirst();
    list.NextItem();
    EXPECT_TRUE(list.RemoveItem(kB));
    EXPECT_EQ(RestOf(list), (Items{kC}));
}

TEST(LinkedList, RemovingOtherItemsLeavesTheIterationWhereItIs)
{
    CLinkedList list;
    Append(list, {kA, kB, kC, kD});
    list.ResetToFirst();
    list.NextItem();
    EXPECT_TRUE(list.RemoveItem(kA));
    EXPECT_TRUE(list.RemoveItem(kC));
    EXPECT_EQ(RestOf(list), (Items{kB, kD}));
}

TEST(LinkedList, RemovesOnlyTheFirstOfTwoOccurrences)
{
    CLinkedList list;
    Append(list, {kA, kB, kA, kC});
    EXPECT_TRUE(list.RemoveItem(kA));
    EXPECT_TRUE(list.ItemInList(kA));
    EXPECT_EQ(AllOf(list), (Items{kB, kA, kC}));
}

TEST(LinkedList, RemovingAnItemItDoesNotHoldChangesNothing)
{
    CLinkedList list;
    Append(list, {kA, kB});
    EXPECT_FALSE(list.RemoveItem(kC));
    EXPECT_EQ(AllOf(list), (Items{kA, kB}));
}

TEST(LinkedList, TellsWhetherItHoldsAnItem)
{
    CLinkedList list;
    Append(list, {kA, kB});
    EXPECT_TRUE(list.ItemInList(kB));
    EXPECT_FALSE(list.ItemInList(kC));
    list.RemoveItem(kB);
    EXPECT_FALSE(list.ItemInList(kB));
}

TEST(LinkedList, ClearingEmptiesItAndItCanBeFilledAgain)
{
    CLinkedList list;
    Append(list, {kA, kB});
    list.Clear();
    EXPECT_FALSE(list.ItemInList(kA));
    EXPECT_EQ(AllOf(list), Items{});
    list.AppendItem(kC);
    EXPECT_EQ(AllOf(list), (Items{kC}));
}

#ifdef COUNTS_DELETIONS

TEST(LinkedList, FreesRemovedNodesOnlyWhenItIsCleared)
{
    CLinkedList list;
    for (void* item : {kA, kB, kC, kD})
        list.AppendItem(item);
    int before = gDeletions;
    list.RemoveItem(kB);
    list.RemoveItem(kD);
    EXPECT_EQ(gDeletions - before, 0);
    before = gDeletions;
    list.Clear();
    EXPECT_EQ(gDeletions - before, 4);
}

TEST(LinkedList, FreesAllNodesWhenItGoes)
{
    int before = 0;
    {
        CLinkedList list;
        for (void* item : {kA, kB, kC})
            list.AppendItem(item);
        list.RemoveItem(kB);
        before = gDeletions;
    }
    EXPECT_EQ(gDeletions - before, 3);
}

#endif

TEST(LinkedList, ClearingDuringAnIterationEndsIt)
{
    CLinkedList list;
    Append(list, {kA, kB});
    list.ResetToFirst();
    list.Clear();
    EXPECT_EQ(list.NextItem(), nullptr);
}

namespace
{

// The same list, kept in the standard one.
class Model
{
public:
    void Prepend(void* item) { items.push_front(item); }
    void Append(void* item) { items.push_back(item); }
    bool Remove(void* item)
    {
        const auto found = std::find(items.begin(), items.end(), item);
        if (found == items.end())
            return false;
        if (found == cursor)
            ++cursor;
        items.erase(found);
        return true;
    }
    void Reset() { cursor = items.begin(); }
    void* Next() { return cursor == items.end() ? nullptr : *cursor++; }
    void Clear()
    {
        items.clear();
        cursor = items.end();
    }
    // An iteration that has ended does not go on with what is appended afterwards; the standard
    // list's end() does not move, so both agree.
    std::list<void*> items;
    std::list<void*>::iterator cursor = items.end();
};

void DoTheSame(std::uint_fast32_t operation, void* item, CLinkedList& list, Model& model)
{
    switch (operation) {
    case 0:
        list.PrependItem(item);
        model.Prepend(item);
        break;
    case 1:
    case 2:
        list.AppendItem(item);
        model.Append(item);
        break;
    case 3:
    case 4:
        ASSERT_EQ(list.RemoveItem(item) != 0, model.Remove(item));
        break;
    case 5:
        list.ResetToFirst();
        model.Reset();
        break;
    case 6:
        ASSERT_EQ(list.ItemInList(item) != 0,
                  std::find(model.items.begin(), model.items.end(), item) != model.items.end());
        break;
    default:
        ASSERT_EQ(list.NextItem(), model.Next());
    }
}

} // namespace

TEST(LinkedList, BehavesLikeAStandardListUnderRandomOperations)
{
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        CLinkedList list;
        Model model;
        for (int step = 0; step < 300; ++step) {
            DoTheSame(random() % 10, &gItems[random() % gItems.size()], list, model);
            if (random() % 100 == 0) {
                list.Clear();
                model.Clear();
            }
            if (HasFatalFailure())
                return;
        }
        EXPECT_EQ(AllOf(list), Items(model.items.begin(), model.items.end()));
    }
}
