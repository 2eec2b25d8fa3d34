// SPDX-License-Identifier: MIT
//
// A movie on a device that takes its time, everything by a clock that the test moves: pictures and
// sound come together.
#include "viewer/window/HeardSound.h"
#include "viewer/window/PortionTimes.h"

#include "tests/toolbox/OpenedMovie.h"

#include <optional>

namespace
{

using viewer::HeardSound;
using viewer::PortionTimes;
using viewer::SoundStream;
using viewer::WindowClock;

constexpr const char* kClip = "mpeg1.mpg";
constexpr SInt64 kMostApart = 20'000;
constexpr size_t kPortion = 2048;
constexpr SInt32 kRate = 44100;
constexpr SInt32 kChannels = 2;
constexpr SInt64 kPortionTime = kPortion * SInt64{1'000'000} / kRate;
constexpr SInt64 kLongestSleep = 50'000;

SInt64 gReal = 0;

// What the movie does by itself: when its pictures are due after it is played, and its sound.
struct Plan {
    std::vector<SInt64> pictures; // that of the n-th new picture
    SInt64 sound = -1;
    std::vector<SInt16> samples;
};

Plan MakePlan()
{
    Plan plan;
    OpenedMovie page(Clip(kClip), kClip);
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    const SInt64 clicked = page.now;
    SInt32 shown = page.Statistics().picturesShown;
    page.ClickPlay();
    page.PlayToEnd([&] {
        page.Idle();
        if (const SInt32 now = page.Statistics().picturesShown; now > shown) {
            plan.pictures.push_back(page.now - clicked);
            shown = now;
        }
        if (plan.sound < 0 && !page.sound.empty()) {
            plan.sound = 0; // both begin with the movie
        }
    });
    plan.samples = page.sound;
    return plan;
}

// A device with a queue of a known length.
struct Device {
    SInt64 latency = 0;
    double speed = 1;
};

class Rig
{
public:
    explicit Rig(const Device& device)
        : page(Clip(kClip), kClip), device_(device), times_(device.latency)
    {
        gReal = 1'000'000;
        clock.emplace([] { return gReal; });
        page.sink.refCon = this;
        page.sink.open = [](void* self, SInt32 rate, SInt32 channels) -> void* {
            return static_cast<Rig*>(self)->sound.Open(rate, channels);
        };
        page.sink.prepare = [](void* self, void*) { return static_cast<Rig*>(self)->Prepare(); };
        page.sink.play = [](void* self, void* stream, const SInt16* frames, SInt32 count,
                            SInt64 at) {
            static_cast<Rig*>(self)->sound.Play(*static_cast<SoundStream*>(stream), frames, count,
                                                at);
        };
        page.sink.recall = [](void* self, void* stream, SInt64 at) {
            static_cast<Rig*>(self)->sound.Recall(*static_cast<SoundStream*>(stream), at);
        };
        page.sink.close = [](void* self, void* stream) {
            static_cast<Rig*>(self)->sound.Close(*static_cast<SoundStream*>(stream));
        };
        SetSoundSink(&page.sink);
        page.OpenAll();
        page.IdleUntilNothingIsPending();
    }
    ~Rig() { page.Close(); }

    void Click()
    {
        page.ClickPlay();
        Work();
    }

    // Runs for that long, or to the movie's end.
    void Run(SInt64 duration)
    {
        for (const SInt64 end = gReal + duration; gReal < end;) {
            const SInt64 deadline = NextToolboxDeadline();
            SInt64 wake = gReal + kLongestSleep;
            if (deadline >= 0) {
                wake = std::min(wake, gReal + clock->RealDuration(
                                                  std::max<SInt64>(0, deadline - clock->Now())));
            }
            if (nextPortion_ && *nextPortion_ <= wake) {
                gReal = std::max(gReal, *nextPortion_);
                TakePortion();
            } else {
                gReal = wake;
            }
            Work();
        }
    }

    struct Shown {
        SInt32 number; // of the picture
        SInt64 at;     // real time
    };
    OpenedMovie page;
    HeardSound sound;
    std::optional<WindowClock> clock;
    std::vector<Shown> shown;
    std::vector<SInt16> heard; // all the device has played
    SInt64 heardSince = 0;     // by the real clock

