// SPDX-License-Identifier: MIT
#include "src/util/Strings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace
{

// Tables of what each character compares as, written apart from the one under test: the ranges of
// characters that share a key.
struct Folding {
    UInt8 first;
    UInt8 last;
    UInt8 key;
};
constexpr Folding kFoldings[] = {
    {0x80, 0x81, 'A'},  {0x82, 0x82, 'C'}, {0x83, 0x83, 'E'},  {0x84, 0x84, 'N'},
    {0x85, 0x85, 'O'},  {0x86, 0x86, 'U'}, {0x87, 0x8C, 'A'},  {0x8D, 0x8D, 'C'},
    {0x8E, 0x91, 'E'},  {0x92, 0x95, 'I'}, {0x96, 0x96, 'N'},  {0x97, 0x9B, 'O'},
    {0x9C, 0x9F, 'U'},  {0xAF, 0xAF, 'O'}, {0xBE, 0xBE, 0xAE}, {0xBF, 0xBF, 'O'},
    {0xC7, 0xC8, '"'},  {0xCA, 0xCA, ' '}, {0xCB, 0xCC, 'A'},  {0xCD, 0xCD, 'O'},
    {0xCE, 0xCF, 0xAE}, {0xD2, 0xD3, '"'}, {0xD4, 0xD5, '\''}, {0xD8, 0xD8, 'Y'},
};

UInt8 ExpectedKey(UInt8 character)
{
    if (character >= 'a' && character <= 'z')
        return static_cast<UInt8>(character - 'a' + 'A');
    for (const Folding& folding : kFoldings)
        if (character >= folding.first && character <= folding.last)
            return folding.key;
    return character;
}

std::string Text(UInt8 character)
{
    return std::string(1, static_cast<char>(character));
}

// A Pascal string with room for 255 characters, the unused ones marked.
struct Pascal {
    explicit Pascal(const std::string& text = {})
    {
        std::memset(bytes, '#', sizeof bytes);
        bytes[0] = static_cast<UInt8>(text.size());
        std::memcpy(bytes + 1, text.data(), text.size());
    }
    std::string Get() const { return {reinterpret_cast<const char*>(bytes + 1), bytes[0]}; }
    Str255 bytes;
};

} // namespace

TEST(StrCopySafe, CopiesAtMostTheLimitAndTerminates)
{
    char buffer[] = "######";
    StrCopySafe(buffer, "abcdef", 3);
    EXPECT_EQ(std::string(buffer, 6), std::string("abc\0##", 6));
}

TEST(StrCopySafe, CopiesAShorterTextWithItsTerminator)
{
    char buffer[] = "######";
    StrCopySafe(buffer, "ab", 4);
    EXPECT_EQ(std::string(buffer, 6), std::string("ab\0###", 6));
}

TEST(StrCopySafe, ATextAsLongAsTheLimitIsCopiedWhole)
{
    char buffer[] = "#####";
    StrCopySafe(buffer, "abc", 3);
    EXPECT_EQ(std::string(buffer, 5), std::string("abc\0#", 5));
}

TEST(StrCopySafe, WritesOneByteWithoutALimit)
{
    char buffer[] = "##";
    StrCopySafe(buffer, "abc", 0);
    EXPECT_EQ(std::string(buffer, 2), std::string("\0#", 2));
}

TEST(StrCopySafe, TheLargestLimitIsNoLimit)
{
    char buffer[8];
    StrCopySafe(buffer, "abcdef", 0xFFFFFFFF);
    EXPECT_STREQ(buffer, "abcdef");
}

TEST(CharsTable, MapsEveryCharacterToItsKey)
{
    for (unsigned code = 0; code < 256; ++code)
        EXPECT_EQ(gCharsTable[code], ExpectedKey(static_cast<UInt8>(code))) << code;
}

TEST(StrCaseCmp, OrdersEveryPairOfCharactersByTheirKeys)
{
    for (unsigned a = 0; a < 256; ++a) {
        for (unsigned b = 0; b < 256; ++b) {
            const int keyA = ExpectedKey(static_cast<UInt8>(a));
            const int keyB = ExpectedKey(static_cast<UInt8>(b));
            const int expected = keyA == keyB ? 0 : keyA < keyB ? -1 : 1;
            const std::string textA = Text(static_cast<UInt8>(a));
            const std::string textB = Text(static_cast<UInt8>(b));
            ASSERT_EQ(StrCaseCmp(textA.c_str(), textB.c_str()), expected) << a << ' ' << b;
            ASSERT_EQ(MyStrEqual(textA.c_str(), textB.c_str()) != 0, expected == 0)
                << a << ' ' << b;
        }
    }
}

