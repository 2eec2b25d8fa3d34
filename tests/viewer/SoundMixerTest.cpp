// SPDX-License-Identifier: MIT
#include "viewer/SoundMixer.h"

#include <gtest/gtest.h>

namespace
{

using viewer::SoundMixer;
using Samples = std::vector<SInt16>;

class Mixer : public testing::Test
{
protected:
    // Plays one channel of sound at 1000 frames a second.
    void Play(SoundMixer::Stream* stream, const Samples& frames, SInt64 milliseconds)
    {
        mixer.Play(*stream, frames.data(), static_cast<SInt32>(frames.size()), milliseconds * 1000);
    }
    Samples Result()
    {
        mixer.Flush();
        return written;
    }

    SInt32 rate = 0;
    SInt32 channels = 0;
    Samples written;
    SoundMixer mixer{{[this](SInt32 r, SInt32 c) {
                          rate = r;
                          channels = c;
                      },
                      [this](const SInt16* samples, size_t count) {
                          written.insert(written.end(), samples, samples + count);
                      }}};
};

Samples Ramp(SInt16 first, size_t count)
{
    Samples samples(count);
    for (SInt16& sample : samples) {
        sample = first++;
    }
    return samples;
}

TEST_F(Mixer, TheFirstStreamSetsTheFormat)
{
    mixer.Open(44100, 2);
    mixer.Open(8000, 1);
    EXPECT_EQ(rate, 44100);
    EXPECT_EQ(channels, 2);
}

TEST_F(Mixer, OneStreamPassesUnchanged)
{
    SoundMixer::Stream* stream = mixer.Open(1000, 1);
    Play(stream, {1, -2, 32767}, 0);
    Play(stream, {-32768, 5}, 3);
    EXPECT_EQ(Result(), (Samples{1, -2, 32767, -32768, 5}));
}

TEST_F(Mixer, TimeInWhichNothingSoundsIsLeftOut)
{
    SoundMixer::Stream* stream = mixer.Open(1000, 1);
    Play(stream, Ramp(0, 100), 5000);
    Play(stream, Ramp(100, 100), 60'000);
    EXPECT_EQ(Result(), Ramp(0, 200));
}

TEST_F(Mixer, SmallErrorsOfTimeDoNotTearAStream)
{
    SoundMixer::Stream* stream = mixer.Open(1000, 1);
    Play(stream, Ramp(0, 100), 0);
    Play(stream, Ramp(100, 100), 98);
    Play(stream, Ramp(200, 100), 205);
    EXPECT_EQ(Result(), Ramp(0, 300));
}

TEST_F(Mixer, StreamsAreAddedUpByTheirTimes)
{
    SoundMixer::Stream* first = mixer.Open(1000, 1);
    SoundMixer::Stream* second = mixer.Open(1000, 1);
    Play(first, Samples(300, 10), 0);
    Play(second, Samples(300, 5), 100);
    Samples expected(100, 10);
    expected.insert(expected.end(), 200, 15);
    expected.insert(expected.end(), 100, 5);
    EXPECT_EQ(Result(), expected);
}

TEST_F(Mixer, AGapInOneStreamIsKeptWhileAnotherSounds)
{
    SoundMixer::Stream* first = mixer.Open(1000, 1);
    SoundMixer::Stream* second = mixer.Open(1000, 1);
    Play(first, Samples(500, 10), 0);
    Play(second, Samples(100, 1), 0);
    Play(second, Samples(100, 1), 300);
    Samples expected(100, 11);
    expected.insert(expected.end(), 200, 10);
    expected.insert(expected.end(), 100, 11);
    expected.insert(expected.end(), 100, 10);
    EXPECT_EQ(Result(), expected);
}

TEST_F(Mixer, SumsAreCutOffAtTheLimits)
{
    SoundMixer::Stream* first = mixer.Open(1000, 1);
    SoundMixer::Stream* second = mixer.Open(1000, 1);
    Play(first, {30000, -30000}, 0);
    Play(second, {30000, -30000}, 0);
    EXPECT_EQ(Result(), (Samples{32767, -32768}));
}

TEST_F(Mixer, AnotherFormatIsBroughtToTheFirst)
{
    mixer.Open(1000, 2);
    SoundMixer::Stream* second = mixer.Open(500, 1);
    Play(second, {0, 100}, 0);
    EXPECT_EQ(Result(), (Samples{0, 0, 50, 50, 100, 100}));
}

TEST_F(Mixer, AStreamThatComesTooLateGoesOnWhereTheFileIs)
{
    SoundMixer::Stream* first = mixer.Open(1000, 1);
    SoundMixer::Stream* second = mixer.Open(1000, 1);
    Play(first, Samples(10'000, 1), 0);
    Play(second, Samples(100, 1), 0);
    const Samples result = Result();
    ASSERT_EQ(result.size(), 10'000u);
    EXPECT_EQ(result[5999], 1);
    EXPECT_EQ(result[6000], 2);
}

TEST_F(Mixer, HoldsBackOnlyAFewSeconds)
{
    SoundMixer::Stream* stream = mixer.Open(1000, 1);
    Play(stream, Samples(60'000, 1), 0);
    EXPECT_GE(written.size(), 50'000u);
}

TEST_F(Mixer, AStreamThatWasClosedLeavesItsSound)
{
    SoundMixer::Stream* stream = mixer.Open(1000, 1);
    Play(stream, {1, 2, 3}, 0);
    mixer.Close(*stream);
    EXPECT_EQ(Result(), (Samples{1, 2, 3}));
}

} // namespace
