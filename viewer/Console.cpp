// SPDX-License-Identifier: MIT
#include "viewer/Console.h"

#include "src/plugin/VornPluginABI.h"
#include "toolbox/Errors.h"

#include <chrono>
#include <cstdio>
#include <unistd.h>

namespace viewer
{
namespace
{

constexpr auto kProgressInterval = std::chrono::milliseconds(250);

bool gProgressIsShown = false;
std::chrono::steady_clock::time_point gLastProgress;

} // namespace

const char* MeaningOf(OSErr error)
{
    switch (error) {
    case noMovieFound:
        return "there is no movie in it";
    case invalidMovie:
        return "the movie in it is damaged";
    case noCodecErr:
        return "the codec libraries of this system decode no MPEG movies";
    case kVornErrRenderFailed:
        return "it is damaged: not all of it could be shown";
    case kDataNotAvailableErr:
        return "its end is missing: not all of it could be shown";
    case kVornErrImageFailed:
        return "it is damaged: there is no picture to show";
    case kVornErrImageNoData:
        return "it ends before there is a picture to show";
    case fnfErr:
        return "there is no such file";
    case permErr:
        return "it may not be read";
    case ioErr:
        return "it could not be read";
    case dskFulErr:
        return "the disk is full";
    case dirNFErr:
        return "the folder for temporary files is gone";
    case wPrErr:
        return "the folder for temporary files is for reading only";
    case tmfoErr:
        return "too many files are open";
    case memFullErr:
        return "there is not enough memory";
    case paramErr:
        return "it cannot be shown";
    default:
        return "it could not be shown";
    }
}

void Console::Tell(const std::string& name, const std::string& text)
{
    ClearProgress();
    const std::string prefix = name.empty() ? "" : (name == "-" ? "standard input" : name) + ": ";
    std::fprintf(stderr, "vornview: %s%s\n", prefix.c_str(), text.c_str());
}

bool Console::IsProgressDue()
{
    static const bool isTerminal = isatty(STDERR_FILENO) != 0;
    return isTerminal && std::chrono::steady_clock::now() - gLastProgress >= kProgressInterval;
}

void Console::ShowProgress(const std::string& line)
{
    gLastProgress = std::chrono::steady_clock::now();
    gProgressIsShown = true;
    std::fprintf(stderr, "\r\033[K%s", line.c_str());
}

void Console::ClearProgress()
{
    if (gProgressIsShown) {
        std::fputs("\r\033[K", stderr);
        gProgressIsShown = false;
    }
}

std::string DescribeError(OSErr error)
{
    return std::string(MeaningOf(error)) + " (error " + std::to_string(error) + ")";
}

} // namespace viewer
