// SPDX-License-Identifier: MIT
//
// JPEG files through their bundle.
#include "tests/decoders/JpegFiles.h"
#include "tests/fuzz/ImageTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    if (size > kArrivalBytes)
        FuzzImage("VornJPEG", {bytes, kArrivalBytes}, {bytes + kArrivalBytes, bytes + size});
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    const test::JpegSpec kSpecs[] = {
        {.width = 17, .height = 19},
        {.width = 17, .height = 19, .isProgressive = true},
        {.width = 20, .height = 33, .isProgressive = true, .restartInterval = 2},
        {.width = 30, .height = 9, .hasScanForEach = true},
        {.width = 30, .height = 9, .isArithmetic = true, .restartInterval = 1},
        {.width = 16, .height = 16, .isProgressive = true, .isArithmetic = true},
        {.width = 9, .height = 9, .colorSpace = JCS_GRAYSCALE, .sampling = 1, .comment = "a text"},
        {.width = 9, .height = 9, .colorSpace = JCS_RGB, .sampling = 1},
        {.width = 18, .height = 10, .colorSpace = JCS_CMYK, .hasAdobeMarker = false},
        {.width = 18, .height = 10, .colorSpace = JCS_YCCK, .isProgressive = true},
    };
    std::vector<FuzzInput> seeds;
    for (const test::JpegSpec& spec : kSpecs)
        seeds.push_back(
            WithArrival(test::WriteJpeg(spec), {1, static_cast<UInt8>(seeds.size()), 6, 5}));
    return seeds;
}
