// SPDX-License-Identifier: MIT
//
// What a still image shows and hands out, pixel by pixel.
#include "tests/support/ImageOnPage.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <vector>

namespace
{

constexpr UInt32 kRed = 0xFF0000;
constexpr UInt32 kGreen = 0x00FF00;
constexpr UInt32 kBlack = 0x000000;

// A red image of 8 rows and 6 columns.
class StillPixels : public test::ImageOnPage
{
protected:
    void Make(UInt16 maskDepth = 0)
    {
        MakeImage(8, 6);
        AddFrame({0, 0, 8, 6}, 32, maskDepth);
        Fill(image->GetFrameGWorld(0), kRed);
    }
    bool AreRows(int top, int bottom, UInt32 color) const
    {
        for (int row = top; row < bottom; ++row)
            for (int column = 0; column < 6; ++column)
                if (Shown(row, column) != color)
                    return false;
        return true;
    }
};

std::vector<UInt8> BytesOf(Handle handle)
{
    const auto* bytes = reinterpret_cast<const UInt8*>(*handle);
    return {bytes, bytes + GetHandleSize(handle)};
}

} // namespace

TEST_F(StillPixels, AreShownInTheirPlace)
{
    Make();
    image->Display(Area(), 0);
    EXPECT_TRUE(AreRows(0, 8, kRed));
    EXPECT_TRUE(IsWhiteOutsideTheImage(8, 6));
}

TEST_F(StillPixels, AreShownRowByRowAsTheyArrive)
{
    Make();
    image->SetDisplayFlags(kVornDisplayPartialRedraw);
    image->InvalidateRow(2);
    image->InvalidateRow(3);
    image->Display(Area(), 0);
    EXPECT_TRUE(AreRows(0, 2, kWhite));
    EXPECT_TRUE(AreRows(2, 4, kRed));
    EXPECT_TRUE(AreRows(4, 8, kWhite));
    image->InvalidateRow(4);
    image->Display(Area(), 0);
    EXPECT_TRUE(AreRows(2, 5, kRed));
    EXPECT_TRUE(AreRows(5, 8, kWhite));
}

TEST_F(StillPixels, AreShownRowByRowWhereTheImageIsEnlarged)
{
    Make();
    image->SetDisplayFlags(kVornDisplayPartialRedraw | kVornDisplayScale);
    image->InvalidateRow(2);
    image->Display({kTop, kLeft, kTop + 16, kLeft + 12}, 0);
    EXPECT_EQ(Shown(3, 0), kWhite);
    EXPECT_EQ(Shown(4, 0), kRed);
    EXPECT_EQ(Shown(5, 11), kRed);
    EXPECT_EQ(Shown(6, 0), kWhite);
}

TEST_F(StillPixels, AreTransparentUntilTheMasksRowsArrive)
{
    for (const UInt16 maskDepth : {UInt16{1}, UInt16{8}, UInt16{32}}) {
        Make(maskDepth);
        image->Display(Area(), 0);
        EXPECT_TRUE(AreRows(0, 8, kWhite)) << maskDepth;
    }
}

TEST_F(StillPixels, ShowWhereTheMaskIsBlack)
{
    for (const UInt16 maskDepth : {UInt16{1}, UInt16{8}, UInt16{32}}) {
        Make(maskDepth);
        const UInt32 black = maskDepth == 1 ? 1 : maskDepth == 8 ? 255 : 0;
        test::SetPixel(image->GetFrameMaskGWorld(0), 3, 2, black);
        image->Display(Area(), 0);
        EXPECT_EQ(Shown(3, 2), kRed) << maskDepth;
        EXPECT_EQ(Shown(3, 1), kWhite) << maskDepth;
        EXPECT_EQ(Shown(2, 2), kWhite) << maskDepth;
    }
}

TEST_F(StillPixels, LeaveOutWhatTheDisplayPositionShiftsOutOfTheFrame)
{
    Make();
    test::SetPixel(image->GetFrameGWorld(0), 3, 2, kGreen);
    image->SetFrameDisplayPos(0, {2, 1});
    image->Display(Area(), 0);
    // Source and target are shifted alike: what is left of the frame stays where it was.
    EXPECT_EQ(Shown(3, 2), kGreen);
    EXPECT_EQ(Shown(1, 1), kWhite);
    EXPECT_EQ(Shown(2, 0), kWhite);
    EXPECT_EQ(Shown(2, 1), kRed);
    EXPECT_TRUE(IsWhiteOutsideTheImage(8, 6));
}

TEST_F(StillPixels, AreShownInTheirOwnColorsWhateverThePortsAre)
{
    Make();
    const RGBColor blue = {0, 0, 0xFFFF};
    RGBForeColor(&blue);
    RGBBackColor(&blue);
    Fill(image->GetFrameGWorld(0), kBlack);
    image->Display(Area(), 0);
    EXPECT_TRUE(AreRows(0, 8, kBlack));
}

TEST_F(StillPixels, StayInsideThePortsClip)
{
    Make();
    RgnHandle clip = NewRgn();
    const Rect rows = {kTop + 2, 0, kTop + 4, kPageWidth};
    RectRgn(clip, &rows);
    SetClip(clip);
    DisposeRgn(clip);
    image->Display(Area(), 0);
    EXPECT_TRUE(AreRows(0, 2, kWhite));
    EXPECT_TRUE(AreRows(2, 4, kRed));
    EXPECT_TRUE(AreRows(4, 8, kWhite));
}

TEST_F(StillPixels, AreNotChangedByBecomingAPicture)
{
    Make();
    test::SetPixel(image->GetFrameGWorld(0), 3, 2, kGreen);
    UInt32 type = 0;
    Handle data = nullptr;
    image->GetData(type, &data);
    ASSERT_NE(data, nullptr);
    DisposeHandle(data);
    EXPECT_EQ(test::PixelOf(image->GetFrameGWorld(0), 3, 2), kGreen);
    EXPECT_EQ(test::PixelOf(image->GetFrameGWorld(0), 3, 3), kRed);
    CGrafPtr port = nullptr;
    GetPort(&port);
    EXPECT_EQ(port, page);
}

TEST_F(StillPixels, LeaveThePortsDeviceCurrentWhenTheyBecomeAPicture)
{
    Make();
    CGrafPtr port = nullptr;
    GDHandle other = nullptr;
    SetGWorld(image->GetFrameGWorld(0), nullptr);
    GetGWorld(&port, &other);
    SetGWorld(page, other);
    UInt32 type = 0;
    Handle data = nullptr;
    image->GetData(type, &data);
    DisposeHandle(data);
    GDHandle device = nullptr;
    GetGWorld(&port, &device);
    SetGWorld(page, nullptr);
    EXPECT_EQ(device, other);
}

TEST_F(StillPixels, BecomeAPictureFramedByTheirBounds)
{
    MakeImage(8, 6);
    AddFrame({1, 2, 9, 8}, 32, 0);
    UInt32 type = 0;
    Handle data = nullptr;
    image->GetData(type, &data);
    ASSERT_NE(data, nullptr);
    const std::vector<UInt8> bytes = BytesOf(data);
    DisposeHandle(data);
    const std::vector<UInt8> frame = {0, 1, 0, 2, 0, 9, 0, 8};
    ASSERT_GT(bytes.size(), 100U);
    EXPECT_TRUE(std::equal(frame.begin(), frame.end(), bytes.begin() + 2));
    EXPECT_EQ(bytes.back(), 0xFF); // the end of a picture is the code 0x00FF
}
