// SPDX-License-Identifier: MIT
//
// Movies that are sent elsewhere: by the slider and by steps.
#include "tests/toolbox/OpenedMovie.h"
#include "tests/toolbox/PlainDecode.h"

#include <ostream>

namespace
{

// As a recording that tells what its pictures are like at its beginning only.
std::string WithOneSequenceHeader(std::string bytes)
{
    constexpr size_t kHeaderSize = 12; // without matrices of its own
    const size_t first = bytes.find({"\0\0\1\xB3", 4});
    const std::string header = bytes.substr(first, kHeaderSize);
    for (size_t at = first + 1; (at = bytes.find(header, at)) != std::string::npos;) {
        bytes.replace(at, kHeaderSize, kHeaderSize, '\0'); // stuffing
    }
    return bytes;
}

// As a recording that was cut in the middle: its first group of pictures is not whole.
std::string WithoutItsFirstGroup(const std::string& bytes)
{
    const std::string header = {"\0\0\1\xB3", 4};
    return bytes.substr(bytes.find(header, bytes.find(header) + 1));
}

struct SeekCase {
    const char* name;
    std::string (*bytes)();
};

std::ostream& operator<<(std::ostream& out, const SeekCase& which)
{
    return out << which.name;
}

const SeekCase kSeekCases[] = {
    {"Mpeg1Program", [] { return Clip("mpeg1.mpg"); }},
    {"Mpeg2Program", [] { return Clip("mpeg2.mpg"); }},
    {"SilentProgram", [] { return Clip("silent.mpg"); }},
    {"Mpeg1Pictures", [] { return Clip("video.m1v"); }},
    {"Mpeg2Pictures", [] { return Clip("video.m2v"); }},
    {"ProgramWithOneHeader", [] { return WithOneSequenceHeader(Clip("mpeg1.mpg")); }},
    {"PicturesWithOneHeader", [] { return WithOneSequenceHeader(Clip("video.m1v")); }},
    {"PicturesCutAtTheStart", [] { return WithoutItsFirstGroup(Clip("video.m1v")); }},
};

class SoughtMovie : public testing::TestWithParam<SeekCase>
{
protected:
    SoughtMovie() : bytes(GetParam().bytes()), plain(DecodePlainly(bytes)), page(bytes) {}

    void OpenAll()
    {
        page.OpenAll();
        page.IdleUntilNothingIsPending();
    }

    // The plain decode's number of the picture shown; -1 if it is none of them.
    int PictureShown() const
    {
        SInt32 rowBytes = 0;
        const UInt8* const pixels = GetPortPixels(page.port, &rowBytes);
        std::string seen;
        for (int v = 0; v < plain.height; ++v) {
            for (int h = 0; h < plain.width; ++h) {
                const UInt8* const p = pixels + ptrdiff_t{v} * rowBytes + ptrdiff_t{h} * 4;
                seen.append(reinterpret_cast<const char*>(p) + 1, 3);
            }
        }
        const auto found = std::find(plain.pixels.begin(), plain.pixels.end(), seen);
        return found == plain.pixels.end() ? -1 : static_cast<int>(found - plain.pixels.begin());
    }
    int LastPicture() const { return static_cast<int>(plain.pixels.size()) - 1; }

    void Press(int h)
    {
        EXPECT_TRUE(page.Mouse(mouseDown, h, page.Bar().top + 8));
        EXPECT_TRUE(page.Mouse(mouseUp, h, page.Bar().top + 8));
    }
    // The number of the picture that belongs to a place on the slider.
    int PictureAt(int h) const
    {
        const double travel = SliderRight() - SliderLeft() - 8;
        const double share = std::clamp((h - SliderLeft() - 4) / travel, 0.0, 1.0);
        const double time = share * GetMovieDuration(page.movie) / 90000.0;
        const double sincePictures = std::max(0.0, time - plain.start);
        return std::min(static_cast<int>(sincePictures * plain.rate), LastPicture());
    }
    int SliderLeft() const { return page.Bar().left + 32; }
    int SliderRight() const { return page.Bar().right - 32; }

