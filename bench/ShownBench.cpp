// SPDX-License-Identifier: MIT
//
// bench_shown NAME RUNS GATE COMMAND... -- COMMAND...
//
// The time from starting a command until it shows a picture on the X display of DISPLAY, and the
// processor's time in it, for two commands in turn, as bench_until has it for files. Nothing else
// may draw on the display, whose screen should be little larger than the picture: all of it is
// fetched once in a millisecond. A picture has many colors, unlike an empty window and its
// controls, wherever on the screen it stands.
#include "bench/Race.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <poll.h>

#include <algorithm>
#include <bitset>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace
{

using Clock = std::chrono::steady_clock;

// Colors by their highest bits.
constexpr size_t kKinds = 1 << 12;
constexpr size_t kKindsOfPicture = 100;
constexpr auto kLongest = std::chrono::seconds(20);

size_t KindOf(unsigned pixel)
{
    return (pixel >> 20 & 0xF) << 8 | (pixel >> 12 & 0xF) << 4 | (pixel >> 4 & 0xF);
}

class WatchedScreen
{
public:
    WatchedScreen() : display_(XOpenDisplay(nullptr))
    {
        if (display_ == nullptr) {
            throw std::runtime_error("no display can be opened");
        }
    }
    ~WatchedScreen() { XCloseDisplay(display_); }
    WatchedScreen(const WatchedScreen&) = delete;
    WatchedScreen& operator=(const WatchedScreen&) = delete;

    // Looks until there is a picture, or none.
    void WaitForPicture(bool wanted) const
    {
        const auto end = Clock::now() + kLongest;
        while (HasPicture() != wanted) {
            if (Clock::now() > end) {
                throw std::runtime_error(wanted ? "no picture was shown" : "a picture stayed");
            }
            poll(nullptr, 0, 1);
        }
    }

private:
    bool HasPicture() const
    {
        const int screen = DefaultScreen(display_);
        const int width = DisplayWidth(display_, screen);
        XImage* const image =
            XGetImage(display_, RootWindow(display_, screen), 0, 0, static_cast<unsigned>(width),
                      static_cast<unsigned>(DisplayHeight(display_, screen)), AllPlanes, ZPixmap);
        if (image == nullptr || image->bits_per_pixel != 32) {
            throw std::runtime_error("the display has no pixels of 32 bits");
        }
        std::bitset<kKinds> seen;
        for (int y = 0; y < image->height; ++y) {
            const auto* const row = reinterpret_cast<const unsigned*>(
                image->data + ptrdiff_t{y} * image->bytes_per_line);
            for (int x = 0; x < width; ++x) {
                seen.set(KindOf(row[x]));
            }
        }
        XDestroyImage(image);
        return seen.count() >= kKindsOfPicture;
    }

    Display* display_;
};

Racer TakeRacer(char**& at, const WatchedScreen& screen)
{
    Racer racer;
    racer.command = TakeCommand(at);
    racer.watch = [&screen] {
        screen.WaitForPicture(false);
        return [&screen] { screen.WaitForPicture(true); };
    };
    return racer;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 7) {
        std::fprintf(stderr, "usage: bench_shown NAME RUNS GATE COMMAND... -- COMMAND...\n");
        return 2;
    }
    try {
        const WatchedScreen screen;
        char** at = argv + 4;
        Racer ours = TakeRacer(at, screen);
        Racer theirs = TakeRacer(at, screen);
        const int runs = std::max(1, std::atoi(argv[2]));
        return Race(argv[1], runs, std::atof(argv[3]), ours, theirs) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_shown: %s\n", failure.what());
        return 2;
    }
}
