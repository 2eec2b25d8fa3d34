// SPDX-License-Identifier: MIT
//
// Damaged PNG files that arrive in pieces: they end in the same pixels, and with the same result,
// as if all had been there at once.
#include "tests/decoders/DamagedArrival.h"
#include "tests/decoders/PngFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <zlib.h>

namespace test
{

namespace
{

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornPNG");
    return bundle;
}

DamagedFile Damaged(const Bytes& file, const PngSpec& spec)
{
    return {Bundle(), file, static_cast<UInt32>(spec.width), static_cast<UInt32>(spec.height)};
}

// Changes a byte of the image data, whose check sum is right nevertheless.
void ChangeImageData(Bytes& file, std::minstd_rand& random)
{
    constexpr size_t kChunkStart = 8;
    constexpr size_t kLengthOfLength = 4;
    const size_t chunk = FindChunk(file, "IDAT");
    size_t length = 0;
    for (size_t i = 0; i < kLengthOfLength; ++i)
        length = length << 8 | file[chunk + i];
    file[chunk + kChunkStart + random() % length] ^= static_cast<UInt8>(1U << random() % 8);
    FixCheckSum(file, chunk);
}

constexpr PngSpec kSmall = {.width = 9, .height = 40};
constexpr PngSpec kInterlaced = {.width = 7, .height = 30, .isInterlaced = true};
constexpr PngSpec kWide = {.width = 300, .height = 25, .colorType = PNG_COLOR_TYPE_RGBA};

TEST(PngDamageInPieces, EndsAsAllAtOnceWhereDataCannotBeInflated)
{
    for (const PngSpec& spec : {kSmall, kInterlaced, kWide}) {
        const Bytes whole = WritePng(spec);
        for (unsigned seed = 1; seed <= 60; ++seed) {
            SCOPED_TRACE(std::to_string(spec.width) + " columns, seed " + std::to_string(seed));
            std::minstd_rand random(seed);
            Bytes file = whole;
            ChangeImageData(file, random);
            ExpectTheSameInPieces(Damaged(file, spec), random);
        }
    }
}

// An image with bands of equal rows: where one begins, its first row is followed by a repetition.
Bytes BandedFile(const PngSpec& spec)
{
    constexpr UInt32 kBand = 27;
    std::minstd_rand random(1);
    Bytes rows;
    for (UInt32 row = 0; row < spec.height; ++row) {
        const size_t bytes = spec.width + 1;
        for (size_t i = 0; i < bytes; ++i) {
            const bool isFilterType = i == 0;
            const UInt8 other = static_cast<UInt8>(isFilterType ? 0 : random());
            rows.push_back(row % kBand == 0 ? other : rows[rows.size() - bytes]);
        }
    }
    uLongf size = compressBound(rows.size());
    Bytes chunk(4 + size);
    std::copy_n("IDAT", 4, chunk.begin());
    compress(chunk.data() + 4, &size, rows.data(), rows.size());
    chunk.resize(4 + size);
    chunk.insert(chunk.begin(), {0, 0, static_cast<UInt8>(size >> 8), static_cast<UInt8>(size)});
    chunk.resize(chunk.size() + 4);
    Bytes file = WritePng(spec);
    const size_t start = FindChunk(file, "IDAT");
    const size_t end = FindChunk(file, "IEND");
    file.erase(file.begin() + ptrdiff_t(start), file.begin() + ptrdiff_t(end));
    file.insert(file.begin() + ptrdiff_t(start), chunk.begin(), chunk.end());
    FixCheckSum(file, start);
    return file;
}

TEST(PngDamageInPieces, EndsAsAllAtOnceWhereverItIsCutOff)
{
    constexpr PngSpec kBanded = {.width = 9, .height = 1000, .colorType = PNG_COLOR_TYPE_GRAY};
    const Bytes whole = BandedFile(kBanded);
    for (size_t size = FindChunk(whole, "IDAT"); size < whole.size(); ++size) {
        SCOPED_TRACE(std::to_string(size) + " bytes");
        std::minstd_rand random(1);
        const Bytes file(whole.begin(), whole.begin() + ptrdiff_t(size));
        ExpectTheSameInPieces(Damaged(file, kBanded), random);
    }
}

} // namespace

} // namespace test
