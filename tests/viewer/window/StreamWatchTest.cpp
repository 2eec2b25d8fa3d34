// SPDX-License-Identifier: MIT
#include "viewer/window/StreamWatch.h"

#include <gtest/gtest.h>

#include <SDL.h>
#include <array>
#include <unistd.h>

namespace
{

using viewer::FileDescriptor;
using viewer::StreamWatch;

constexpr int kLongEnough = 10'000; // milliseconds, never waited in full

class StreamWatchTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        SDL_SetHint(SDL_HINT_VIDEODRIVER, "dummy");
        SDL_Init(SDL_INIT_VIDEO);
        event = SDL_RegisterEvents(1);
    }
    static void TearDownTestSuite() { SDL_Quit(); }
    void SetUp() override
    {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe(ends.data()), 0);
        in = FileDescriptor(ends[0]);
        out = FileDescriptor(ends[1]);
        SDL_FlushEvent(event);
    }
    static bool WaitForEvent()
    {
        SDL_Event got;
        while (SDL_WaitEventTimeout(&got, kLongEnough) != 0) {
            if (got.type == event) {
                return true;
            }
        }
        return false;
    }
    std::vector<pollfd> Stream() const { return {{in.Get(), POLLIN, 0}}; }
    void Write() const { ASSERT_EQ(write(out.Get(), "x", 1), 1); }

    static inline UInt32 event = 0;
    FileDescriptor in;
    FileDescriptor out;
};

TEST_F(StreamWatchTest, AnEventComesWithTheBytes)
{
    StreamWatch watch(event);
    watch.Watch(Stream());
    Write();
    EXPECT_TRUE(WaitForEvent());
}

TEST_F(StreamWatchTest, AnEventComesForBytesThatWereThereBefore)
{
    StreamWatch watch(event);
    Write();
    watch.Watch(Stream());
    EXPECT_TRUE(WaitForEvent());
}

TEST_F(StreamWatchTest, AfterAnEventTheSameStreamCanBeWatchedAgain)
{
    StreamWatch watch(event);
    Write();
    watch.Watch(Stream());
    ASSERT_TRUE(WaitForEvent());
    watch.Watch(Stream());
    EXPECT_TRUE(WaitForEvent());
}

TEST_F(StreamWatchTest, TheEndOfAStreamIsAnEventToo)
{
    StreamWatch watch(event);
    watch.Watch(Stream());
    out = FileDescriptor();
    EXPECT_TRUE(WaitForEvent());
}

TEST_F(StreamWatchTest, CanBeWokenWithoutAStream)
{
    StreamWatch watch(event);
    watch.Wake();
    EXPECT_TRUE(WaitForEvent());
}

TEST_F(StreamWatchTest, EndsWhileItWatches)
{
    {
        StreamWatch watch(event);
        watch.Watch(Stream());
    }
    Write();
    SDL_PumpEvents();
    EXPECT_FALSE(SDL_HasEvent(event));
}

} // namespace