    SInt64 TimeOfFrame(size_t frame) const
    {
        return heardSince +
               static_cast<SInt64>(static_cast<double>(frame) * 1e6 / kRate * device_.speed);
    }

private:
    SInt64 Prepare()
    {
        if (!nextPortion_) {
            nextPortion_ = gReal + 3'000;
            heardSince = *nextPortion_ + device_.latency;
        }
        return device_.latency + kPortionTime + 20'000;
    }
    void TakePortion()
    {
        std::vector<SInt16> portion(kPortion * kChannels);
        sound.Fill(portion.data(), kPortion, times_.Next(gReal, kPortionTime));
        heard.insert(heard.end(), portion.begin(), portion.end());
        nextPortion_ = TimeOfFrame(heard.size() / kChannels) - device_.latency;
    }
    void Work()
    {
        page.Idle();
        if (const SInt32 count = page.Statistics().picturesShown;
            shown.empty() || shown.back().number != count) {
            shown.push_back({count, gReal});
        }
        sound.Tend(*clock);
    }

    Device device_;
    PortionTimes times_;
    std::optional<SInt64> nextPortion_;
};

// Whether the sound was heard so that it ends with that frame, its beginning being a ramp.
bool IsHeardUpTo(size_t end, const std::vector<SInt16>& heard, const std::vector<SInt16>& samples,
                 size_t length)
{
    return std::equal(samples.end() - static_cast<ptrdiff_t>(length), samples.end(),
                      heard.begin() + static_cast<ptrdiff_t>(end - length));
}

class OnADevice : public testing::TestWithParam<Device>
{
};

// When the movie's end is heard less when it would be if it had begun at 0, by the real clock.
// The last 5 milliseconds fade out.
std::optional<SInt64> StartOfSound(const Rig& rig, const Plan& plan, size_t length)
{
    const std::vector<SInt16> samples(plan.samples.begin(), plan.samples.end() - 1024);
    for (size_t end = rig.heard.size(); end >= length; end -= kChannels) {
        if (IsHeardUpTo(end, rig.heard, samples, length)) {
            const size_t frames = samples.size() / kChannels;
            return rig.TimeOfFrame(end / kChannels) -
                   static_cast<SInt64>(frames) * 1'000'000 / kRate - plan.sound;
        }
    }
    return std::nullopt;
}

void ExpectTogether(const Rig& rig, const Plan& plan, SInt64 soundStart, double speed,
                    size_t fromPicture)
{
    ASSERT_GT(plan.pictures.size(), 100U);
    ASSERT_EQ(rig.shown.size(), plan.pictures.size() + 1);
    for (size_t i = fromPicture; i < plan.pictures.size(); ++i) {
        // Where the device is slow, the movie is.
        const SInt64 end = plan.pictures.back();
        const SInt64 soundOf =
            soundStart + plan.pictures[i] +
            static_cast<SInt64>(static_cast<double>(plan.pictures[i] - end) * (speed - 1));
        ASSERT_LE(std::abs(rig.shown[i + 1].at - soundOf), kMostApart) << "picture " << i + 1;
    }
}

TEST_P(OnADevice, PicturesAndSoundComeTogether)
{
    const Plan plan = MakePlan();
    Rig rig(GetParam());
    rig.Click();
    rig.Run(6'000'000);
    const std::optional<SInt64> start = StartOfSound(rig, plan, plan.samples.size() - 3000);
    ASSERT_TRUE(start) << "it does not sound as it should";
    ExpectTogether(rig, plan, *start, GetParam().speed, 0);
}

TEST_P(OnADevice, TheyStayTogetherAfterAPause)
{
    const Plan plan = MakePlan();
    Rig rig(GetParam());
    rig.Click();
    rig.Run(1'500'000);
    const size_t before = rig.shown.size();
    rig.Click();
    rig.Run(2'345'678);
    EXPECT_LE(rig.shown.size(), before + 1);
    rig.Click();
    rig.Run(6'000'000);
    const std::optional<SInt64> start = StartOfSound(rig, plan, 2 * kRate * kChannels);
    ASSERT_TRUE(start) << "it does not sound as it should";
    ExpectTogether(rig, plan, *start, GetParam().speed, before);
}

INSTANTIATE_TEST_SUITE_P(Movies, OnADevice,
                         testing::Values(Device{5'000, 1}, Device{23'000, 1}, Device{90'000, 1},
                                         Device{250'000, 1}, Device{40'000, 1.002},
                                         Device{40'000, 0.998}),
                         [](const auto& each) {
                             return std::to_string(each.param.latency / 1000) + "MsAt" +
                                    std::to_string(static_cast<int>(each.param.speed * 1000 + 0.5));
                         });

} // namespace
