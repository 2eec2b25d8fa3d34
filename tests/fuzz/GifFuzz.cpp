// SPDX-License-Identifier: MIT
//
// GIF files through their bundle.
#include "tests/decoders/GifBuilder.h"
#include "tests/fuzz/ImageTarget.h"

namespace
{

const test::GifColorList kColors = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00};

// Of a number of pixels, each an index of a table of four.
std::string Indices(size_t count)
{
    std::string indices(count, '\0');
    for (size_t i = 0; i < count; ++i)
        indices[i] = static_cast<char>(i * i % 4);
    return indices;
}

std::string StillImage(bool isInterlaced)
{
    return test::GifBuilder(7, 9, kColors)
        .Comment("a text")
        .Control({.transparent = isInterlaced ? 1 : -1})
        .Image({.width = 7, .height = 9, .indices = Indices(63), .isInterlaced = isInterlaced})
        .Bytes();
}

std::string Animation(int disposal)
{
    return test::GifBuilder(8, 8, kColors, 2)
        .Repeats(2)
        .Image({.width = 8, .height = 8, .indices = Indices(64)})
        .Control({.disposal = disposal, .delay = 3, .transparent = 1})
        .Image({.left = 2, .top = 3, .width = 4, .height = 5, .indices = Indices(20)})
        .Control({.disposal = disposal, .delay = 1, .userInput = true})
        .Image({.left = 1, .width = 3, .height = 3, .indices = Indices(9), .colors = kColors})
        .Bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    if (size > kArrivalBytes)
        FuzzImage("VornGIF", {bytes, kArrivalBytes}, {bytes + kArrivalBytes, bytes + size});
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    std::vector<FuzzInput> seeds;
    for (const std::string& file :
         {StillImage(false), StillImage(true), Animation(1), Animation(2), Animation(3)})
        seeds.push_back(
            WithArrival({file.begin(), file.end()}, {1, static_cast<UInt8>(seeds.size()), 4, 0}));
    return seeds;
}
