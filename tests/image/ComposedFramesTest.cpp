// SPDX-License-Identifier: MIT
//
// What animations show, pixel by pixel: chosen ones by hand, random ones against a model.
#include "tests/support/AnimationModel.h"
#include "tests/support/ImageOnPage.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <random>

using test::Pixel32;

namespace
{

constexpr test::Color15 kRed = 0x7C00;
constexpr test::Color15 kGreen = 0x03E0;
constexpr test::Color15 kBlue = 0x001F;
constexpr UInt16 kSet = 1;

// A red image of 4 rows and 6 columns; behind it one green frame, 2 by 3, at 1,2.
class ComposedFrames : public test::ImageOnPage
{
protected:
    void Make(VornImagePlugin::TDisposalMethod method, UInt16 maskDepth = 0)
    {
        MakeImage(4, 6);
        AddFrame({0, 0, 4, 6}, 16, 0);
        Fill(image->GetFrameGWorld(0), kRed);
        AddFrame({0, 0, 2, 3}, 16, maskDepth);
        Fill(image->GetFrameGWorld(1), kGreen);
        image->SetFrameDisplayPos(1, {1, 2});
        image->SetFrameDisposalMethod(1, method);
        image->SetLooping(1, 0);
        image->SetBackgroundColor(test::RGBOf(kBlue));
        image->FinishRendering();
        image->Display(Area(), 0);
    }
    // Masks every pixel of the second frame but its first.
    void MaskAllButTheFirst(UInt32 opaque, UInt32 transparent)
    {
        Fill(image->GetFrameMaskGWorld(1), opaque);
        test::SetPixel(image->GetFrameMaskGWorld(1), 0, 0, transparent);
    }
    void Idle(int times)
    {
        for (int number = 0; number < times; ++number)
            image->Idle(Area(), 0);
    }
    // Draws a frame that is not in the list's order, so that what the last one left shows.
    void ShowThirdFrame()
    {
        const SInt16 index = AddFrame({0, 0, 1, 1}, 16, 0);
        Fill(image->GetFrameGWorld(index), kRed);
        Idle(1);
    }
};

} // namespace

TEST_F(ComposedFrames, ShowAFrameOverTheOneBefore)
{
    Make(kDisposalUnspecified);
    Idle(2);
    EXPECT_EQ(Shown(0, 0), Pixel32(kRed));
    EXPECT_EQ(Shown(1, 2), Pixel32(kGreen));
    EXPECT_EQ(Shown(2, 4), Pixel32(kGreen));
    EXPECT_EQ(Shown(2, 5), Pixel32(kRed));
    EXPECT_EQ(Shown(3, 4), Pixel32(kRed));
}

TEST_F(ComposedFrames, KeepAFrameThatIsLeftInPlace)
{
    for (const int method : {0, 1, 4}) {
        Make(static_cast<VornImagePlugin::TDisposalMethod>(method));
        Idle(2);
        image->curFrame = 2;
        ShowThirdFrame();
        EXPECT_EQ(Shown(2, 4), Pixel32(kGreen)) << method;
    }
}

TEST_F(ComposedFrames, PaintTheBackgroundWhereAFrameWas)
{
    for (const int method : {2, -1}) {
        Make(static_cast<VornImagePlugin::TDisposalMethod>(method));
        Idle(2);
        EXPECT_EQ(Shown(2, 4), Pixel32(kGreen));
        image->curFrame = 2;
        ShowThirdFrame();
        EXPECT_EQ(Shown(2, 4), Pixel32(kBlue)) << method;
        EXPECT_EQ(Shown(2, 5), Pixel32(kRed)) << method;
    }
}

TEST_F(ComposedFrames, PaintWhiteWhereAMaskedFrameLetThroughWhatWasThere)
{
    Make(kDisposalRestoreBackground, 1);
    MaskAllButTheFirst(kSet, 0);
    Idle(2);
    EXPECT_EQ(Shown(1, 2), Pixel32(kRed));
    image->curFrame = 2;
    ShowThirdFrame();
    EXPECT_EQ(Shown(1, 2), kWhite);
    EXPECT_EQ(Shown(1, 3), Pixel32(kBlue));
}

TEST_F(ComposedFrames, PutBackWhatWasThereBeforeAFrame)
{
    Make(kDisposalRestorePrevious);
    Idle(2);
    EXPECT_EQ(Shown(2, 4), Pixel32(kGreen));
    image->curFrame = 2;
    ShowThirdFrame();
    EXPECT_EQ(Shown(2, 4), Pixel32(kRed));
}

