// SPDX-License-Identifier: MIT
//
// A movie over bytes that arrive as the test says, on a clock that the test moves.
#pragma once

#include "tests/support/ArrivingData.h"
#include "toolbox/Errors.h"
#include "toolbox/quicktime/Movies.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

constexpr SInt64 kTick = 1'000'000 / 60;

inline std::string Clip(const std::string& name)
{
    return ReadWholeFile(VORN_CLIPS "/" + name);
}

inline int ExpectedPictures(const std::string& clip)
{
    return std::stoi(Clip(clip + ".pictures"));
}

// A page with one movie on it: port, clock and sound.
class OpenedMovie
{
public:
    explicit OpenedMovie(std::string bytes, const std::string& name = "clip.mpg")
        : data(std::move(bytes), name)
    {
        EnterMovies();
        SetToolboxClock([](void* self) { return static_cast<OpenedMovie*>(self)->now; }, this);
        sink.refCon = this;
        sink.open = [](void* self, SInt32 rate, SInt32 channels) -> void* {
            static_cast<OpenedMovie*>(self)->soundRate = rate;
            static_cast<OpenedMovie*>(self)->soundChannels = channels;
            return self;
        };
        sink.play = [](void* self, void*, const SInt16* frames, SInt32 count, SInt64) {
            auto* const page = static_cast<OpenedMovie*>(self);
            page->sound.insert(page->sound.end(), frames, frames + count * page->soundChannels);
        };
        SetSoundSink(&sink);
        const Rect bounds = {0, 0, 400, 500};
        EXPECT_EQ(CreateWindowPort(&bounds, &port), noErr);
        SetPort(port);
    }

    ~OpenedMovie()
    {
        Close();
        DisposeWindowPort(port);
        SetPort(nullptr);
        SetSoundSink(nullptr);
        SetToolboxClock(nullptr, nullptr);
    }
    OpenedMovie(const OpenedMovie&) = delete;
    OpenedMovie& operator=(const OpenedMovie&) = delete;

    void Close()
    {
        if (controller != nullptr) {
            DisposeMovieController(controller);
            controller = nullptr;
        }
        if (movie != nullptr) {
            StopMovie(movie);
            DisposeMovie(movie);
            movie = nullptr;
        }
    }

    OSErr Open(SInt16 flags = newMovieAsyncOK | newMovieIdleImportOK)
    {
        return NewMovieFromDataRef(&movie, flags, nullptr, data.DataRef(), ArrivingData::kSubType);
    }

    // Makes and draws the controller once the movie is playable.
    bool ShowIfPlayable()
    {
        if (controller == nullptr && GetMovieLoadState(movie) >= kMovieLoadStatePlayable) {
            SetMovieGWorld(movie, port, nullptr);
            Rect box;
            GetMovieBox(movie, &box);
            controller = NewMovieController(movie, &box, mcTopLeftMovie | mcScaleMovieToFit);
            SetMovieActive(movie, 1);
            MCDoAction(controller, mcActionDraw, port);
        }
        return controller != nullptr;
    }

    void OpenAll()
    {
        data.ArriveCompletely();
        ASSERT_EQ(Open(0), noErr);
        ASSERT_TRUE(ShowIfPlayable());
    }

    Rect Bar() const
    {
        Rect bounds;
        MCGetControllerBoundsRect(controller, &bounds);
        bounds.top = static_cast<SInt16>(bounds.bottom - 16);
        return bounds;
    }

    bool Mouse(UInt16 what, int h, int v)
    {
        EventRecord event{};
        event.what = what;
        event.where = Point{static_cast<SInt16>(v), static_cast<SInt16>(h)};
        return MCIsPlayerEvent(controller, &event) == 1;
    }
    void ClickPlay() { EXPECT_TRUE(Mouse(mouseDown, Bar().left + 24, Bar().top + 8)); }
    bool Key(char code, UInt16 modifiers = 0)
    {
        EventRecord event{};
        event.what = keyDown;
        event.modifiers = modifiers;
        event.message = static_cast<UInt8>(code);
        return MCIsPlayerEvent(controller, &event) == 1;
    }

    MovieStatistics Statistics() const
    {
        MovieStatistics statistics;
        GetMovieStatistics(nullptr, &statistics);
        return statistics;
    }

    // Takes in all that has arrived.
    void IdleUntilNothingIsPending()
    {
        while (NextToolboxDeadline() >= 0) {
            Idle();
        }
    }

    void Idle() { MCDoAction(controller, mcActionIdle, nullptr); }

    // Moves the clock from deadline to deadline until nothing plays any more or `limit` seconds
    // have passed; `step` is called before each idle.
    template <class Step>
    void PlayToEnd(Step step, double limit = 60)
    {
        const SInt64 end = now + static_cast<SInt64>(limit * 1e6);
        do {
            step();
            Idle();
            const SInt64 deadline = NextToolboxDeadline();
            now =
                deadline > now ? std::min(deadline, now + kTick) : now + (deadline < 0 ? kTick : 0);
        } while (Statistics().playing && now < end);
    }
    void PlayToEnd()
    {
        PlayToEnd([] {});
    }

    // A digest of the picture's pixels in the port.
    size_t PictureDigest() const
    {
        SInt32 rowBytes = 0;
        const UInt8* const pixels = GetPortPixels(port, &rowBytes);
        const Rect bar = Bar();
        std::string seen;
        for (SInt16 v = 0; v < bar.top; ++v) {
            seen.append(reinterpret_cast<const char*>(pixels) + ptrdiff_t{v} * rowBytes,
                        static_cast<size_t>(bar.right) * 4);
        }
        return std::hash<std::string>{}(seen);
    }

    ArrivingData data;
    SInt64 now = 1'000'000;
    CGrafPtr port = nullptr;
    Movie movie = nullptr;
    MovieController controller = nullptr;
    ToolboxSoundSink sink{};
    std::vector<SInt16> sound;
    SInt32 soundRate = 0;
    SInt32 soundChannels = 0;
};

inline std::string AsBytes(const std::vector<SInt16>& samples)
{
    return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(SInt16)};
}

// How far two runs of samples differ at most; INT32_MAX if one is longer.
inline int LargestDifference(const std::string& a, const std::string& b)
{
    if (a.size() != b.size()) {
        return INT32_MAX;
    }
    int largest = 0;
    for (size_t i = 0; i + 1 < a.size(); i += 2) {
        SInt16 x = 0;
        SInt16 y = 0;
        memcpy(&x, a.data() + i, 2);
        memcpy(&y, b.data() + i, 2);
        largest = std::max(largest, std::abs(x - y));
    }
    return largest;
}
