// SPDX-License-Identifier: MIT
#include "toolbox/files/FileNamesOnDisk.h"

#include "toolbox/Errors.h"
#include "toolbox/files/SystemErrors.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <string>

namespace
{

using namespace toolbox;
using namespace std::string_literals;

std::string NameWithCode(int code)
{
    return {static_cast<char>(code)};
}

TEST(MacRoman, EveryCodeComesBackFromUtf8)
{
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(NameWithCode(code), MacRomanFromUtf8(Utf8FromMacRoman(NameWithCode(code))))
            << code;
    }
}

TEST(MacRoman, NoTwoCodesAreTheSameCharacter)
{
    std::set<std::string> characters;
    for (int code = 0; code < 256; ++code) {
        characters.insert(Utf8FromMacRoman(NameWithCode(code)));
    }
    EXPECT_EQ(256U, characters.size());
}

TEST(MacRoman, HasItsAccentsWhereThePlatformPutThem)
{
    EXPECT_EQ("\u00C4\u00E9\u00D8\u0152\u20AC\uFB02\u02C7",
              Utf8FromMacRoman("\x80\x8E\xAF\xCE\xDB\xDF\xFF"));
    EXPECT_EQ("\u00C9lan", Utf8FromMacRoman("\x83lan"));
}

TEST(MacRoman, LacksOtherAlphabets)
{
    EXPECT_EQ(std::nullopt, MacRomanFromUtf8("\u0416"));
    EXPECT_EQ(std::nullopt, MacRomanFromUtf8("\U0001F3AC"));
}

TEST(MacRoman, IsNotReadFromMalformedText)
{
    EXPECT_EQ(std::nullopt, MacRomanFromUtf8("\xC3"));
    EXPECT_EQ(std::nullopt, MacRomanFromUtf8("\x80"));
    EXPECT_EQ(std::nullopt, MacRomanFromUtf8("\xC0\xAF")); // too long a form of a slash
}

TEST(FileNamesOnDisk, EveryNameOfOneCharacterComesBack)
{
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(NameWithCode(code), NameFromDisk(FileNameOnDisk(NameWithCode(code)))) << code;
    }
}

TEST(FileNamesOnDisk, DifferentNamesAreDifferentOnDisk)
{
    std::set<std::string> components = {FileNameOnDisk("..")};
    for (int code = 0; code < 256; ++code) {
        components.insert(FileNameOnDisk(NameWithCode(code)));
    }
    EXPECT_EQ(257U, components.size());
}

TEST(FileNamesOnDisk, AreOneComponentEach)
{
    for (int code = 0; code < 256; ++code) {
        const std::string component = FileNameOnDisk(NameWithCode(code));
        EXPECT_EQ(std::string::npos, component.find('/')) << code;
        EXPECT_EQ(std::string::npos, component.find('\0')) << code;
    }
}

TEST(FileNamesOnDisk, NeverLeadElsewhere)
{
    for (const std::string name : {".", ".."}) {
        EXPECT_NE(".", FileNameOnDisk(name));
        EXPECT_NE("..", FileNameOnDisk(name));
        EXPECT_EQ(name, NameFromDisk(FileNameOnDisk(name)));
    }
}

TEST(FileNamesOnDisk, KeepDotsThatAreHarmless)
{
    EXPECT_EQ("...", FileNameOnDisk("..."));
    EXPECT_EQ(".profile", FileNameOnDisk(".profile"));
    EXPECT_EQ("movie.2.mpg", FileNameOnDisk("movie.2.mpg"));
}

TEST(FileNamesOnDisk, ShowASlashAsAColon)
{
    EXPECT_EQ("a:b", FileNameOnDisk("a/b"));
    EXPECT_EQ("a/b", NameFromDisk("a:b"));
    EXPECT_EQ("a:b\0"s, NameFromDisk(FileNameOnDisk("a:b\0"s)));
}

TEST(FileNamesOnDisk, AComponentThatNoNameGivesIsNoName)
{
    EXPECT_EQ(std::nullopt, NameFromDisk(""));
    EXPECT_EQ(std::nullopt, NameFromDisk("."));
    EXPECT_EQ(std::nullopt, NameFromDisk(".."));
    EXPECT_EQ(std::nullopt, NameFromDisk("a/b"));
    EXPECT_EQ(std::nullopt, NameFromDisk("\uF02Eprofile"));
}

TEST(SystemErrors, HaveThePlatformsCodes)
{
    EXPECT_EQ(dskFulErr, ErrorFromSystem(ENOSPC));
    EXPECT_EQ(dskFulErr, ErrorFromSystem(EDQUOT));
    EXPECT_EQ(wPrErr, ErrorFromSystem(EROFS));
    EXPECT_EQ(permErr, ErrorFromSystem(EACCES));
    EXPECT_EQ(tmfoErr, ErrorFromSystem(EMFILE));
    EXPECT_EQ(tmfoErr, ErrorFromSystem(ENFILE));
    EXPECT_EQ(fnfErr, ErrorFromSystem(ENOENT));
    EXPECT_EQ(dupFNErr, ErrorFromSystem(EEXIST));
    EXPECT_EQ(bdNamErr, ErrorFromSystem(ENAMETOOLONG));
    EXPECT_EQ(memFullErr, ErrorFromSystem(ENOMEM));
    EXPECT_EQ(ioErr, ErrorFromSystem(EIO));
    EXPECT_EQ(ioErr, ErrorFromSystem(EXDEV));
}

} // namespace
