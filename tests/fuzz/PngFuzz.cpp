// SPDX-License-Identifier: MIT
//
// PNG files through their bundle.
#include "tests/decoders/PngFiles.h"
#include "tests/fuzz/ImageTarget.h"

namespace
{

// Without right check sums nothing but them would be tried.
void FixCheckSums(test::Bytes& file)
{
    constexpr size_t kSignature = 8;
    constexpr size_t kAroundContents = 12;
    for (size_t chunk = kSignature; chunk + kAroundContents <= file.size();) {
        size_t length = 0;
        for (size_t i = 0; i < 4; ++i)
            length = length << 8 | file[chunk + i];
        if (length > file.size() - chunk - kAroundContents)
            return;
        test::FixCheckSum(file, chunk);
        chunk += kAroundContents + length;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    if (size <= kArrivalBytes)
        return 0;
    test::Bytes file(bytes + kArrivalBytes, bytes + size);
    const bool isRepaired = (bytes[0] & 7) != 0;
    if (isRepaired)
        FixCheckSums(file);
    FuzzImage("VornPNG", {bytes, kArrivalBytes}, file);
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    const test::PngSpec kSpecs[] = {
        {.width = 9, .height = 7},
        {.width = 5, .height = 6, .bitDepth = 16},
        {.width = 7, .height = 9, .colorType = PNG_COLOR_TYPE_RGBA, .isInterlaced = true},
        {.width = 9, .height = 9, .colorType = PNG_COLOR_TYPE_GRAY, .bitDepth = 1},
        {.width = 6, .height = 5, .colorType = PNG_COLOR_TYPE_GRAY, .hasTransparency = true},
        {.width = 8, .height = 8, .colorType = PNG_COLOR_TYPE_GRAY_ALPHA, .bitDepth = 16},
        {.width = 9,
         .height = 10,
         .colorType = PNG_COLOR_TYPE_PALETTE,
         .bitDepth = 4,
         .isInterlaced = true,
         .hasTransparency = true},
        {.width = 11, .height = 3, .colorType = PNG_COLOR_TYPE_PALETTE},
        {.width = 4, .height = 4, .texts = {{"Comment", "a text"}, {"Title", "another"}}},
        {.width = 4,
         .height = 4,
         .texts = {{"Description", "an international one"}},
         .textKind = PNG_ITXT_COMPRESSION_zTXt},
    };
    std::vector<FuzzInput> seeds;
    for (const test::PngSpec& spec : kSpecs)
        seeds.push_back(
            WithArrival(test::WritePng(spec), {1, static_cast<UInt8>(seeds.size()), 5, 1}));
    return seeds;
}
