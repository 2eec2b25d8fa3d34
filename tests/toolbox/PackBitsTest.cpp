// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PackBits.h"

#include "tests/toolbox/PictureReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace
{

using test::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

using Pack = size_t (*)(const UInt8*, size_t, UInt8*);

Bytes Packed(Pack pack, const Bytes& bytes)
{
    Bytes packed(toolbox::MaxPackedSize(bytes.size()));
    packed.resize(pack(bytes.data(), bytes.size(), packed.data()));
    return packed;
}

TEST(PackBits, ARunIsItsLengthAndOneUnit)
{
    EXPECT_THAT(Packed(toolbox::PackBytes, Bytes(5, 7)), ElementsAre(257 - 5, 7));
    EXPECT_THAT(Packed(toolbox::PackWords, {1, 2, 1, 2, 1, 2}), ElementsAre(257 - 3, 1, 2));
}

TEST(PackBits, WhatIsNoRunStandsAsItIs)
{
    EXPECT_THAT(Packed(toolbox::PackBytes, {1, 2, 3}), ElementsAre(2, 1, 2, 3));
    EXPECT_THAT(Packed(toolbox::PackWords, {9, 9, 9, 8}), ElementsAre(1, 9, 9, 9, 8));
}

TEST(PackBits, TwoEqualUnitsDoNotPartWhatIsNoRun)
{
    EXPECT_THAT(Packed(toolbox::PackBytes, {1, 2, 2, 3}), ElementsAre(3, 1, 2, 2, 3));
}

TEST(PackBits, APacketHoldsAtMost128Units)
{
    EXPECT_THAT(Packed(toolbox::PackBytes, Bytes(129, 7)), ElementsAre(257 - 128, 7, 0, 7));
}

TEST(PackBits, NothingIsPackedAsNothing)
{
    EXPECT_THAT(Packed(toolbox::PackBytes, {}), IsEmpty());
}

// Units from few values, so that there are runs of all lengths.
Bytes RandomBytes(std::mt19937& random, size_t size)
{
    const unsigned values = 1 + static_cast<unsigned>(random() % 5);
    const unsigned changeOneIn = 1 + static_cast<unsigned>(random() % 200);
    Bytes bytes(size);
    UInt8 value = 0;
    for (UInt8& byte : bytes) {
        value = random() % changeOneIn == 0 ? static_cast<UInt8>(random() % values) : value;
        byte = value;
    }
    return bytes;
}

void ExpectThatUnpackingUndoesPacking(Pack pack, size_t unit)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        const Bytes bytes = RandomBytes(random, random() % 600 * unit);
        const Bytes packed = Packed(pack, bytes);
        ASSERT_EQ(test::Unpack(packed, unit), bytes) << "round " << round;
        ASSERT_LE(packed.size(), toolbox::MaxPackedSize(bytes.size())) << "round " << round;
    }
}

TEST(PackBits, UnpackingGivesTheBytesBack)
{
    ExpectThatUnpackingUndoesPacking(toolbox::PackBytes, 1);
}

TEST(PackBits, UnpackingGivesTheWordsBack)
{
    ExpectThatUnpackingUndoesPacking(toolbox::PackWords, 2);
}

} // namespace
