// SPDX-License-Identifier: MIT
//
// An image dragged out of a page, as the receiver of the drag sees it.
#include "tests/support/ImageOnPage.h"

namespace
{

constexpr UInt32 kRed = 0xFF0000;
constexpr DragItemRef kItem = 7;

class DraggedPixels : public test::ImageOnPage
{
protected:
    DraggedPixels() { EXPECT_EQ(NewDrag(&drag), 0); }
    ~DraggedPixels() override { DisposeDrag(drag); }

    void Drag(SInt16 height, SInt16 width)
    {
        MakeImage(height, width);
        AddFrame({0, 0, height, width}, 32, 0);
        Fill(image->GetFrameGWorld(0), kRed);
        image->SetDisplayFlags(kVornDisplayScale);
        image->FinishRendering();
        image->PrepareDrag(
            drag, kItem,
            {10, 20, static_cast<SInt16>(10 + height), static_cast<SInt16>(20 + width)}, flag);
        EXPECT_EQ(GetDragImage(drag, &dragImage, &place, &imageFlags), 0);
    }
    Rect ImageBounds() const
    {
        Rect bounds{};
        return dragImage != nullptr ? *GetPortBounds(dragImage, &bounds) : bounds;
    }

    DragRef drag = nullptr;
    unsigned char flag = 0;
    CGrafPtr dragImage = nullptr;
    Point place{};
    DragImageFlags imageFlags = 0;
};

} // namespace

TEST_F(DraggedPixels, PromiseAPictureAndNothingElse)
{
    Drag(8, 6);
    UInt16 items = 0;
    UInt16 flavors = 0;
    FlavorType type = 0;
    Size size = -1;
    CountDragItems(drag, &items);
    CountDragItemFlavors(drag, kItem, &flavors);
    GetFlavorType(drag, kItem, 1, &type);
    GetFlavorDataSize(drag, kItem, type, &size);
    EXPECT_EQ(items, 1);
    EXPECT_EQ(flavors, 1);
    EXPECT_EQ(type, 0x50494354U);
    EXPECT_EQ(size, 0);
}

TEST_F(DraggedPixels, AreTheFramesWhereTheyStandOnTheScreen)
{
    Drag(8, 6);
    ASSERT_NE(dragImage, nullptr);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(ImageBounds().bottom - ImageBounds().top, 8);
    EXPECT_EQ(ImageBounds().right - ImageBounds().left, 6);
    EXPECT_EQ(place.v, 110);
    EXPECT_EQ(place.h, 220);
    EXPECT_EQ(imageFlags, 17U);
    EXPECT_EQ(test::PixelOf(dragImage, 7, 5), kRed);
}

TEST_F(DraggedPixels, AreShrunkWhenThereAreMany)
{
    Drag(400, 400);
    ASSERT_NE(dragImage, nullptr);
    EXPECT_EQ(ImageBounds().bottom - ImageBounds().top, 120);
    EXPECT_EQ(ImageBounds().right - ImageBounds().left, 120);
    EXPECT_EQ(place.v, 250);
    EXPECT_EQ(place.h, 360);
    EXPECT_EQ(test::PixelOf(dragImage, 0, 0), kRed);
    EXPECT_EQ(test::PixelOf(dragImage, 119, 119), kRed);
}

TEST_F(DraggedPixels, LeaveThePageAndItsPortAlone)
{
    Drag(400, 400);
    CGrafPtr port = nullptr;
    GetPort(&port);
    EXPECT_EQ(port, page);
    EXPECT_TRUE(IsWhiteOutsideTheImage(0, 0));
}