TEST(StrCaseCmp, IgnoresCaseAndAccents)
{
    EXPECT_EQ(StrCaseCmp("\x83lan", "elan"), 0);
    EXPECT_EQ(StrCaseCmp("VIDEO/mpeg", "video/MPEG"), 0);
}

TEST(StrCaseCmp, TakesTheLigatureOfOAndEForThatOfAAndE)
{
    EXPECT_EQ(StrCaseCmp("\xCEuvre", "\xAEuvre"), 0);
    EXPECT_EQ(StrCaseCmp("\xCFuvre", "\xBEuvre"), 0);
    EXPECT_NE(StrCaseCmp("\xCEuvre", "Oeuvre"), 0);
}

TEST(StrCaseCmp, APrefixComesFirst)
{
    EXPECT_EQ(StrCaseCmp("ab", "abc"), -1);
    EXPECT_EQ(StrCaseCmp("abc", "ab"), 1);
    EXPECT_EQ(StrCaseCmp("", ""), 0);
}

TEST(StrCaseCmp, ComparesKeysWithoutSign)
{
    EXPECT_EQ(StrCaseCmp("\xFF", "a"), 1);
    EXPECT_EQ(StrCaseCmp("a", "\xA0"), -1);
}

TEST(MyStrEqual, APrefixIsNotTheSame)
{
    EXPECT_FALSE(MyStrEqual("abc", "ab"));
    EXPECT_FALSE(MyStrEqual("ab", "abc"));
    EXPECT_TRUE(MyStrEqual("abc", "ABC"));
    EXPECT_TRUE(MyStrEqual("", ""));
}

TEST(CopyPascalString, CopiesLengthAndCharactersAndNoMore)
{
    const Pascal source("four");
    Pascal copy;
    CopyPascalString(copy.bytes, source.bytes);
    EXPECT_EQ(copy.Get(), "four");
    EXPECT_EQ(copy.bytes[5], '#');
}

TEST(CopyPascalString, CopiesAllOfTheLongestString)
{
    const Pascal source(std::string(255, 'y'));
    Pascal copy;
    CopyPascalString(copy.bytes, source.bytes);
    EXPECT_EQ(copy.Get(), std::string(255, 'y'));
}

TEST(CopyPascalString, MovesWithinOneArea)
{
    unsigned char area[] = "\4abcd##";
    CopyPascalString(area + 1, area);
    EXPECT_EQ(std::memcmp(area, "\4\4abcd#", 7), 0);
}

TEST(CopyCToPascalString, CopiesUpToTheTerminator)
{
    Pascal copy;
    CopyCToPascalString("clip", copy.bytes, 31);
    EXPECT_EQ(copy.Get(), "clip");
    EXPECT_EQ(copy.bytes[5], '#');
}

TEST(CopyCToPascalString, CopiesUpToTheLimit)
{
    Pascal copy;
    CopyCToPascalString("movie", copy.bytes, 3);
    EXPECT_EQ(copy.Get(), "mov");
    EXPECT_EQ(copy.bytes[4], '#');
}

TEST(CopyCToPascalString, CopiesNothingForALimitOfNoneOrLess)
{
    for (const SInt32 limit : {0, -1, INT32_MIN}) {
        Pascal copy("x");
        CopyCToPascalString("movie", copy.bytes, limit);
        EXPECT_EQ(copy.Get(), "") << limit;
        EXPECT_EQ(copy.bytes[1], 'x') << limit;
    }
}

TEST(CopyPascalToCString, CopiesAndTerminates)
{
    const Pascal source("clip");
    char buffer[] = "########";
    CopyPascalToCString(source.bytes, buffer, 7);
    EXPECT_EQ(std::string(buffer, 8), std::string("clip\0###", 8));
}

TEST(CopyPascalToCString, CutsAtTheLimit)
{
    const Pascal source("movie");
    char buffer[] = "#####";
    CopyPascalToCString(source.bytes, buffer, 3);
    EXPECT_EQ(std::string(buffer, 5), std::string("mov\0#", 5));
}

TEST(CopyPascalToCString, GivesAnEmptyTextWithoutALimit)
{
    const Pascal source("movie");
    char buffer[] = "##";
    CopyPascalToCString(source.bytes, buffer, 0);
    EXPECT_EQ(std::string(buffer, 2), std::string("\0#", 2));
}

TEST(CopyPascalToCString, GivesAnEmptyTextForANegativeLimit)
{
    const Pascal source("movie");
    for (const SInt32 limit : {-1, INT32_MIN}) {
        char buffer[] = "##";
        CopyPascalToCString(source.bytes, buffer, limit);
        EXPECT_EQ(std::string(buffer, 2), std::string("\0#", 2)) << limit;
    }
}
