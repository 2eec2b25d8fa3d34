// SPDX-License-Identifier: MIT
//
// The sound of a movie for a sink that is heard: it is given ahead, and taken back.
#include "tests/toolbox/OpenedMovie.h"

#include "toolbox/events/Events.h"

namespace
{

constexpr SInt64 kLead = 70'000;

// The reference: what a sink gets that wants frames when they are due.
std::vector<SInt16> SoundOf(const std::string& clip)
{
    OpenedMovie page(Clip(clip), clip);
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    return page.sound;
}

// A movie with a sink that sounds each frame at its time, unless it was recalled before.
class HeardMovie
{
public:
    explicit HeardMovie(const std::string& clip) : page(Clip(clip), clip)
    {
        page.sink.refCon = this;
        page.sink.open = [](void* self, SInt32 soundRate, SInt32 soundChannels) -> void* {
            static_cast<HeardMovie*>(self)->rate = soundRate;
            static_cast<HeardMovie*>(self)->channels = soundChannels;
            return self;
        };
        page.sink.prepare = [](void* self, void*) { return static_cast<HeardMovie*>(self)->lead; };
        page.sink.play = [](void* self, void*, const SInt16* frames, SInt32 count, SInt64 at) {
            static_cast<HeardMovie*>(self)->Take(frames, count, at);
        };
        page.sink.recall = [](void* self, void*, SInt64 at) {
            static_cast<HeardMovie*>(self)->Recall(at);
        };
        page.sink.setVolume = [](void* self, void*, SInt32 volume) {
            static_cast<HeardMovie*>(self)->volumes.push_back(volume);
        };
        SetSoundSink(&page.sink);
    }

    ~HeardMovie() { page.Close(); }
    HeardMovie(const HeardMovie&) = delete;
    HeardMovie& operator=(const HeardMovie&) = delete;

    // Everything that was heard or will be.
    std::vector<SInt16> Sound() const
    {
        std::vector<SInt16> all;
        for (const Frame& frame : given) {
            all.insert(all.end(), frame.samples.begin(), frame.samples.end());
        }
        return all;
    }

    void Run(SInt64 microseconds)
    {
        page.PlayToEnd([] {}, static_cast<double>(microseconds) / 1e6);
    }

    OpenedMovie page;
    SInt64 lead = kLead;
    SInt32 rate = 0;
    SInt32 channels = 0;
    std::vector<SInt32> volumes;
    int pieces = 0; // in which the sound was given
    SInt64 leastAhead = INT64_MAX;
    SInt64 firstDue = -1;

private:
    struct Frame {
        SInt64 at;
        std::vector<SInt16> samples;
    };
    void Take(const SInt16* frames, SInt32 count, SInt64 at)
    {
        ++pieces;
        leastAhead = std::min(leastAhead, at - page.now);
        firstDue = firstDue < 0 ? at : firstDue;
        for (SInt32 i = 0; i < count; ++i, frames += channels) {
            given.push_back({at + SInt64{i} * 1'000'000 / rate, {frames, frames + channels}});
        }
    }
    void Recall(SInt64 at)
    {
        constexpr SInt64 kRounding = 2;
        std::erase_if(given, [at](const Frame& frame) { return frame.at >= at - kRounding; });
    }

