// SPDX-License-Identifier: MIT
#include "tests/support/ImageRules.h"

#include "tests/support/PictureRows.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace test
{

namespace
{

constexpr UInt32 kRedPage = 0xFF0000;

std::vector<UInt8> Changed(std::vector<UInt8> bytes, int changes, unsigned seed)
{
    std::minstd_rand random(seed);
    for (int i = 0; i < changes; ++i)
        bytes[random() % bytes.size()] = static_cast<UInt8>(random());
    return bytes;
}

// Steps of up to 300 bytes that reach the end; of one each for the seed 0.
std::deque<SInt32> AnySteps(size_t size, unsigned seed)
{
    std::minstd_rand random(seed + 1);
    std::deque<SInt32> steps;
    for (size_t sum = 0; sum < size; sum += static_cast<size_t>(steps.back()))
        steps.push_back(seed == 0 ? 1 : static_cast<SInt32>(random() % 300));
    return steps;
}

} // namespace

void ExpectSamePixelsHoweverItArrives(const ImageBundle& bundle, const ImageFile& file)
{
    HostedImage atOnce(bundle, file.bytes);
    atOnce.Decode();
    const Picture expected = atOnce.Display(file.width, file.height);
    for (unsigned seed = 0; seed < 8; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        HostedImage image(bundle, file.bytes);
        image.host.arrivals = AnySteps(file.bytes.size(), seed);
        EXPECT_EQ(image.Decode(), 0);
        EXPECT_EQ(image.Display(file.width, file.height), expected);
    }
}

int CountBandsDrawnAsTold(const ImageBundle& bundle, const ImageFile& file, SInt32 piece)
{
    HostedImage image(bundle, file.bytes);
    image.ArriveInPieces(piece);
    size_t seen = 0;
    int bands = 0;
    image.host.onGetData = [&] {
        while (seen < image.host.told.size()) {
            const std::string told = image.host.told[seen++];
            if (!told.starts_with("decodedChunk"))
                continue;
            ++bands;
            const Picture page = image.Display(file.width, file.height, kRedPage, true);
            EXPECT_EQ(DecodedChunk(DrawnRows(page, kRedPage)), told);
        }
    };
    image.Decode();
    return bands;
}

int CountFailuresOfChangedFiles(const ImageBundle& bundle, const ImageFile& file, int changes,
                                unsigned files)
{
    int failures = 0;
    for (unsigned seed = 1; seed <= files; ++seed) {
        HostedImage image(bundle, Changed(file.bytes, changes, seed));
        const OSErr result = image.Decode();
        failures += result != 0 ? 1 : 0;
        if (image.Depth() != 0)
            image.Display(file.width, file.height);
        EXPECT_THAT(result, testing::AnyOf(0, kVornErrRenderFailed, kDataNotAvailableErr,
                                           kVornErrImageFailed, memFullErr))
            << "seed " << seed;
    }
    return failures;
}

void ExpectNothingLeftOfParts(const ImageBundle& bundle, const ImageFile& file, size_t step)
{
    const SInt32 worlds = CountLiveObjects(kLiveGWorlds);
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    for (size_t size = 0; size <= file.bytes.size(); size += step) {
        HostedImage image(bundle, {file.bytes.begin(), file.bytes.begin() + ptrdiff_t(size)});
        image.Decode();
    }
    EXPECT_EQ(CountLiveObjects(kLiveGWorlds), worlds);
    EXPECT_EQ(CountLiveObjects(kLiveHandles), handles);
}

} // namespace test