    const std::string bytes;
    const PlainPictures plain;
    OpenedMovie page;
};

TEST_P(SoughtMovie, ShowsThePlainDecodesPictureWhereverTheSliderIsPressed)
{
    OpenAll();
    for (int h = SliderLeft(); h < SliderRight(); h += 3) {
        Press(h);
        EXPECT_EQ(PictureShown(), PictureAt(h)) << "pressed at " << h;
    }
    for (int h = SliderRight() - 1; h >= SliderLeft(); h -= 7) {
        Press(h);
        EXPECT_EQ(PictureShown(), PictureAt(h)) << "pressed going back at " << h;
    }
}

TEST_P(SoughtMovie, StepsFromPictureToPictureForwardAndBack)
{
    OpenAll();
    for (int i = 1; i <= LastPicture(); ++i) {
        ASSERT_TRUE(page.Key(kRightArrowCharCode));
        ASSERT_EQ(PictureShown(), i);
    }
    for (int i = LastPicture() - 1; i >= 0; --i) {
        ASSERT_TRUE(page.Key(kLeftArrowCharCode));
        ASSERT_EQ(PictureShown(), i);
    }
}

// Pictures that were decoded while it played have their turn.
TEST_P(SoughtMovie, StepsOnFromWhereverItWasPaused)
{
    OpenAll();
    for (int steps = 1; steps < 6; ++steps) {
        page.ClickPlay();
        page.PlayToEnd([] {}, 0.15);
        page.ClickPlay();
        const int paused = PictureShown();
        ASSERT_TRUE(page.Key(kRightArrowCharCode));
        ASSERT_EQ(PictureShown(), paused + 1);
        ASSERT_TRUE(page.Key(kRightArrowCharCode));
        ASSERT_EQ(PictureShown(), paused + 2);
        ASSERT_TRUE(page.Key(kLeftArrowCharCode));
        ASSERT_EQ(PictureShown(), paused + 1);
    }
}

TEST_P(SoughtMovie, PlaysEveryPictureFromThereOn)
{
    OpenAll();
    const int middle = (SliderLeft() + SliderRight()) / 2;
    Press(middle);
    int last = PictureAt(middle);
    page.ClickPlay();
    page.PlayToEnd([&] {
        const int shown = PictureShown();
        EXPECT_TRUE(shown == last || shown == last + 1) << shown << " behind " << last;
        last = shown;
    });
    EXPECT_EQ(PictureShown(), LastPicture());
    EXPECT_EQ(page.Statistics().picturesDropped, 0);
}

TEST_P(SoughtMovie, StaysAtTheEndToWhichItIsDraggedWhileItPlays)
{
    OpenAll();
    page.ClickPlay();
    Press(SliderRight() - 1);
    EXPECT_TRUE(page.Statistics().atEnd);
    EXPECT_FALSE(page.Statistics().playing);
    EXPECT_EQ(PictureShown(), LastPicture());
}

TEST_P(SoughtMovie, ShowsTheRightPictureWhileStillLoading)
{
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(page.data.Size() * 3 / 4);
    ASSERT_TRUE(page.ShowIfPlayable());
    page.IdleUntilNothingIsPending();
    for (const int part : {2, 5, 3}) {
        const int h = SliderLeft() + (SliderRight() - SliderLeft()) * part / 10;
        Press(h);
        EXPECT_EQ(PictureShown(), PictureAt(h)) << part << " tenths";
    }
    page.data.ArriveCompletely();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(PictureShown(), LastPicture());
}

INSTANTIATE_TEST_SUITE_P(Movies, SoughtMovie, testing::ValuesIn(kSeekCases),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SeekingMovie, PastTheLoadedPartStopsAtItsEnd)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    ASSERT_EQ(page.Open(), noErr);
    page.data.ArriveUpTo(page.data.Size() / 2);
    ASSERT_TRUE(page.ShowIfPlayable());
    page.IdleUntilNothingIsPending();
    const Rect bar = page.Bar();
    EXPECT_TRUE(page.Mouse(mouseDown, bar.right - 40, bar.top + 8));
    EXPECT_TRUE(page.Mouse(mouseUp, bar.right - 40, bar.top + 8));
    EXPECT_GE(page.Statistics().picturesShown, 2);
    page.data.ArriveCompletely();
    page.ClickPlay();
    page.PlayToEnd();
    // About half of the pictures were skipped, the other half is shown.
    EXPECT_GT(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg") / 3);
    EXPECT_LT(page.Statistics().picturesShown, ExpectedPictures("mpeg1.mpg") * 2 / 3);
}

TEST(SeekingMovie, PlaysTheRestOfItsSoundFromThere)
{
    OpenedMovie page(Clip("sound.mp2"), "sound.mp2");
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    const Rect bar = page.Bar();
    EXPECT_TRUE(
        page.Mouse(mouseDown, bar.left + 32 + (bar.right - bar.left - 64) / 2, bar.top + 8));
    EXPECT_TRUE(page.Mouse(mouseUp, bar.left + 32 + (bar.right - bar.left - 64) / 2, bar.top + 8));
    page.ClickPlay();
    page.PlayToEnd();
    const double seconds = static_cast<double>(page.sound.size()) / 2 / 48000;
    EXPECT_NEAR(seconds, 1.5, 0.2);
}

// From some frame on none of the clip's can be decoded: the side information (ISO 11172-3 2.4.1.7)
// tells of more big values than there are.
std::string WithSpoiltFrames(std::string mp3, int first)
{
    constexpr size_t kFrameSize = 208; // 64 kbit/s at 44.1 kHz, and one byte more where padded
    constexpr size_t kHeaderSize = 4;
    constexpr size_t kSideSize = 17; // of one channel
    size_t at = mp3.find("\xFF\xFB");
    for (int i = 0; at + kFrameSize <= mp3.size(); ++i) {
        const size_t padding = (static_cast<UInt8>(mp3[at + 2]) >> 1) & 1U;
        if (i >= first) {
            mp3.replace(at + kHeaderSize, kSideSize, kSideSize, '\xFF');
        }
        at += kFrameSize + padding;
    }
    return mp3;
}

TEST(SeekingMovie, EndsAtOnceWhereNothingFromThereOnCanBeDecoded)
{
    OpenedMovie page(WithSpoiltFrames(Clip("sound.mp3"), 50), "sound.mp3");
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    const Rect bar = page.Bar();
    EXPECT_TRUE(page.Mouse(mouseDown, bar.right - 60, bar.top + 8));
    EXPECT_TRUE(page.Mouse(mouseUp, bar.right - 60, bar.top + 8));
    const double sought = page.Statistics().timeSeconds;
    EXPECT_GT(sought, 4);
    const TimeValue duration = GetMovieDuration(page.movie);
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_TRUE(page.sound.empty());
    EXPECT_FALSE(page.Statistics().playing);
    EXPECT_NEAR(page.Statistics().timeSeconds, sought, 0.05);
    EXPECT_EQ(GetMovieDuration(page.movie), duration);
}

class SoughtSound : public testing::TestWithParam<const char*>
{
};

TEST_P(SoughtSound, IsThePlainDecodesSoundFromThereToTheEnd)
{
    OpenedMovie page(Clip(GetParam()), GetParam());
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    const std::string whole = Clip(std::string(GetParam()) + ".pcm");
    for (const int part : {7, 2, 5}) {
        const Rect bar = page.Bar();
        const int h = bar.left + 32 + (bar.right - bar.left - 64) * part / 10;
        EXPECT_TRUE(page.Mouse(mouseDown, h, bar.top + 8));
        EXPECT_TRUE(page.Mouse(mouseUp, h, bar.top + 8));
        page.sound.clear();
        page.ClickPlay();
        page.PlayToEnd();
        const std::string heard = AsBytes(page.sound);
        ASSERT_LT(heard.size(), whole.size());
        const double share = static_cast<double>(heard.size()) / static_cast<double>(whole.size());
        EXPECT_NEAR(share, 1 - part / 10.0, 0.05) << part;
        EXPECT_LE(LargestDifference(heard, whole.substr(whole.size() - heard.size())), 1) << part;
    }
}

INSTANTIATE_TEST_SUITE_P(Movies, SoughtSound,
                         testing::Values("sound.mp2", "sound.mp3", "mpeg1.mpg", "mpeg2.mpg"));

} // namespace
