// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/ProgramStreamMap.h"

#include <gtest/gtest.h>

using namespace toolbox;
using Bytes = std::vector<UInt8>;

namespace
{

const Bytes kPack = {0, 0, 1, 0xBA, 0x21, 0, 1, 0, 1, 0x80, 0, 1};
const Bytes kSoundPacket = {0, 0, 1, 0xC0, 0, 4, 0x0F, 0xFF, 0xFD, 0xB4};
const Bytes kPicturesPacket = {0, 0, 1, 0xE3, 0, 9, 0xFF, 0xFF, 0x0F};
const Bytes kSequence = {0, 0, 1, 0xB3, 0x16, 0};

Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes MapFor(const Bytes& bytes)
{
    return MakeProgramStreamMapFor(bytes.data(), bytes.size());
}

TEST(ProgramStreamMap, TellsOfTheFirstStreamThatBeginsWithASequenceHeader)
{
    const Bytes map = MapFor(kPack + kSoundPacket + kPicturesPacket + kSequence);
    EXPECT_EQ(map, MakeProgramStreamMap(0xE3));
    EXPECT_EQ(map[3], 0xBC) << "the start code of a map";
    EXPECT_EQ(map[13], 0xE3);
}

TEST(ProgramStreamMap, IsLeftOutForPicturesThatBeginInAnotherWay)
{
    const Bytes delimiter = {0, 0, 1, 0x09, 0x10, 0}; // of ISO 14496-10
    EXPECT_TRUE(MapFor(kPack + kPicturesPacket + delimiter + kSequence).empty());
}

TEST(ProgramStreamMap, IsLeftOutForPicturesThatBeginInMidSequence)
{
    const Bytes group = {0, 0, 1, 0xB8, 0, 0};
    EXPECT_TRUE(MapFor(kPack + kPicturesPacket + group + kSequence).empty());
}

TEST(ProgramStreamMap, IsLeftOutForSoundAlone)
{
    EXPECT_TRUE(MapFor(kPack + kSoundPacket + kPack + kSoundPacket).empty());
}

TEST(ProgramStreamMap, IsLeftOutWhereTheBytesEndBeforeTheSequenceHeader)
{
    Bytes bytes = kPack + kPicturesPacket + kSequence;
    bytes.resize(kPack.size() + kPicturesPacket.size() + 3);
    EXPECT_TRUE(MapFor(bytes).empty());
}

} // namespace
