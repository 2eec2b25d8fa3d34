// SPDX-License-Identifier: MIT
//
// Damaged JPEG files that arrive in pieces: they end in the same pixels, and with the same result,
// as if all had been there at once.
#include "tests/decoders/DamagedArrival.h"
#include "tests/decoders/JpegFiles.h"
#include "tests/support/MemoryLimit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

namespace test
{

namespace
{

const ImageBundle& Bundle()
{
    static const ImageBundle bundle("VornJPEG");
    return bundle;
}

DamagedFile Damaged(const Bytes& file, const JpegSpec& spec)
{
    return {Bundle(), file, static_cast<UInt32>(spec.width), static_cast<UInt32>(spec.height)};
}

// Changes some bytes behind the tables, or near marks.
void Damage(Bytes& file, std::minstd_rand& random)
{
    constexpr std::array<UInt8, 7> kCodes = {0xC4, 0xD3, 0xD9, 0xDA, 0xDD, 0x01, 0xFF};
    const size_t start = FindMarker(file, 0xDA);
    for (size_t changes = 1 + random() % 4; changes > 0; --changes) {
        const size_t at = start + random() % (file.size() - start - 4);
        const auto place = file.begin() + static_cast<ptrdiff_t>(at);
        switch (random() % 5) {
        case 0:
            file[at] = 0xFF;
            file[at + 1] = kCodes[random() % kCodes.size()];
            break;
        case 1:
            file.erase(place, place + 1 + static_cast<ptrdiff_t>(random() % 3));
            break;
        case 2:
            file.insert(place, static_cast<UInt8>(random()));
            break;
        default:
            file[at] ^= static_cast<UInt8>(1U << random() % 8);
        }
    }
}

// Cuts the file off in the last restart interval of its `scan`th scan; of that and of so many
// before nothing is left but the marks, here and there with a byte.
void EmptyLastIntervals(Bytes& file, int scan, size_t count, std::minstd_rand& random)
{
    file.resize(FindMarker(file, 0xDA, scan + 1));
    std::vector<size_t> marks;
    for (size_t at = FindMarker(file, 0xDA, scan) + 2; at + 1 < file.size(); ++at) {
        if (file[at] == 0xFF && file[at + 1] >= 0xD0 && file[at + 1] < 0xD8)
            marks.push_back(at);
    }
    file.resize(marks.back() + 2 + random() % 2);
    file.insert(file.end(), {0xFF, 0xD9});
    for (size_t i = marks.size() - 1; i > 0 && count > 0; --i, --count)
        file.erase(file.begin() + static_cast<ptrdiff_t>(marks[i - 1]) + 2,
                   file.begin() + static_cast<ptrdiff_t>(marks[i] - random() % 2));
}

TEST(JpegDamageInPieces, EndsAsAllAtOnceWhateverChanged)
{
    const JpegSpec kSpecs[] = {
        {.width = 90, .height = 70, .isProgressive = true},
        {.width = 90, .height = 70, .isProgressive = true, .restartInterval = 3},
        {.width = 60, .height = 40, .isProgressive = true, .isArithmetic = true},
        {.width = 150, .height = 80, .hasScanForEach = true},
        {.width = 160, .height = 120, .colorSpace = JCS_GRAYSCALE, .sampling = 1},
    };
    for (const JpegSpec& spec : kSpecs) {
        const Bytes whole = WriteJpeg(spec);
        for (unsigned seed = 1; seed <= 60; ++seed) {
            SCOPED_TRACE(std::to_string(spec.width) + " columns, seed " + std::to_string(seed));
            std::minstd_rand random(seed);
            Bytes file = whole;
            Damage(file, random);
            ExpectTheSameInPieces(Damaged(file, spec), random);
        }
    }
}

TEST(JpegDamageInPieces, IsSmoothedAsAllAtOnceBehindTheLastGoodRow)
{
    constexpr int kRefiningScan = 4;
    const JpegSpec spec = {.width = 120,
                           .height = 120,
                           .colorSpace = JCS_GRAYSCALE,
                           .sampling = 1,
                           .isProgressive = true,
                           .restartInterval = 3};
    const Bytes whole = WriteJpeg(spec);
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::minstd_rand random(seed);
        Bytes file = whole;
        EmptyLastIntervals(file, kRefiningScan, 1 + random() % 40, random);
        ExpectTheSameInPieces(Damaged(file, spec), random);
    }
}

TEST(JpegDamageInPieces, HasTheSameBlocksWhereAByteOfOnesIsTwice)
{
    const JpegSpec spec = {.width = 200, .height = 200, .colorSpace = JCS_GRAYSCALE, .sampling = 1};
    Bytes file = WriteJpeg(spec);
    constexpr std::array<UInt8, 2> kOnes = {0xFF, 0x00};
    const auto scan = file.begin() + static_cast<ptrdiff_t>(FindMarker(file, 0xDA));
    auto ones = std::search(scan, file.end(), kOnes.begin(), kOnes.end());
    ASSERT_LT(ones, file.end() - 2000);
    file.insert(ones, 0xFF);
    std::minstd_rand random(1);
    ExpectTheSameInPieces(Damaged(file, spec), random);
}

void RemoveHuffmanTables(Bytes& file)
{
    constexpr UInt8 kTables = 0xC4;
    while (FindMarker(file, kTables) < FindMarker(file, 0xDA)) {
        const size_t at = FindMarker(file, kTables);
        const auto start = file.begin() + static_cast<ptrdiff_t>(at);
        file.erase(start, start + 2 + (file[at + 2] << 8 | file[at + 3]));
    }
}

// Tables that a file leaves out are the usual ones, unless another scan has set them.
TEST(JpegDamageInPieces, ShowsTheScanBeforeDamagedTables)
{
    const JpegSpec spec = {.width = 90, .height = 70, .hasScanForEach = true};
    Bytes file = WriteJpeg(spec);
    RemoveHuffmanTables(file);
    // A table with more codes of one bit than there are, then one with more codes than may be.
    Bytes tables = {0xFF, 0xC4, 0, 2 + 17 + 3 + 17, 0x00, 3};
    tables.resize(tables.size() + 15 + 3);
    tables.push_back(0x10);
    tables.resize(tables.size() + 16, 0xFF);
    const auto second = file.begin() + static_cast<ptrdiff_t>(FindMarker(file, 0xDA, 2));
    file.insert(second, tables.begin(), tables.end());
    const End end = EndOf(Damaged(file, spec), {static_cast<SInt32>(file.size())});
    EXPECT_EQ(end.result, kVornErrRenderFailed);
    EXPECT_NE(end.picture.At(0, 0), kWhitePage);
    std::minstd_rand random(1);
    ExpectTheSameInPieces(Damaged(file, spec), random);
}

TEST(JpegDamageInPieces, TakesNoMoreOfTheMemoryForArithmeticCodesThanItsBytes)
{
    const JpegSpec spec = {.width = 64, .height = 64, .isArithmetic = true};
    const Bytes file = WriteJpeg(spec);
    const MemoryLimit limit(spec.width * spec.height * 4 + file.size());
    std::minstd_rand random(1);
    EXPECT_EQ(EndOf(Damaged(file, spec), Pieces(file.size(), 1, random)).result, 0);
}

} // namespace

} // namespace test
