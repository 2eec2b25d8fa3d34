// SPDX-License-Identifier: MIT
//
// Codes become rows of indices: beside a model that keeps every string whole.
#include "decoders/common/LzwDecoder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace
{

constexpr size_t kAllCodes = 4096;

// Writes codes, and the indices that they stand for, by the definition of the format.
class CodeModel
{
public:
    explicit CodeModel(int bits) : rootBits_(bits), clear_(1U << bits) { Forget(); }

    void Add(UInt32 code)
    {
        Write(code);
        if (code == Clear()) {
            Forget();
        } else if (code != End()) {
            const std::string now = code < strings_.size() ? strings_[code] : Doubled(last_);
            if (!last_.empty() && strings_.size() < kAllCodes)
                strings_.push_back(last_ + now[0]);
            if (strings_.size() >= 1U << width_ && width_ < 12)
                ++width_;
            indices += now;
            last_ = now;
        }
    }
    void AddAny(std::mt19937& random)
    {
        const bool canBeNext = !last_.empty() && strings_.size() < kAllCodes;
        UInt32 code = End();
        while (code == End())
            code = static_cast<UInt32>(random() % (strings_.size() + (canBeNext ? 1 : 0)));
        if (code != Clear() || random() % 8 == 0)
            Add(code);
    }
    // Without a string for it.
    void Write(UInt32 code)
    {
        for (int bit = 0; bit < width_; ++bit, ++bitCount_) {
            if (bitCount_ % 8 == 0)
                bytes.push_back(0);
            bytes.back() |= static_cast<UInt8>((code >> bit & 1) << bitCount_ % 8);
        }
    }
    UInt32 Clear() const { return clear_; }
    UInt32 End() const { return clear_ + 1; }
    // The one that gets a string next.
    UInt32 Next() const { return static_cast<UInt32>(strings_.size()); }

    std::vector<UInt8> bytes;
    std::string indices;

private:
    static std::string Doubled(const std::string& string) { return string + string[0]; }
    void Forget()
    {
        strings_.assign(clear_ + 2, "");
        for (UInt32 code = 0; code < clear_; ++code)
            strings_[code] = std::string(1, static_cast<char>(code));
        width_ = rootBits_ + 1;
        last_.clear();
    }

    int rootBits_;
    UInt32 clear_;
    std::vector<std::string> strings_;
    std::string last_;
    int width_ = 0;
    size_t bitCount_ = 0;
};

std::string RowsOf(LzwDecoder& decoder, size_t rowSize)
{
    std::string rows;
    while (const UInt8* const row = decoder.NextRow())
        rows.append(row, row + rowSize);
    return rows;
}

// All whole rows of the codes, which come in pieces of `piece` bytes.
std::string Decoded(LzwDecoder& decoder, const CodeModel& codes, size_t rowSize, size_t piece = 255)
{
    std::string rows;
    for (size_t at = 0; at < codes.bytes.size(); at += piece) {
        const size_t count = std::min(piece, codes.bytes.size() - at);
        decoder.Add({codes.bytes.data() + at, count});
        rows += RowsOf(decoder, rowSize);
    }
    return rows;
}

class LzwDecoding : public testing::Test
{
protected:
    LzwDecoder decoder_;
};

} // namespace

TEST_F(LzwDecoding, GivesTheStringsThatCodesStandFor)
{
    std::mt19937 random(1);
    for (int bits = 1; bits <= 11; ++bits) {
        for (const size_t rowSize : {1U, 7U, 8U, 300U}) {
            CodeModel codes(bits);
            while (codes.indices.size() < 5000)
                codes.AddAny(random);
            codes.indices.resize(codes.indices.size() / rowSize * rowSize);
            decoder_.Start(bits, rowSize);
            EXPECT_TRUE(Decoded(decoder_, codes, rowSize, 1 + random() % 255) == codes.indices)
                << bits << " bits, rows of " << rowSize;
        }
    }
}

TEST_F(LzwDecoding, GivesStringsOfEveryLength)
{
    CodeModel codes(1);
    codes.Add(1);
    while (codes.Next() < kAllCodes)
        codes.Add(codes.Next()); // one longer than the one before
    decoder_.Start(1, 1);
    EXPECT_TRUE(Decoded(decoder_, codes, 1) == codes.indices);
    EXPECT_EQ(codes.indices.size(), 4093U * 4094 / 2);
}