TEST_F(ComposedFrames, AreBlendedThroughTheGreysOfADeepMask)
{
    Make(kDisposalUnspecified, 32);
    Fill(image->GetFrameMaskGWorld(1), 0x808080);
    Idle(2);
    const UInt32 blended = Shown(2, 4);
    EXPECT_NEAR(static_cast<double>(blended >> 16), 128, 8);
    EXPECT_NEAR(static_cast<double>(blended >> 8 & 0xFF), 127, 8);
    EXPECT_EQ(blended & 0xFF, 0U);
}

TEST_F(ComposedFrames, AreNotClearedBetweenLoops)
{
    Make(kDisposalUnspecified);
    image->SetFrameMaskGWorld(0, nullptr);
    // The first frame covers the left half only, so the second one's right part stays.
    GWorldPtr half = nullptr;
    const Rect bounds = {0, 0, 4, 3};
    ASSERT_EQ(NewGWorld(&half, 16, &bounds, nullptr, nullptr, 0), 0);
    Fill(half, kRed);
    image->SetFrameGWorld(0, half);
    Idle(3);
    EXPECT_EQ(image->loopsDone, 1);
    EXPECT_EQ(Shown(1, 2), Pixel32(kRed));
    EXPECT_EQ(Shown(1, 3), Pixel32(kGreen));
}

TEST_F(ComposedFrames, ShowTheImageScaledToItsPlace)
{
    Make(kDisposalUnspecified);
    image->SetDisplayFlags(kVornDisplayScale);
    const Rect doubled = {kTop, kLeft, kTop + 8, kLeft + 12};
    image->Idle(doubled, 0);
    image->Idle(doubled, 0);
    EXPECT_EQ(Shown(2, 4), Pixel32(kGreen));
    EXPECT_EQ(Shown(5, 9), Pixel32(kGreen));
    EXPECT_EQ(Shown(1, 3), Pixel32(kRed));
    EXPECT_EQ(Shown(6, 10), Pixel32(kRed));
}

namespace
{

// An animation made at random: the same twice, as an image and as a model.
class RandomAnimation : public ComposedFrames, public testing::WithParamInterface<unsigned>
{
protected:
    int Draw(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }
    template <class Value>
    Value OneOf(const std::vector<Value>& values)
    {
        return values[static_cast<std::size_t>(Draw(0, static_cast<int>(values.size()) - 1))];
    }
    test::Color15 AnyColor() { return static_cast<test::Color15>(Draw(0, 0x7FFF)); }

