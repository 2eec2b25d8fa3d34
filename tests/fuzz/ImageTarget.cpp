// SPDX-License-Identifier: MIT
#include "tests/fuzz/ImageTarget.h"

#include "tests/fuzz/LiveObjects.h"
#include "tests/fuzz/Require.h"
#include "tests/support/HostedImage.h"
#include "tests/support/ManualClock.h"
#include "tests/support/MemoryLimit.h"
#include "toolbox/Errors.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <random>

namespace
{

constexpr UInt64 kMostMemory = 1 << 20; // of an image, so that no run takes long
constexpr SInt32 kLargestShown = 300;   // rows and columns
constexpr SInt32 kMargin = 3;

const test::ImageBundle& Bundle(const std::string& name)
{
    static std::map<std::string, std::unique_ptr<test::ImageBundle>> bundles;
    auto& bundle = bundles[name];
    if (bundle == nullptr)
        bundle = std::make_unique<test::ImageBundle>(name);
    return *bundle;
}

struct Shown {
    OSErr result = 0;
    SInt32 width = 0; // 0: the host was told of no size
    SInt32 height = 0;
    test::Picture picture;
    std::string comment;
    bool operator==(const Shown&) const = default;
};

// Of what the host was told, in order.
class Told
{
public:
    explicit Told(const std::vector<std::string>& told)
    {
        for (const std::string& each : told)
            Take(each);
        Require(isDone_, "the host is told that decoding is over");
    }

    SInt32 width = 0;
    SInt32 height = 0;

private:
    void Take(const std::string& told)
    {
        Require(!isDone_, "nothing is told after decoding is over");
        std::array<int, 4> numbers{};
        if (std::sscanf(told.c_str(), "gotRect %d,%d,%d,%d", &numbers[0], &numbers[1], &numbers[2],
                        &numbers[3]) == 4) {
            Require(numbers[0] == 0 && numbers[1] == 0, "a size is told from its top left");
            Require(numbers[2] > 0 && numbers[3] > 0, "there is something in it");
            Require(numbers[2] >= height && numbers[3] >= width, "an image only grows");
            height = numbers[2];
            width = numbers[3];
        } else if (std::sscanf(told.c_str(), "decodedChunk %d,%d", &numbers[0], &numbers[1]) == 2) {
            Require(numbers[0] >= 0 && numbers[0] < numbers[1] && numbers[1] <= height,
                    "new rows lie in the image");
        } else {
            Require(std::sscanf(told.c_str(), "renderingDone %d", &numbers[0]) == 1,
                    "nothing else is told");
            isDone_ = true;
        }
    }

    bool isDone_ = false;
};

void RequireDocumented(OSErr result)
{
    constexpr OSErr kResults[] = {noErr,
                                  memFullErr,
                                  kVornErrRenderFailed,
                                  kVornErrImageFailed,
                                  kDataNotAvailableErr,
                                  kVornErrImageNoData};
    Require(std::ranges::count(kResults, result) == 1, "the result is a documented one");
}

void RequireMarginsAreLeftAlone(const test::Picture& page, const Shown& shown)
{
    for (SInt32 row = 0; row < page.height; ++row) {
        for (SInt32 column = 0; column < page.width; ++column) {
            const bool isInside = row < shown.height && column < shown.width;
            Require(isInside || page.At(row, column) == test::kWhitePage,
                    "nothing is drawn beside the image");
        }
    }
}

void Display(test::HostedImage& image, Shown& shown)
{
    if (image.Depth() == 0 || shown.width > kLargestShown || shown.height > kLargestShown)
        return;
    shown.picture = image.Display(shown.width + kMargin, shown.height + kMargin);
    RequireMarginsAreLeftAlone(shown.picture, shown);
}

Shown Show(const test::ImageBundle& bundle, const std::vector<UInt8>& file,
           const std::deque<SInt32>& pieces, UInt32 ticksBetween)
{
    test::ManualClock clock;
    test::HostedImage image(bundle, file);
    image.host.arrivals = pieces;
    UInt32 ticks = 1;
    image.host.onGetData = [&] { clock.GoToTick(ticks += ticksBetween); };
    Shown shown;
    shown.result = image.Decode();
    RequireDocumented(shown.result);
    const Told told(image.host.told);
    shown.width = told.width;
    shown.height = told.height;
    Require(image.Depth() == 0 || told.height != 0, "the host knows the size of what it shows");
    Require(shown.result != noErr || image.Depth() != 0, "what is decoded can be shown");
    shown.comment = image.Comment();
    Display(image, shown);
    return shown;
}

std::deque<SInt32> Pieces(size_t size, std::span<const UInt8> arrival)
{
    std::minstd_rand random(1U + arrival[0] + 256U * arrival[1]);
    const UInt32 largest = 1U << arrival[2] % 14;
    std::deque<SInt32> pieces;
    for (size_t given = 0; given < size;) {
        const size_t piece = 1 + random() % largest;
        pieces.push_back(static_cast<SInt32>(piece));
        given += piece;
    }
    return pieces;
}

} // namespace

FuzzInput WithArrival(const std::vector<UInt8>& file, const FuzzInput& arrival)
{
    FuzzInput input = arrival;
    input.resize(kArrivalBytes);
    input.insert(input.end(), file.begin(), file.end());
    return input;
}

void FuzzImage(const std::string& name, std::span<const UInt8> arrival,
               const std::vector<UInt8>& file)
{
    const test::MemoryLimit limit(kMostMemory);
    const test::ImageBundle& bundle = Bundle(name);
    const LiveObjects before;
    const Shown inPieces = Show(bundle, file, Pieces(file.size(), arrival), arrival[3]);
    const Shown atOnce = Show(bundle, file, {static_cast<SInt32>(file.size())}, 0);
    Require(inPieces == atOnce, "an image is the same however it arrives");
    Require(LiveObjects() == before, "nothing is left behind");
}