    std::vector<Frame> given;
};

TEST(HeardMovie, GivesItsSoundAheadByAsMuchAsTheSinkWants)
{
    HeardMovie movie("mpeg1.mpg");
    movie.page.OpenAll();
    movie.page.ClickPlay();
    movie.Run(2'000'000);
    EXPECT_GE(movie.leastAhead, kLead);
}

TEST(HeardMovie, GivesItsSoundForManyPicturesAtATime)
{
    HeardMovie movie("mpeg1.mpg");
    movie.page.OpenAll();
    movie.page.ClickPlay();
    movie.Run(2'000'000);
    EXPECT_GT(movie.page.Statistics().picturesShown, 4 * movie.pieces);
}

TEST(HeardMovie, BeginsItsPicturesWhenItsSoundIsHeard)
{
    const auto timesOfPictures = [](SInt64 lead) {
        HeardMovie movie("mpeg1.mpg");
        movie.lead = lead;
        movie.page.OpenAll();
        movie.page.IdleUntilNothingIsPending();
        const SInt64 clicked = movie.page.now;
        movie.page.ClickPlay();
        std::vector<SInt64> times;
        for (SInt32 shown = 1; movie.page.now < clicked + 1'000'000;
             movie.page.now = std::max(movie.page.now + 1, NextToolboxDeadline())) {
            movie.page.Idle();
            if (movie.page.Statistics().picturesShown > shown) {
                times.push_back(movie.page.now - clicked - lead);
                ++shown;
            }
        }
        EXPECT_EQ(movie.firstDue, clicked + lead);
        times.resize(25);
        return times;
    };
    EXPECT_EQ(timesOfPictures(kLead), timesOfPictures(0));
}

TEST(HeardMovie, BeginsAtOnceWhereTheSinkHasNoDevice)
{
    HeardMovie movie("mpeg1.mpg");
    movie.lead = 0;
    movie.page.OpenAll();
    const SInt64 clicked = movie.page.now;
    movie.page.ClickPlay();
    movie.Run(100'000);
    EXPECT_EQ(movie.firstDue, clicked);
}

TEST(HeardMovie, SoundsAsItDoesWithoutALead)
{
    for (const char* clip : {"mpeg1.mpg", "sound.mp3"}) {
        HeardMovie movie(clip);
        movie.page.OpenAll();
        movie.page.ClickPlay();
        movie.page.PlayToEnd();
        EXPECT_EQ(movie.Sound(), SoundOf(clip)) << clip;
        EXPECT_EQ(movie.page.Statistics().soundFrames,
                  static_cast<SInt64>(movie.Sound().size()) / movie.channels);
    }
}

TEST(HeardMovie, GoesOnAfterAPauseWhereItsSoundWasCutOff)
{
    HeardMovie movie("mpeg1.mpg");
    movie.page.OpenAll();
    for (const SInt64 played : {10'000, 90'000, 470'000, 1'234'567}) {
        movie.page.ClickPlay();
        movie.Run(played);
        movie.page.ClickPlay();
        movie.page.now += 777'777;
    }
    movie.page.ClickPlay();
    movie.page.PlayToEnd();
    EXPECT_EQ(movie.Sound(), SoundOf("mpeg1.mpg"));
}

TEST(HeardMovie, LosesNoSoundWhereItRunsOutOfBytes)
{
    HeardMovie movie("mpeg1.mpg");
    ArrivingData& data = movie.page.data;
    ASSERT_EQ(movie.page.Open(), noErr);
    data.ArriveUpTo(150'000);
    ASSERT_TRUE(movie.page.ShowIfPlayable());
    movie.page.ClickPlay();
    movie.Run(3'000'000);
    EXPECT_TRUE(movie.page.Statistics().waiting);
    while (data.Arrived() < data.Size()) { // slower than it plays
        data.ArriveUpTo(data.Arrived() + 8'000);
        movie.Run(60'000);
    }
    data.ArriveCompletely();
    movie.page.PlayToEnd();
    EXPECT_EQ(movie.Sound(), SoundOf("mpeg1.mpg"));
}

TEST(HeardMovie, TellsTheSinkHowLoudItIsAndLeavesTheFramesAlone)
{
    HeardMovie movie("mpeg1.mpg");
    movie.page.OpenAll();
    EXPECT_TRUE(movie.page.Key(kDownArrowCharCode));
    movie.page.ClickPlay();
    EXPECT_TRUE(movie.page.Key(kDownArrowCharCode));
    movie.page.PlayToEnd();
    EXPECT_EQ(movie.volumes, (std::vector<SInt32>{224, 192}));
    EXPECT_EQ(movie.Sound(), SoundOf("mpeg1.mpg"));
}

TEST(HeardMovie, IsAsLoudAsTheArrowsUpAndDownMakeIt)
{
    HeardMovie movie("mpeg1.mpg");
    movie.page.OpenAll();
    movie.page.ClickPlay();
    const auto press = [&](char arrow, int times) {
        for (int i = 0; i < times; ++i) {
            EXPECT_TRUE(movie.page.Key(arrow));
        }
        movie.Run(100'000);
        return movie.volumes.empty() ? -1 : movie.volumes.back();
    };
    EXPECT_EQ(press(kDownArrowCharCode, 3), 160);
    EXPECT_EQ(press(kUpArrowCharCode, 1), 192);
    EXPECT_EQ(press(kDownArrowCharCode, 20), 0);
    EXPECT_EQ(press(kUpArrowCharCode, 20), 256);
}

} // namespace