TEST_F(LzwDecoding, KeepsAFullTableUntilItIsCleared)
{
    std::mt19937 random(2);
    CodeModel codes(8);
    for (UInt32 i = 0; i < 2 * kAllCodes; ++i)
        codes.Add(i < kAllCodes ? i % 251 : random() % 256 + 1000);
    codes.Add(codes.Clear());
    for (UInt32 i = 0; i < 300; ++i)
        codes.Add(i % 2 == 0 ? i % 251 : codes.Next());
    decoder_.Start(8, 1);
    EXPECT_TRUE(Decoded(decoder_, codes, 1) == codes.indices);
}

TEST_F(LzwDecoding, GivesARowAsSoonAsItsCodesAreThere)
{
    CodeModel codes(7); // a byte each, until there are strings for longer ones
    for (UInt32 i = 0; i < 8; ++i)
        codes.Add(i);
    decoder_.Start(7, 4);
    for (size_t at = 0; at < 8; ++at) {
        decoder_.Add({codes.bytes.data() + at, 1});
        EXPECT_EQ(decoder_.NextRow() != nullptr, at % 4 == 3) << at;
    }
}

TEST_F(LzwDecoding, HasRowsLongerThanAllItKeepsAhead)
{
    constexpr size_t kLongest = 65535;
    std::mt19937 random(3);
    CodeModel codes(8);
    while (codes.indices.size() < 2 * kLongest)
        codes.AddAny(random);
    codes.indices.resize(2 * kLongest);
    decoder_.Start(8, kLongest);
    EXPECT_TRUE(Decoded(decoder_, codes, kLongest) == codes.indices);
}

TEST_F(LzwDecoding, EndsAtTheCodeForIt)
{
    CodeModel codes(2);
    for (const UInt32 code : {codes.Clear(), 1U, 2U, codes.End(), 3U})
        codes.Add(code);
    decoder_.Start(2, 1);
    EXPECT_EQ(Decoded(decoder_, codes, 1), "\1\2");
    EXPECT_TRUE(decoder_.HasEnded());
}

TEST_F(LzwDecoding, EndsAtACodeThatHasNoStringYet)
{
    CodeModel codes(3);
    codes.Add(1);
    codes.Add(2);
    codes.Write(codes.Next() + 1);
    decoder_.Start(3, 1);
    EXPECT_EQ(Decoded(decoder_, codes, 1), "\1\2");
    EXPECT_TRUE(decoder_.HasEnded());
}

TEST_F(LzwDecoding, EndsAtAFirstCodeThatIsNoIndex)
{
    CodeModel codes(2);
    codes.Add(codes.Clear());
    codes.Write(codes.Next());
    decoder_.Start(2, 1);
    EXPECT_EQ(Decoded(decoder_, codes, 1), "");
    EXPECT_TRUE(decoder_.HasEnded());
}

TEST_F(LzwDecoding, HasNotEndedWhereDataEnd)
{
    CodeModel codes(7);
    codes.Add(1);
    decoder_.Start(7, 1);
    EXPECT_EQ(Decoded(decoder_, codes, 1), "\1");
    EXPECT_FALSE(decoder_.HasEnded());
}

TEST_F(LzwDecoding, BeginsAnewWhateverIsLeft)
{
    CodeModel former(8);
    for (UInt32 i = 0; i < 600; ++i)
        former.Add(former.Next() - (i == 0 ? 3 : 0));
    decoder_.Start(8, 7);
    decoder_.Add(former.bytes);
    decoder_.NextRow();
    CodeModel codes(2);
    codes.Add(3);
    codes.Add(codes.Next());
    decoder_.Start(2, 3);
    EXPECT_EQ(Decoded(decoder_, codes, 3), "\3\3\3");
}

TEST_F(LzwDecoding, HasIndicesOfOneToElevenBits)
{
    EXPECT_FALSE(LzwDecoder::CanHaveBits(0));
    EXPECT_TRUE(LzwDecoder::CanHaveBits(1));
    EXPECT_TRUE(LzwDecoder::CanHaveBits(11));
    EXPECT_FALSE(LzwDecoder::CanHaveBits(12));
}
