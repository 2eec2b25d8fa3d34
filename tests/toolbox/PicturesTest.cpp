// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Pictures.h"

#include "tests/support/ToolboxProbe.h"
#include "tests/toolbox/PictureReader.h"
#include "tests/toolbox/TestPixels.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Probe.h"
#include "toolbox/quickdraw/PictureRecorder.h"
#include "toolbox/quickdraw/QDOffscreen.h"
#include "toolbox/quickdraw/Region.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

static bool operator==(const Rect& a, const Rect& b)
{
    return EqualRect(&a, &b) != 0;
}

namespace
{

using test::BytesOf;
using test::PictureParts;
using test::ReadPicture;
using test::TestPixels;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Rect kFrame = {10, 20, 40, 60};

class Pictures : public testing::Test
{
protected:
    Pictures()
    {
        const Rect bounds = {0, 0, 100, 100};
        EXPECT_EQ(CreateWindowPort(&bounds, &port), noErr);
        SetPort(port);
    }
    ~Pictures() override
    {
        SetPort(nullptr);
        DisposeWindowPort(port);
        KillPicture(picture);
    }

    void Open(const Rect& frame = kFrame) { picture = OpenPicture(&frame); }
    void Copy(const TestPixels& pixels, const Rect& from, const Rect& to, SInt16 mode = srcCopy,
              RgnHandle mask = nullptr) const
    {
        toolbox::RecordCopy(*port, pixels.Map(), from, to, mode, mask);
    }
    PictureParts Close() const
    {
        ClosePicture();
        return ReadPicture(BytesOf(picture));
    }
    bool HasEmptyFrame() const
    {
        const test::Bytes bytes = BytesOf(picture);
        return test::Bytes(bytes.begin() + 2, bytes.begin() + 10) == test::Bytes(8, 0);
    }

