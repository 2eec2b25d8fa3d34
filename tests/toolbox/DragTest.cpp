// SPDX-License-Identifier: MIT
#include "toolbox/drag/Drag.h"

#include "tests/support/ToolboxProbe.h"
#include "tests/toolbox/TestPixels.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"
#include "toolbox/quickdraw/QDOffscreen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace
{

using test::TestPixels;
using test::ToolboxProbe;
using testing::ElementsAre;

constexpr DragItemRef kItem = 7;
constexpr FlavorType kPicture = FOUR_CHARS('P', 'I', 'C', 'T');
constexpr FlavorType kText = FOUR_CHARS('T', 'E', 'X', 'T');
constexpr Point kOffset = {40, 50};

class Drag : public testing::Test
{
protected:
    Drag() { EXPECT_EQ(NewDrag(&drag), noErr); }
    ~Drag() override { DisposeDrag(drag); }

    OSErr Promise(DragItemRef item, FlavorType type) const
    {
        return AddDragItemFlavor(drag, item, type, nullptr, 0, 0);
    }
    OSErr AddText(const std::string& text) const
    {
        return AddDragItemFlavor(drag, kItem, kText, text.data(), static_cast<Size>(text.size()),
                                 3);
    }
    OSErr GetText(std::string& text, UInt32 offset = 0) const
    {
        auto size = static_cast<Size>(text.size());
        const OSErr err = GetFlavorData(drag, kItem, kText, text.data(), &size, offset);
        text.resize(static_cast<size_t>(size));
        return err;
    }
    OSErr SetImage(const TestPixels& pixels, RgnHandle region = nullptr) const
    {
        PixMap map = pixels.Map();
        PixMapPtr master = &map;
        return SetDragImage(drag, &master, region, kOffset,
                            kDragRegionAndImage | kDragDarkTranslucency);
    }
    CGrafPtr Image() const
    {
        CGrafPtr image = nullptr;
        Point offset{};
        DragImageFlags flags = 0;
        EXPECT_EQ(GetDragImage(drag, &image, &offset, &flags), noErr);
        return image;
    }

    DragRef drag = nullptr;
};

std::vector<UInt32> ColorsOf(CGrafPtr world)
{
    return TestPixels::ColorsOf(**GetGWorldPixMap(world));
}

TEST_F(Drag, IsEmptyAtFirst)
{
    UInt16 count = 9;
    EXPECT_EQ(CountDragItems(drag, &count), noErr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Image(), nullptr);
}

TEST_F(Drag, HasItsItemsInTheOrderOfTheirAddition)
{
    Promise(30, kPicture);
    Promise(20, kPicture);
    Promise(30, kText);
    UInt16 count = 0;
    EXPECT_EQ(CountDragItems(drag, &count), noErr);
    EXPECT_EQ(count, 2);
    DragItemRef first = 0;
    DragItemRef second = 0;
    EXPECT_EQ(GetDragItemReferenceNumber(drag, 1, &first), noErr);
    EXPECT_EQ(GetDragItemReferenceNumber(drag, 2, &second), noErr);
    EXPECT_EQ(first, 30U);
    EXPECT_EQ(second, 20U);
}

TEST_F(Drag, HasTheFlavorsOfAnItemInTheOrderOfTheirAddition)
{
    Promise(kItem, kPicture);
    Promise(kItem, kText);
    Promise(kItem + 1, kText);
    UInt16 count = 0;
    EXPECT_EQ(CountDragItemFlavors(drag, kItem, &count), noErr);
    EXPECT_EQ(count, 2);
    FlavorType first = 0;
    FlavorType second = 0;
    EXPECT_EQ(GetFlavorType(drag, kItem, 1, &first), noErr);
    EXPECT_EQ(GetFlavorType(drag, kItem, 2, &second), noErr);
    EXPECT_EQ(first, kPicture);
    EXPECT_EQ(second, kText);
}

TEST_F(Drag, CopiesTheDataOfAFlavor)
{
    std::string text = "some text";
    EXPECT_EQ(AddText(text), noErr);
    text = "other";
    std::string seen(100, ' ');
    EXPECT_EQ(GetText(seen), noErr);
    EXPECT_EQ(seen, "some text");
    Size size = 0;
    EXPECT_EQ(GetFlavorDataSize(drag, kItem, kText, &size), noErr);
    EXPECT_EQ(size, 9);
}

TEST_F(Drag, GivesAPartOfTheDataThatIsAskedFor)
{
    AddText("some text");
    std::string seen(3, ' ');
    EXPECT_EQ(GetText(seen, 5), noErr);
    EXPECT_EQ(seen, "tex");
    seen = std::string(5, ' ');
    EXPECT_EQ(GetText(seen, 100), noErr);
    EXPECT_EQ(seen, "");
}

TEST_F(Drag, KeepsTheFlagsOfAFlavor)
{
    AddText("some text");
    FlavorFlags flags = 0;
    EXPECT_EQ(GetFlavorFlags(drag, kItem, kText, &flags), noErr);
    EXPECT_EQ(flags, 3U);
}

TEST_F(Drag, HasNoDataOfAPromisedFlavor)
{
    EXPECT_EQ(AddDragItemFlavor(drag, kItem, kText, nullptr, 5, 0), noErr);
    Size size = 9;
    EXPECT_EQ(GetFlavorDataSize(drag, kItem, kText, &size), noErr);
    EXPECT_EQ(size, 0);
    std::string seen(5, ' ');
    EXPECT_EQ(GetText(seen), cantGetFlavorErr);
}

TEST_F(Drag, TellsEmptyDataFromAPromise)
{
    EXPECT_EQ(AddText(""), noErr);
    std::string seen(5, ' ');
    EXPECT_EQ(GetText(seen), noErr);
    EXPECT_EQ(seen, "");
}

TEST_F(Drag, RefusesAFlavorThatTheItemHas)
{
    AddText("first");
    EXPECT_EQ(AddText("second"), duplicateFlavorErr);
    std::string seen(5, ' ');
    GetText(seen);
    EXPECT_EQ(seen, "first");
}

TEST_F(Drag, RefusesNegativeSizes)
{
    EXPECT_EQ(AddDragItemFlavor(drag, kItem, kText, "x", -1, 0), paramErr);
    AddText("some text");
    char byte = 0;
    Size size = -1;
    EXPECT_EQ(GetFlavorData(drag, kItem, kText, &byte, &size, 0), paramErr);
}

TEST_F(Drag, DoesNotKnowItemsThatItDoesNotHave)
{
    Promise(kItem, kPicture);
    UInt16 count = 0;
    DragItemRef item = 0;
    EXPECT_EQ(GetDragItemReferenceNumber(drag, 0, &item), badDragItemErr);
    EXPECT_EQ(GetDragItemReferenceNumber(drag, 2, &item), badDragItemErr);
    EXPECT_EQ(CountDragItemFlavors(drag, kItem + 1, &count), badDragItemErr);
}

TEST_F(Drag, DoesNotKnowFlavorsThatAnItemDoesNotHave)
{
    Promise(kItem, kPicture);
    FlavorType type = 0;
    Size size = 0;
    EXPECT_EQ(GetFlavorType(drag, kItem, 0, &type), badDragFlavorErr);
    EXPECT_EQ(GetFlavorType(drag, kItem, 2, &type), badDragFlavorErr);
    EXPECT_EQ(GetFlavorDataSize(drag, kItem, kText, &size), badDragFlavorErr);
}

TEST_F(Drag, HasACopyOfTheImageOfEveryDepth)
{
    for (const int depth : {1, 2, 4, 8, 16, 32}) {
        const TestPixels pixels(depth, {-3, 5, 20, 38});
        EXPECT_EQ(SetImage(pixels), noErr);
        CGrafPtr const image = Image();
        ASSERT_NE(image, nullptr);
        PixMapHandle const copy = GetGWorldPixMap(image);
        EXPECT_EQ((*copy)->pixelSize, depth);
        EXPECT_TRUE(EqualRect(&(*copy)->bounds, &pixels.Bounds()));
        EXPECT_EQ(ColorsOf(image), pixels.Colors()) << depth;
    }
}

TEST_F(Drag, HasAnImageThatOutlivesTheWorldItWasMadeOf)
{
    const TestPixels pixels(32, {0, 0, 4, 6});
    const std::vector<UInt32> colors = pixels.Colors();
    {
        const TestPixels same(32, {0, 0, 4, 6});
        SetImage(same);
    }
    EXPECT_EQ(ColorsOf(Image()), colors);
}

TEST_F(Drag, HasOfAnImageWhatLiesInTheRegion)
{
    const TestPixels pixels(32, {0, 0, 2, 2});
    const Rect rect = {1, 0, 2, 1};
    RgnHandle const region = NewRgn();
    RectRgn(region, &rect);
    SetImage(pixels, region);
    DisposeRgn(region);
    EXPECT_THAT(ColorsOf(Image()),
                ElementsAre(0xFFFFFFU, 0xFFFFFFU, pixels.Colors()[2], 0xFFFFFFU));
}

TEST_F(Drag, TellsWhereItsImageStandsAndHowItIsShown)
{
    SetImage(TestPixels(32, {0, 0, 2, 2}));
    CGrafPtr image = nullptr;
    Point offset{};
    DragImageFlags flags = 0;
    GetDragImage(drag, &image, &offset, &flags);
    EXPECT_EQ(offset.v, kOffset.v);
    EXPECT_EQ(offset.h, kOffset.h);
    EXPECT_EQ(flags, 17U);
}

TEST_F(Drag, HasOneImageAtATime)
{
    const SInt32 worlds = CountLiveObjects(kLiveGWorlds);
    SetImage(TestPixels(32, {0, 0, 2, 2}));
    const TestPixels second(32, {0, 0, 3, 3});
    SetImage(second);
    EXPECT_EQ(ColorsOf(Image()), second.Colors());
    EXPECT_EQ(CountLiveObjects(kLiveGWorlds), worlds + 1);
}

TEST_F(Drag, KeepsItsImageWhenAnotherCannotBeMade)
{
    const TestPixels first(32, {0, 0, 2, 2});
    SetImage(first);
    ToolboxProbe probe;
    probe.Fail("NewGWorld", memFullErr);
    EXPECT_EQ(SetImage(TestPixels(32, {0, 0, 3, 3})), memFullErr);
    EXPECT_EQ(ColorsOf(Image()), first.Colors());
}

TEST_F(Drag, RefusesAnImageWithoutPixels)
{
    EXPECT_EQ(SetDragImage(drag, nullptr, nullptr, kOffset, 0), paramErr);
}

TEST_F(Drag, HasNoFlavorForWhichMemoryRanOut)
{
    ToolboxProbe probe;
    probe.Fail("NewPtr", memFullErr);
    EXPECT_EQ(AddText("some text"), memFullErr);
    UInt16 count = 9;
    CountDragItems(drag, &count);
    EXPECT_EQ(count, 0);
}

TEST_F(Drag, GoesWithAllThatItHolds)
{
    const SInt32 drags = CountLiveObjects(kLiveDrags);
    const SInt32 worlds = CountLiveObjects(kLiveGWorlds);
    const SInt32 pointers = CountLiveObjects(kLivePointers);
    AddText("some text");
    SetImage(TestPixels(8, {0, 0, 2, 2}));
    EXPECT_EQ(CountLiveObjects(kLivePointers), pointers + 1);
    EXPECT_EQ(DisposeDrag(drag), noErr);
    drag = nullptr;
    EXPECT_EQ(CountLiveObjects(kLiveDrags), drags - 1);
    EXPECT_EQ(CountLiveObjects(kLiveGWorlds), worlds);
    EXPECT_EQ(CountLiveObjects(kLivePointers), pointers);
    EXPECT_EQ(DisposeDrag(nullptr), noErr);
}

// Every operation, given the drag that it works on; each of them would succeed.
class DragOperations : public Drag
{
protected:
    using Operation = std::function<OSErr(DragRef)>;

    DragOperations() { EXPECT_EQ(AddText("some text"), noErr); }

    std::vector<std::pair<std::string, Operation>> OnADrag()
    {
        return {
            {"AddDragItemFlavor",
             [](DragRef d) { return AddDragItemFlavor(d, kItem, kPicture, nullptr, 0, 0); }},
            {"SetDragImage",
             [this](DragRef d) { return SetDragImage(d, &master_, nullptr, kOffset, 0); }},
            {"CountDragItems", [this](DragRef d) { return CountDragItems(d, &count_); }},
            {"GetDragItemReferenceNumber",
             [this](DragRef d) { return GetDragItemReferenceNumber(d, 1, &item_); }},
            {"CountDragItemFlavors",
             [this](DragRef d) { return CountDragItemFlavors(d, kItem, &count_); }},
            {"GetFlavorType", [this](DragRef d) { return GetFlavorType(d, kItem, 1, &type_); }},
            {"GetFlavorFlags",
             [this](DragRef d) { return GetFlavorFlags(d, kItem, kText, &flags_); }},
            {"GetFlavorDataSize",
             [this](DragRef d) { return GetFlavorDataSize(d, kItem, kText, &size_); }},
            {"GetFlavorData",
             [this](DragRef d) { return GetFlavorData(d, kItem, kText, &byte_, &one_, 0); }},
            {"GetDragImage",
             [this](DragRef d) { return GetDragImage(d, &image_, &offset_, &flags_); }},
        };
    }

private:
    TestPixels pixels_{32, {0, 0, 2, 2}};
    PixMap map_ = pixels_.Map();
    PixMapPtr master_ = &map_;
    UInt16 count_ = 0;
    DragItemRef item_ = 0;
    FlavorType type_ = 0;
    UInt32 flags_ = 0;
    Size size_ = 0;
    Size one_ = 1;
    char byte_ = 0;
    CGrafPtr image_ = nullptr;
    Point offset_{};
};

TEST_F(DragOperations, AnnounceThemselvesAndFailAsTheyAreTold)
{
    auto operations = OnADrag();
    operations.emplace_back("NewDrag", [](DragRef) {
        DragRef made = nullptr;
        return NewDrag(&made);
    });
    operations.emplace_back("DisposeDrag", DisposeDrag);
    ToolboxProbe probe;
    for (const auto& [name, operation] : operations) {
        probe.Fail(name, -123);
        EXPECT_EQ(operation(drag), -123) << name;
    }
}

TEST_F(DragOperations, RefuseANullDrag)
{
    for (const auto& [name, operation] : OnADrag()) {
        EXPECT_EQ(operation(nullptr), paramErr) << name;
    }
}

TEST_F(DragOperations, SucceedOtherwise)
{
    for (const auto& [name, operation] : OnADrag()) {
        EXPECT_EQ(operation(drag), noErr) << name;
    }
}

} // namespace
