// SPDX-License-Identifier: MIT
//
// Where movies draw.
#include "tests/toolbox/OpenedMovie.h"

#include <sys/resource.h>

namespace
{

TEST(MovieDrawing, ShowsNothingBeforeTheFirstDrawAction)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.data.ArriveCompletely();
    ASSERT_EQ(page.Open(0), noErr);
    SetMovieGWorld(page.movie, page.port, nullptr);
    SetMovieActive(page.movie, 1);
    const Rect box = {0, 0, 240, 352};
    page.controller = NewMovieController(page.movie, &box, mcTopLeftMovie | mcScaleMovieToFit);
    page.Idle();
    EXPECT_FALSE(TakeDirtyRegion(page.port, nullptr));
    MCDoAction(page.controller, mcActionDraw, page.port);
    EXPECT_TRUE(TakeDirtyRegion(page.port, nullptr));
}

TEST(MovieDrawing, StaysInsideTheClip)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.data.ArriveCompletely();
    ASSERT_EQ(page.Open(0), noErr);
    SetMovieGWorld(page.movie, page.port, nullptr);
    SetMovieActive(page.movie, 1);
    const Rect box = {0, 0, 240, 352};
    page.controller = NewMovieController(page.movie, &box, mcTopLeftMovie | mcScaleMovieToFit);
    const RgnHandle clip = NewRgn();
    const Rect allowed = {50, 60, 100, 163};
    RectRgn(clip, &allowed);
    MCSetClip(page.controller, clip, nullptr);
    DisposeRgn(clip);
    MCDoAction(page.controller, mcActionDraw, page.port);
    SInt32 rowBytes = 0;
    const UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
    int outside = 0;
    int inside = 0;
    for (int v = 0; v < 400; ++v) {
        for (int h = 0; h < 500; ++h) {
            const UInt8* const p = pixels + v * rowBytes + h * 4;
            const bool isWhite = p[1] == 0xFF && p[2] == 0xFF && p[3] == 0xFF;
            const bool isAllowed =
                v >= allowed.top && v < allowed.bottom && h >= allowed.left && h < allowed.right;
            outside += !isAllowed && !isWhite;
            inside += isAllowed && !isWhite;
        }
    }
    EXPECT_EQ(outside, 0);
    EXPECT_GT(inside, 1000);
}

TEST(MovieDrawing, FillsItsBoxAtEverySize)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    SInt32 rowBytes = 0;
    UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
    constexpr UInt8 kUntouched = 0xA5; // in the byte that drawing sets to zero
    for (SInt16 height = 1; height < 384; height = static_cast<SInt16>(height + 11)) {
        for (SInt16 width = 1; width < 500; width = static_cast<SInt16>(width + 37)) {
            memset(pixels, kUntouched, static_cast<size_t>(rowBytes) * 400);
            const Rect bounds = {0, 0, static_cast<SInt16>(height + 16), width};
            MCSetControllerBoundsRect(page.controller, &bounds);
            MCDoAction(page.controller, mcActionDraw, page.port);
            int untouched = 0;
            for (int v = 0; v < height; ++v) {
                for (int h = 0; h < width; ++h) {
                    untouched += pixels[v * rowBytes + h * 4] == kUntouched;
                }
            }
            EXPECT_EQ(untouched, 0) << width << " by " << height;
        }
    }
}

// The first rows and columns of the port, with the picture drawn at that size.
std::vector<UInt8> PixelsOf(OpenedMovie& page, SInt16 width, SInt16 height, int rows, int columns)
{
    const Rect bounds = {0, 0, static_cast<SInt16>(height + 16), width};
    MCSetControllerBoundsRect(page.controller, &bounds);
    MCDoAction(page.controller, mcActionDraw, page.port);
    SInt32 rowBytes = 0;
    const UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
    std::vector<UInt8> shown;
    for (int v = 0; v < rows; ++v) {
        shown.insert(shown.end(), pixels + v * rowBytes, pixels + v * rowBytes + columns * 4);
    }
    return shown;
}

// What the port shows of a picture drawn with that many rows and columns.
std::vector<UInt8> CornerOf(OpenedMovie& page, SInt16 side)
{
    return PixelsOf(page, side, side, 400, 500);
}

TEST(MovieDrawing, BeyondALargeSizeOnlyEnlargesPixels)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    const std::vector<UInt8> large = CornerOf(page, 4096);
    const std::vector<UInt8> twice = CornerOf(page, 8192);
    size_t different = 0;
    for (size_t v = 0; v < 400; ++v) {
        for (size_t h = 0; h < 500; ++h) {
            different +=
                memcmp(&twice[(v * 500 + h) * 4], &large[(v / 2 * 500 + h / 2) * 4], 4) != 0;
        }
    }
    EXPECT_EQ(different, 0U);
}

TEST(MovieDrawing, TakesNoMemoryForWhatIsNotSeen)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    CornerOf(page, 4096);
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    CornerOf(page, 20000);
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    constexpr long kKilobytesThatOneOfThemTakes = 1600000;
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, kKilobytesThatOneOfThemTakes / 10);
}

// A scaler that is fast for even widths only is not asked for others.
TEST(MovieDrawing, AtAnOddWidthIsTheNextEvenOneWithoutItsLastColumn)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    EXPECT_EQ(PixelsOf(page, 319, 200, 200, 319), PixelsOf(page, 320, 200, 200, 319));
}

TEST(MovieDrawing, DoesNotTouchItsNeighboursAtAnyWidth)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    SInt32 rowBytes = 0;
    UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
    for (SInt16 width = 320; width < 360; ++width) {
        memset(pixels, 0xFF, static_cast<size_t>(rowBytes) * 400);
        const Rect bounds = {0, 0, 256, width};
        MCSetControllerBoundsRect(page.controller, &bounds);
        MCDoAction(page.controller, mcActionDraw, page.port);
        int outside = 0;
        for (int v = 0; v < 400; ++v) {
            for (int h = width; h < 500; ++h) {
                outside += pixels[v * rowBytes + h * 4 + 1] != 0xFF;
            }
        }
        EXPECT_EQ(outside, 0) << "width " << width;
    }
}

} // namespace