    CGrafPtr port = nullptr;
    PicHandle picture = nullptr;
};

TEST_F(Pictures, StandInAFileWithTheirSizeAndFrame)
{
    Open();
    const PictureParts parts = Close();
    EXPECT_EQ(parts.size, BytesOf(picture).size());
    EXPECT_EQ(parts.frame, kFrame);
    EXPECT_EQ(parts.sourceRect, kFrame);
}

TEST_F(Pictures, OfMoreThan64KBytesTellTheLow16BitsOfTheirSize)
{
    const TestPixels pixels(32, {0, 0, 250, 250});
    Open(pixels.Bounds());
    Copy(pixels, pixels.Bounds(), pixels.Bounds());
    const PictureParts parts = Close();
    ASSERT_GT(BytesOf(picture).size(), 0xFFFFU);
    EXPECT_EQ(parts.size, BytesOf(picture).size() & 0xFFFF);
}

TEST_F(Pictures, DrawNothingOutsideTheirFrame)
{
    Open();
    EXPECT_THAT(Close().clips, ElementsAre(ElementsAre(10, 10, 20, 40, 60)));
}

TEST_F(Pictures, AreClippedAsThePortIs)
{
    RgnHandle const clip = NewRgn();
    const Rect rect = {0, 30, 20, 90};
    RectRgn(clip, &rect);
    Open();
    SetClip(clip);
    const TestPixels pixels(8, {0, 0, 5, 5});
    Copy(pixels, pixels.Bounds(), pixels.Bounds());
    Copy(pixels, pixels.Bounds(), pixels.Bounds());
    DisposeRgn(clip);
    EXPECT_THAT(Close().clips,
                ElementsAre(ElementsAre(10, 10, 20, 40, 60), ElementsAre(10, 10, 30, 20, 60)));
}

// From line 10 on what lies between 30 and 60, from 20 on only what lies right of 45, up to 30.
TEST_F(Pictures, AreClippedToARegionOfAnyForm)
{
    RgnHandle const clip = NewRgn();
    pixman_region32_t& area = (*clip)->area;
    pixman_region32_union_rect(&area, &area, 30, 10, 30, 10);
    pixman_region32_union_rect(&area, &area, 45, 20, 15, 10);
    SetClip(clip);
    Open();
    DisposeRgn(clip);
    constexpr SInt16 kEnd = 0x7FFF;
    EXPECT_THAT(Close().clips,
                ElementsAre(ElementsAre(10 + 2 * 13, 10, 30, 30, 60, 10, 30, 60, kEnd, 20, 30, 45,
                                        kEnd, 30, 45, 60, kEnd, kEnd)));
}

// From line 12 to line 14, and again from line 20 on, with nothing between.
TEST_F(Pictures, AreClippedToARegionWithAGap)
{
    RgnHandle const clip = NewRgn();
    pixman_region32_t& area = (*clip)->area;
    pixman_region32_union_rect(&area, &area, 30, 12, 5, 2);
    pixman_region32_union_rect(&area, &area, 30, 20, 5, 2);
    SetClip(clip);
    Open();
    DisposeRgn(clip);
    constexpr SInt16 kEnd = 0x7FFF;
    EXPECT_THAT(Close().clips,
                ElementsAre(ElementsAre(10 + 2 * 17, 12, 30, 22, 35, 12, 30, 35, kEnd, 14, 30, 35,
                                        kEnd, 20, 30, 35, kEnd, 22, 30, 35, kEnd, kEnd)));
}

TEST_F(Pictures, SayWithWhichColorsTheyAreTinted)
{
    const RGBColor color = {0x1234, 0x5678, 0x9ABC};
    const TestPixels pixels(1, {0, 0, 5, 5});
    Open();
    Copy(pixels, pixels.Bounds(), pixels.Bounds());
    RGBForeColor(&color);
    Copy(pixels, pixels.Bounds(), pixels.Bounds());
    const PictureParts parts = Close();
    ASSERT_EQ(parts.foregrounds.size(), 1U);
    EXPECT_EQ(parts.foregrounds[0].red, 0x1234);
    EXPECT_EQ(parts.foregrounds[0].blue, 0x9ABC);
    ASSERT_EQ(parts.backgrounds.size(), 1U);
    EXPECT_EQ(parts.backgrounds[0].green, 0xFFFF);
}

TEST_F(Pictures, KeepWhereFromWhereToAndHowACopyWas)
{
    const TestPixels pixels(32, {-5, -7, 30, 40});
    Open();
    Copy(pixels, {-3, 2, 10, 20}, {11, 21, 37, 57}, ditherCopy);
    const PictureParts parts = Close();
    ASSERT_EQ(parts.copies.size(), 1U);
    EXPECT_EQ(parts.copies[0].from, (Rect{-3, 2, 10, 20}));
    EXPECT_EQ(parts.copies[0].to, (Rect{11, 21, 37, 57}));
    EXPECT_EQ(parts.copies[0].mode, ditherCopy);
}

TEST_F(Pictures, KeepOnlyThePixelsThatACopyNeeds)
{
    const TestPixels pixels(4, {-5, -7, 30, 40});
    Open();
    Copy(pixels, {-3, 2, 10, 20}, kFrame);
    const PictureParts parts = Close();
    EXPECT_EQ(parts.copies.at(0).bounds, (Rect{-3, 2, 10, 20}));
    EXPECT_EQ(parts.copies.at(0).pixels, pixels.Colors({-3, 2, 10, 20}));
}

TEST_F(Pictures, KeepOfACopyFromBeyondTheMapWhatIsInTheMap)
{
    const TestPixels pixels(8, {0, 0, 10, 10});
    Open();
    Copy(pixels, {-10, -10, 10, 10}, {0, 0, 40, 60});
    const PictureParts parts = Close();
    EXPECT_EQ(parts.copies.at(0).from, (Rect{0, 0, 10, 10}));
    EXPECT_EQ(parts.copies.at(0).to, (Rect{20, 30, 40, 60}));
}

TEST_F(Pictures, KeepTheMaskRegionOfACopy)
{
    const TestPixels pixels(8, {0, 0, 10, 10});
    const TestPixels deep(32, {0, 0, 10, 10});
    RgnHandle const mask = NewRgn();
    const Rect rect = {12, 22, 15, 29};
    RectRgn(mask, &rect);
    Open();
    Copy(pixels, pixels.Bounds(), kFrame, srcCopy, mask);
    Copy(deep, deep.Bounds(), kFrame, srcCopy, mask);
    DisposeRgn(mask);
    const PictureParts parts = Close();
    EXPECT_THAT(parts.copies.at(0).mask, ElementsAre(10, 12, 22, 15, 29));
    EXPECT_THAT(parts.copies.at(1).mask, ElementsAre(10, 12, 22, 15, 29));
}

TEST_F(Pictures, KeepSeveralCopiesInTheirOrder)
{
    const TestPixels first(8, {0, 0, 7, 7});
    const TestPixels second(32, {0, 0, 9, 9});
    Open();
    Copy(first, first.Bounds(), kFrame);
    Copy(second, second.Bounds(), kFrame);
    const PictureParts parts = Close();
    ASSERT_EQ(parts.copies.size(), 2U);
    EXPECT_EQ(parts.copies[0].pixels, first.Colors());
    EXPECT_EQ(parts.copies[1].pixels, second.Colors());
}

TEST_F(Pictures, KeepNothingOfAnEmptyCopy)
{
    const TestPixels pixels(8, {0, 0, 10, 10});
    Open();
    Copy(pixels, {3, 3, 3, 9}, kFrame);
    Copy(pixels, {20, 20, 30, 30}, kFrame); // outside the map
    Copy(pixels, pixels.Bounds(), {4, 9, 5, 9});
    EXPECT_THAT(Close().copies, IsEmpty());
}

TEST_F(Pictures, KeepWhatAGraphicsWorldCopiesOntoItself)
{
    const TestPixels pixels(8, {0, 0, 12, 34});
    PixMap map = pixels.Map();
    GWorldPtr world = nullptr;
    ASSERT_EQ(NewGWorld(&world, 8, &map.bounds, map.pmTable, nullptr, 0), noErr);
    SetPort(world);
    const auto* const own = reinterpret_cast<const BitMap*>(*GetGWorldPixMap(world));
    CopyBits(reinterpret_cast<const BitMap*>(&map), own, &map.bounds, &map.bounds, srcCopy,
             nullptr);
    Open(map.bounds);
    CopyBits(own, own, &map.bounds, &map.bounds, ditherCopy, nullptr);
    const PictureParts parts = Close();
    DisposeGWorld(world);
    ASSERT_EQ(parts.copies.size(), 1U);
    EXPECT_EQ(parts.copies[0].pixels, pixels.Colors());
}

TEST_F(Pictures, RecordACopyInsteadOfDrawingIt)
{
    const TestPixels pixels(8, {0, 0, 12, 34});
    PixMap map = pixels.Map();
    TakeDirtyRegion(port, nullptr);
    const auto* const own = reinterpret_cast<const BitMap*>(*GetGWorldPixMap(port));
    Open();
    CopyBits(reinterpret_cast<const BitMap*>(&map), own, &map.bounds, &map.bounds, srcCopy,
             nullptr);
    EXPECT_FALSE(TakeDirtyRegion(port, nullptr));
    EXPECT_EQ(Close().copies.size(), 1U);
}

TEST_F(Pictures, TakeAMapOfOneBitWithoutATableAsBlackOnWhite)
{
    TestPixels pixels(1, {0, 0, 1, 2});
    pixels.SetRow(0, {0x40});
    pixels.ForgetTable();
    Open();
    Copy(pixels, pixels.Bounds(), kFrame);
    EXPECT_THAT(Close().copies.at(0).pixels, ElementsAre(0xFFFFFFU, 0U));
}

TEST_F(Pictures, TakeATableThatIsInIndexOrderAsSuch)
{
    TestPixels pixels(2, {0, 0, 3, 9});
    pixels.PutTableInIndexOrder();
    Open();
    Copy(pixels, pixels.Bounds(), kFrame);
    EXPECT_EQ(Close().copies.at(0).pixels, pixels.Colors());
}

TEST_F(Pictures, RowsOfLessThan8BytesAreNotPacked)
{
    for (const int depth : {1, 2, 4, 8, 16, 32}) {
        const TestPixels pixels(depth, {0, 0, 1, 1});
        Open();
        Copy(pixels, pixels.Bounds(), kFrame);
        const PictureParts parts = Close();
        EXPECT_LT(parts.copies.at(0).rowBytes, 8);
        EXPECT_EQ(parts.copies.at(0).packType, depth > 8 ? 1 : 0);
        EXPECT_EQ(parts.copies.at(0).pixels, pixels.Colors()) << depth;
        KillPicture(picture);
        picture = nullptr;
    }
}

TEST_F(Pictures, RowsOfMoreThan250BytesHaveTheirLengthInAWord)
{
    for (const SInt16 width : {SInt16{249}, SInt16{250}, SInt16{251}, SInt16{252}}) {
        const TestPixels pixels(8, {0, 0, 3, width});
        Open();
        Copy(pixels, pixels.Bounds(), kFrame);
        EXPECT_EQ(Close().copies.at(0).pixels, pixels.Colors()) << width;
        KillPicture(picture);
        picture = nullptr;
    }
}

TEST_F(Pictures, TheWidestMapsHaveTheirPixelsKept)
{
    for (const int depth : {1, 8, 16, 32}) {
        const auto width = static_cast<SInt16>(std::min(0x3FFE * 8 / depth, 32767));
        const TestPixels pixels(depth, {0, 0, 2, width});
        Open();
        Copy(pixels, pixels.Bounds(), kFrame);
        EXPECT_EQ(Close().copies.at(0).pixels, pixels.Colors()) << depth;
        KillPicture(picture);
        picture = nullptr;
    }
}

// The format tells no more than 0x3FFE bytes of a row.
TEST_F(Pictures, WiderThanTheFormatsRowsAreKeptSideBySide)
{
    for (const int depth : {8, 16, 32}) {
        const auto most = static_cast<SInt16>(0x3FFE * 8 / depth);
        const TestPixels pixels(depth, {0, 0, 2, static_cast<SInt16>(most + 1)});
        Open();
        Copy(pixels, pixels.Bounds(), {10, 20, 12, static_cast<SInt16>(20 + most + 1)});
        const PictureParts parts = Close();
        KillPicture(picture);
        picture = nullptr;
        ASSERT_EQ(parts.copies.size(), 2U) << depth;
        const Rect left = {0, 0, 2, most};
        EXPECT_EQ(parts.copies[0].to, (Rect{10, 20, 12, static_cast<SInt16>(20 + most)})) << depth;
        EXPECT_EQ(parts.copies[0].pixels, pixels.Colors(left)) << depth;
        const Rect right = {0, most, 2, static_cast<SInt16>(most + 1)};
        EXPECT_EQ(parts.copies[1].to, (Rect{10, static_cast<SInt16>(20 + most), 12,
                                            static_cast<SInt16>(20 + most + 1)}))
            << depth;
        EXPECT_EQ(parts.copies[1].pixels, pixels.Colors(right)) << depth;
    }
}

TEST_F(Pictures, LeaveOutWhatIsTooNarrowWhereAWideCopyIsShrunk)
{
    const TestPixels pixels(32, {0, 0, 2, 10000});
    Open();
    Copy(pixels, pixels.Bounds(), {0, 0, 2, 1});
    const PictureParts parts = Close();
    ASSERT_EQ(parts.copies.size(), 1U);
    EXPECT_EQ(parts.copies[0].to, (Rect{0, 0, 2, 1}));
}

TEST_F(Pictures, KeepThePartOfAMapWithLongerRowsThanTheFormats)
{
    const TestPixels pixels(32, {0, 0, 3, 5000});
    const Rect part = {1, 4800, 3, 4900};
    Open();
    Copy(pixels, part, kFrame);
    EXPECT_EQ(Close().copies.at(0).pixels, pixels.Colors(part));
}

TEST_F(Pictures, AreRecordedOneAtATimeInAPort)
{
    Open();
    EXPECT_EQ(OpenPicture(&kFrame), nullptr);
    const TestPixels pixels(8, {0, 0, 3, 3});
    Copy(pixels, pixels.Bounds(), kFrame);
    EXPECT_EQ(Close().copies.size(), 1U);
}

TEST_F(Pictures, BelongToThePortInWhichTheyAreOpen)
{
    const Rect bounds = {0, 0, 5, 5};
    CGrafPtr other = nullptr;
    ASSERT_EQ(CreateWindowPort(&bounds, &other), noErr);
    Open();
    SetPort(other);
    EXPECT_TRUE(toolbox::IsRecording(port));
    EXPECT_FALSE(toolbox::IsRecording(other));
    ClosePicture(); // none is open in this port
    EXPECT_TRUE(toolbox::IsRecording(port));
    PicHandle const second = OpenPicture(&bounds);
    EXPECT_NE(second, nullptr);
    DisposeWindowPort(other);
    KillPicture(second);
}

TEST_F(Pictures, CannotBeOpenWithoutAPort)
{
    SetPort(nullptr);
    EXPECT_EQ(OpenPicture(&kFrame), nullptr);
    EXPECT_FALSE(toolbox::IsRecording(nullptr));
    ClosePicture();
}

TEST_F(Pictures, RecordNoLongerOnceTheyAreClosed)
{
    Open();
    const size_t size = (Close(), BytesOf(picture).size());
    EXPECT_FALSE(toolbox::IsRecording(port));
    const TestPixels pixels(8, {0, 0, 3, 3});
    Copy(pixels, pixels.Bounds(), kFrame);
    EXPECT_EQ(BytesOf(picture).size(), size);
}

TEST_F(Pictures, HaveAnEmptyFrameUntilTheyAreClosed)
{
    Open();
    EXPECT_TRUE(HasEmptyFrame());
}

TEST_F(Pictures, LeaveThePortFreeForAnotherWhenKilledWhileOpen)
{
    Open();
    KillPicture(picture);
    EXPECT_FALSE(toolbox::IsRecording(port));
    Open();
    EXPECT_NE(picture, nullptr);
}

TEST_F(Pictures, SurviveThePortThatRecordsThem)
{
    Open();
    DisposeWindowPort(port);
    port = nullptr;
    EXPECT_TRUE(HasEmptyFrame());
}

TEST_F(Pictures, AreHandlesThatTheCallerOwns)
{
    const SInt32 before = CountLiveObjects(kLiveHandles);
    Open();
    ClosePicture();
    EXPECT_EQ(CountLiveObjects(kLiveHandles), before + 1);
    KillPicture(picture);
    picture = nullptr;
    EXPECT_EQ(CountLiveObjects(kLiveHandles), before);
    KillPicture(nullptr);
}

TEST_F(Pictures, DoNotMindThatTheirMemoryMoves)
{
    const TestPixels pixels(8, {0, 0, 100, 100});
    SetHandleScramble(true);
    Open();
    Copy(pixels, pixels.Bounds(), kFrame);
    ClosePicture();
    SetHandleScramble(false);
    EXPECT_EQ(ReadPicture(BytesOf(picture)).copies.at(0).pixels, pixels.Colors());
}

TEST_F(Pictures, AnnounceThemselves)
{
    test::ToolboxProbe probe;
    Open();
    ClosePicture();
    KillPicture(picture);
    picture = nullptr;
    EXPECT_THAT(probe.Calls({"OpenPicture", "ClosePicture", "KillPicture"}),
                ElementsAre("OpenPicture", "ClosePicture", "KillPicture"));
}

TEST_F(Pictures, AreNullWhenOpeningFails)
{
    test::ToolboxProbe probe;
    for (const char* const operation : {"OpenPicture", "NewHandle"}) {
        probe.Fail(operation, memFullErr);
        EXPECT_EQ(OpenPicture(&kFrame), nullptr) << operation;
        EXPECT_FALSE(toolbox::IsRecording(port)) << operation;
    }
}

// Whichever resize of the handle it is that fails.
TEST_F(Pictures, ForWhichMemoryRunsOutHaveAnEmptyFrame)
{
    const TestPixels pixels(8, {0, 0, 100, 100});
    int resizes = 0;
    {
        test::ToolboxProbe probe;
        Open();
        Copy(pixels, pixels.Bounds(), kFrame);
        ClosePicture();
        resizes = probe.Count("SetHandleSize");
    }
    ASSERT_FALSE(HasEmptyFrame());
    ASSERT_GT(resizes, 2);
    for (int nth = 1; nth <= resizes; ++nth) {
        KillPicture(picture);
        test::ToolboxProbe probe;
        probe.Fail("SetHandleSize", memFullErr, nth);
        Open();
        Copy(pixels, pixels.Bounds(), kFrame);
        ClosePicture();
        EXPECT_TRUE(HasEmptyFrame()) << nth;
        EXPECT_EQ(BytesOf(picture).size(), 10U) << nth;
    }
}

} // namespace