    void MakeAnimation()
    {
        height = static_cast<SInt16>(Draw(1, 20));
        width = static_cast<SInt16>(Draw(1, 20));
        MakeImage(height, width);
        test::Color15 background = test::kWhite15;
        if (Draw(0, 3) != 0) {
            background = AnyColor();
            image->SetBackgroundColor(test::RGBOf(background));
        }
        model = std::make_unique<test::AnimationModel>(height, width, background);
        frames.clear();
        for (int count = Draw(1, 5); count > 0; --count)
            AddRandomFrame();
        image->SetLooping(1, 0);
        image->FinishRendering();
    }
    void AddRandomFrame()
    {
        test::ModelFrame frame;
        frame.height = Draw(1, height + 4);
        frame.width = Draw(1, width + 4);
        frame.top = Draw(-4, height);
        frame.left = Draw(-4, width);
        frame.disposal = Draw(-1, 4);
        const auto pixels = static_cast<std::size_t>(frame.height * frame.width);
        std::vector<test::Color15> colors(256);
        for (test::Color15& color : colors)
            color = AnyColor();
        for (std::size_t number = 0; number < pixels; ++number)
            frame.pixels.push_back(OneOf(colors));
        const int maskDepth = OneOf<int>({0, 1, 8, 32});
        for (std::size_t number = 0; maskDepth != 0 && number < pixels; ++number)
            frame.opaque.push_back(Draw(0, 1) != 0);
        AddToImage(frame, OneOf<int>({8, 16, 32}), maskDepth, colors);
        frames.push_back(frame);
    }
    void AddToImage(const test::ModelFrame& frame, int depth, int maskDepth,
                    const std::vector<test::Color15>& colors)
    {
        // The bounds need not begin at the origin: the position is added to them.
        const auto top = static_cast<SInt16>(Draw(-3, 3));
        const auto left = static_cast<SInt16>(Draw(-3, 3));
        const Rect bounds = {top, left, static_cast<SInt16>(top + frame.height),
                             static_cast<SInt16>(left + frame.width)};
        const auto table = reinterpret_cast<CTabHandle>(NewHandleClear(8 + 8 * 256));
        (*table)->ctSeed = GetCTSeed();
        (*table)->ctSize = 255;
        for (std::size_t entry = 0; entry < colors.size(); ++entry)
            (*table)->ctTable[entry] = {static_cast<SInt16>(entry), test::RGBOf(colors[entry])};
        SInt16 index = -1;
        EXPECT_EQ(image->AddNewFrame(bounds, static_cast<UInt16>(depth), table,
                                     static_cast<UInt16>(maskDepth), index),
                  0);
        DisposeHandle(reinterpret_cast<Handle>(table));
        image->SetFrameDisplayPos(
            index, {static_cast<SInt16>(frame.top - top), static_cast<SInt16>(frame.left - left)});
        image->SetFrameDisposalMethod(
            index, static_cast<VornImagePlugin::TDisposalMethod>(frame.disposal));
        for (int row = 0; row < frame.height; ++row)
            for (int column = 0; column < frame.width; ++column)
                WritePixel(index, frame, depth, maskDepth, colors, row, column);
    }
    void WritePixel(SInt16 index, const test::ModelFrame& frame, int depth, int maskDepth,
                    const std::vector<test::Color15>& colors, int row, int column)
    {
        const test::Color15 color = frame.Pixel(row, column);
        UInt32 value = color;
        if (depth == 8)
            value = static_cast<UInt32>(std::find(colors.begin(), colors.end(), color) -
                                        colors.begin());
        else if (depth == 32)
            value = Pixel32(color);
        test::SetPixel(image->GetFrameGWorld(index), row, column, value);
        if (maskDepth == 0)
            return;
        const bool opaque = frame.IsOpaque(row, column);
        const UInt32 black = maskDepth == 1 ? 1 : maskDepth == 8 ? 255 : 0;
        const UInt32 white = maskDepth == 32 ? 0xFFFFFF : 0;
        test::SetPixel(image->GetFrameMaskGWorld(index), row, column, opaque ? black : white);
    }
    // One step of the host's: time, a full redraw, or a redraw of some rows.
    void Step()
    {
        const SInt16 index = image->curFrame;
        const test::ModelFrame& frame = frames[static_cast<std::size_t>(index)];
        const int kind = Draw(0, 9);
        if (kind < 7) {
            image->Idle(Area(), 0);
            model->Show(frame, true);
            return;
        }
        image->SetDisplayFlags(kind == 7 ? 0 : kVornDisplayPartialRedraw);
        std::optional<test::ModelRows> rows;
        if (kind == 9)
            rows = InvalidateSomeRows(index, frame);
        image->Display(Area(), 0);
        const bool whole = kind == 7 || index == 0;
        model->Show(frame, whole, whole ? std::nullopt : rows);
    }
    test::ModelRows InvalidateSomeRows(SInt16 index, const test::ModelFrame& frame)
    {
        Rect bounds{};
        image->GetFrameBounds(index, bounds);
        const int first = Draw(0, frame.height - 1);
        const int last = Draw(first, frame.height - 1);
        image->InvalidateRow(static_cast<SInt16>(bounds.top + last));
        image->InvalidateRow(static_cast<SInt16>(bounds.top + first));
        // -1 means that there is no such edge; the bounds may have rows of that number.
        return {image->invalidTop == -1 ? 0 : image->invalidTop - bounds.top,
                image->invalidBottom == -1 ? frame.height : image->invalidBottom - bounds.top};
    }
    ::testing::AssertionResult ShowsTheModel() const
    {
        for (int row = 0; row < height; ++row)
            for (int column = 0; column < width; ++column)
                if (Shown(row, column) != Pixel32(model->OnPage(row, column)))
                    return ::testing::AssertionFailure()
                           << "row " << row << ", column " << column << ": " << std::hex
                           << Shown(row, column) << " instead of "
                           << Pixel32(model->OnPage(row, column));
        return ::testing::AssertionSuccess();
    }

    std::mt19937 random{GetParam()};
    SInt16 height = 0;
    SInt16 width = 0;
    std::vector<test::ModelFrame> frames;
    std::unique_ptr<test::AnimationModel> model;
};

} // namespace

TEST_P(RandomAnimation, ShowsWhatItsModelShows)
{
    for (int animation = 0; animation < 25; ++animation) {
        MakeAnimation();
        image->Display(Area(), 0);
        model->Show(frames.front(), true);
        ASSERT_TRUE(ShowsTheModel()) << "animation " << animation << ", first display";
        for (int step = 0; step < 20; ++step) {
            const SInt16 frame = image->curFrame;
            Step();
            ASSERT_TRUE(ShowsTheModel()) << "animation " << animation << ", step " << step
                                         << ", frame " << frame << " of " << frames.size();
            ASSERT_TRUE(IsWhiteOutsideTheImage(height, width));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomAnimation, testing::Range(1U, 9U));
