// SPDX-License-Identifier: MIT
#pragma once

#include "src/movie/VornMoviePlugin.h"
#include "tests/support/ArrivalHost.h"
#include "tests/support/ManualClock.h"
#include "tests/support/ScriptedMovies.h"
#include "tests/support/TestBundle.h"
#include "tests/support/ToolboxProbe.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace test
{

using Calls = std::vector<std::string>;

inline constexpr SInt32 kVersion40 = 0x04008000;
inline constexpr SInt32 kVersion41 = 0x04108000;
inline constexpr SInt32 kVersion5 = 0x05008000;
inline constexpr SInt32 kVersion7 = 0x07008000;

// An information dictionary's contents that declare one document type.
std::string DocumentType(const std::vector<std::string>& mimeTypes,
                         const std::vector<std::string>& extensions);

// A movie plug-in on the toolbox as it ships, but for the movies: those, the host and the clock
// are scripted, unlocked handles move at every occasion, and every call is watched. Shows at its
// end that nothing was left behind.
class MovieTest : public testing::Test
{
protected:
    MovieTest();
    ~MovieTest() override;
    void SetUp() override;
    void TearDown() override;

    std::unique_ptr<VornMoviePlugin> MakePlugin(const char* mimeType = "video/mpeg",
                                                const char* fileName = "clip.mpg",
                                                OSType fileType = FOUR_CHARS('M', 'P', 'E', 'G'));
    // Lets the next `bytes` bytes of the host's object arrive and spools them; nobody is told.
    void Spool(VornMoviePlugin& plugin, SInt32 bytes);
    // The same for the end of the data.
    void SpoolTheEnd(VornMoviePlugin& plugin);
    // A plug-in with a movie and a controller, as Idle leaves it.
    std::unique_ptr<VornMoviePlugin> MakePlayingPlugin();

    static std::vector<UInt8> FileBytes(const FSSpec& spec);
    static bool FileExists(const FSSpec& spec);

    TestBundle bundle;
    ArrivalHost host;
    ManualClock clock;
    ToolboxProbe probe;
    CGrafPtr port = nullptr; // current
    const Rect area{10, 20, 110, 220};

private:
    std::array<SInt32, kLiveObjectKinds> alive_{};
};

// What `operation` throws as OSErr; 1 if it throws nothing, 2 if it throws something else.
template <typename Operation>
OSErr ThrownBy(const Operation& operation)
{
    try {
        operation();
        return 1;
    } catch (OSErr err) {
        return err;
    } catch (...) {
        return 2;
    }
}

// The same for a 32-bit integer.
template <typename Operation>
SInt32 IntThrownBy(const Operation& operation)
{
    try {
        operation();
        return 1;
    } catch (SInt32 err) {
        return err;
    } catch (...) {
        return 2;
    }
}

} // namespace test
