// SPDX-License-Identifier: MIT
#include "src/util/FileNames.h"

#include "src/util/Strings.h"
#include "tests/support/ToolboxProbe.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using test::ToolboxProbe;

namespace
{

std::string Text(ConstStringPtr pascal)
{
    return {reinterpret_cast<const char*>(pascal + 1), pascal[0]};
}

std::string Legal(const std::string& name)
{
    Str255 pascal;
    CopyCToPascalString(name.c_str(), pascal, 255);
    Str31 legal;
    MakeLegalFileName(pascal, legal);
    return Text(legal);
}

struct Split {
    std::string base;
    std::string extension; // "none" for none
    bool operator==(const Split&) const = default;
};

void PrintTo(const Split& split, std::ostream* out)
{
    *out << split.base << " + " << split.extension;
}

Split SplitName(const std::string& name)
{
    Str255 base;
    const char* extension = nullptr;
    MakeLegalFileNameWithExtension(name.c_str(), &extension, base);
    return {Text(base), extension ? extension : "none"};
}

} // namespace

TEST(LegalFileName, AnEmptyNameBecomesAnX)
{
    EXPECT_EQ(Legal(""), "x");
}

TEST(LegalFileName, ALeadingDotIsNotHidden)
{
    EXPECT_EQ(Legal(".profile"), "_profile");
    EXPECT_EQ(Legal("a.profile"), "a.profile");
    EXPECT_EQ(Legal("..x"), "_.x");
}

TEST(LegalFileName, CharactersThatSeparatePathsBecomeSpaces)
{
    EXPECT_EQ(Legal("a/b:c"), "a b c");
    EXPECT_EQ(Legal("one\rtwo\nthree"), "one two\nthree");
    EXPECT_EQ(Legal("/.x"), " .x");
}

TEST(LegalFileName, KeepsTheFirst31Characters)
{
    const std::string name = "abcdefghijklmnopqrstuvwxyzabcdefghijklmn";
    ASSERT_EQ(name.size(), 40U);
    EXPECT_EQ(Legal(name), name.substr(0, 31));
}

TEST(LegalFileName, CanBeMadeInPlace)
{
    Str255 name = "\4.a:b";
    MakeLegalFileName(name, name);
    EXPECT_EQ(Text(name), "_a b");
}

TEST(LegalFilenameChars, CopiesWithoutTerminator)
{
    char buffer[] = "########";
    CopyLegalFilenameChars("a/b", buffer, 8);
    EXPECT_STREQ(buffer, "a b#####");
}

TEST(LegalFilenameChars, StopsAtTheCount)
{
    char buffer[] = "####";
    CopyLegalFilenameChars("a:b\rc", buffer, 2);
    EXPECT_STREQ(buffer, "a ##");
    CopyLegalFilenameChars("zzz", buffer, 0);
    CopyLegalFilenameChars("zzz", buffer, -1);
    EXPECT_STREQ(buffer, "a ##");
}

TEST(LegalNameWithExtension, SplitsAtTheDot)
{
    EXPECT_EQ(SplitName("clip.mpeg"), (Split{"clip", ".mpeg"}));
    EXPECT_EQ(SplitName("clip.mpg"), (Split{"clip", ".mpg"}));
    EXPECT_EQ(SplitName("clip."), (Split{"clip", "."}));
}

TEST(LegalNameWithExtension, AnExtensionHasAtMostFourCharacters)
{
    EXPECT_EQ(SplitName("archive.backup"), (Split{"archive.backup", "none"}));
    EXPECT_EQ(SplitName("archive.abcd"), (Split{"archive", ".abcd"}));
    EXPECT_EQ(SplitName("archive.abcde"), (Split{"archive.abcde", "none"}));
}

TEST(LegalNameWithExtension, TheLastDotCounts)
{
    EXPECT_EQ(SplitName("a.b.c"), (Split{"a.b", ".c"}));
}

TEST(LegalNameWithExtension, AShortNamesFirstCharacterIsNoExtension)
{
    EXPECT_EQ(SplitName(".mpg"), (Split{".mpg", "none"}));
    EXPECT_EQ(SplitName(".mpeg"), (Split{".mpeg", "none"}));
    EXPECT_EQ(SplitName("a.mp"), (Split{"a", ".mp"}));
    EXPECT_EQ(SplitName(""), (Split{"", "none"}));
    EXPECT_EQ(SplitName("."), (Split{".", "none"}));
}

TEST(LegalNameWithExtension, MakesTheBaseLegal)
{
    EXPECT_EQ(SplitName("a/b:c.mpg"), (Split{"a b c", ".mpg"}));
}

TEST(LegalNameWithExtension, CutsTheBaseSoThatBothFit31Characters)
{
    EXPECT_EQ(SplitName(std::string(40, 'n') + ".mpeg"), (Split{std::string(26, 'n'), ".mpeg"}));
    EXPECT_EQ(SplitName(std::string(26, 'n') + ".mpeg"), (Split{std::string(26, 'n'), ".mpeg"}));
}

TEST(LegalNameWithExtension, DoesNotCutANameWithoutExtension)
{
    EXPECT_EQ(SplitName(std::string(40, 'n')), (Split{std::string(40, 'n'), "none"}));
}

TEST(LegalNameWithExtension, TheExtensionPointsIntoTheName)
{
    const char* name = "clip.mpg";
    const char* extension = nullptr;
    Str31 base;
    MakeLegalFileNameWithExtension(name, &extension, base);
    EXPECT_EQ(extension, name + 4);
}

namespace
{

// Files in the temporary folder, deleted at the end of the test.
class UniqueFileName : public testing::Test
{
protected:
    void SetUp() override
    {
        SInt16 volume = 0;
        SInt32 folder = 0;
        ASSERT_EQ(FindFolder(kOnSystemDisk, kTemporaryFolderType, kCreateFolder, &volume, &folder),
                  noErr);
        directory.vRefNum = volume;
        directory.parID = folder;
    }
    void TearDown() override
    {
        for (const FSSpec& spec : created)
            FSpDelete(&spec);
    }

    FSSpec Named(const std::string& name) const
    {
        FSSpec spec = directory;
        CopyCToPascalString(name.c_str(), spec.name, 31);
        return spec;
    }
    void Create(const FSSpec& spec)
    {
        ASSERT_EQ(FSpCreate(&spec, 0, 0, smSystemScript), noErr);
        created.push_back(spec);
    }
    // The name that `base` and `extension` get; the file is then created.
    std::string Take(const std::string& base, const char* extension)
    {
        FSSpec spec = Named(base);
        EXPECT_EQ(MakeFileNameUnique(&spec, extension), noErr);
        Create(spec);
        return Text(spec.name);
    }

    FSSpec directory{};
    std::vector<FSSpec> created;
};

using TempFileSpec = UniqueFileName;
using FileLookUp = UniqueFileName;

} // namespace

TEST_F(UniqueFileName, IsBaseAndExtensionIfNothingHasThatName)
{
    EXPECT_EQ(Take("fresh", ".mpg"), "fresh.mpg");
}

TEST_F(UniqueFileName, IsNumberedFromTwoOnIfTheNameIsTaken)
{
    EXPECT_EQ(Take("movie", ".mpg"), "movie.mpg");
    EXPECT_EQ(Take("movie", ".mpg"), "movie.2.mpg");
    EXPECT_EQ(Take("movie", ".mpg"), "movie.3.mpg");
}

TEST_F(UniqueFileName, NeedsNoExtension)
{
    EXPECT_EQ(Take("plain", nullptr), "plain");
    EXPECT_EQ(Take("plain", nullptr), "plain.2");
    EXPECT_EQ(Take("plain", ""), "plain.3");
}

TEST_F(UniqueFileName, CutsTheBaseForTheExtension)
{
    EXPECT_EQ(Take(std::string(31, 'b'), ".mpeg"), std::string(26, 'b') + ".mpeg");
}

TEST_F(UniqueFileName, ShortensTheBaseForEachLongerNumber)
{
    EXPECT_EQ(Take(std::string(31, 'c'), ".mpg"), std::string(27, 'c') + ".mpg");
    for (int number = 2; number <= 11; ++number) {
        const std::string suffix = "." + std::to_string(number) + ".mpg";
        EXPECT_EQ(Take(std::string(31, 'c'), ".mpg"),
                  std::string(31 - suffix.size(), 'c') + suffix);
    }
}

TEST_F(UniqueFileName, CountsOnPastTheHundreds)
{
    EXPECT_EQ(Take("many", ".mpg"), "many.mpg");
    for (int number = 2; number <= 130; ++number)
        ASSERT_EQ(Take("many", ".mpg"), "many." + std::to_string(number) + ".mpg");
}

TEST_F(UniqueFileName, GivesTheBaseUpForAnExtensionOf31Characters)
{
    const std::string extension = "." + std::string(30, 'e');
    EXPECT_EQ(Take("base", extension.c_str()), extension);
    EXPECT_EQ(Take("base", extension.c_str()), ".2" + extension.substr(0, 29));
}

TEST_F(UniqueFileName, AnotherErrorOfTheLookUpIsReturned)
{
    FSSpec spec = Named("movie");
    ToolboxProbe probe;
    probe.Fail("PBGetCatInfoSync", ioErr);
    EXPECT_EQ(MakeFileNameUnique(&spec, ".mpg"), ioErr);
}

TEST_F(UniqueFileName, AnErrorOfALaterLookUpIsReturnedToo)
{
    Take("later", ".mpg");
    FSSpec spec = Named("later");
    ToolboxProbe probe;
    probe.Fail("PBGetCatInfoSync", ioErr, 2);
    EXPECT_EQ(MakeFileNameUnique(&spec, ".mpg"), ioErr);
}

TEST_F(UniqueFileName, IsMadeLegalFirst)
{
    FSSpec spec = directory;
    EXPECT_EQ(MakeUniqueFileNameWithExtension("a/b.mpg", &spec), noErr);
    EXPECT_EQ(Text(spec.name), "a b.mpg");
}

TEST_F(UniqueFileName, DoesNotRunOverTheSpecificationWithALongName)
{
    struct {
        FSSpec spec;
        char behind[200];
    } guarded{};
    guarded.spec = directory;
    EXPECT_EQ(MakeUniqueFileNameWithExtension(std::string(200, 'l').c_str(), &guarded.spec), noErr);
    EXPECT_EQ(Text(guarded.spec.name), std::string(31, 'l'));
    for (const char byte : guarded.behind)
        ASSERT_EQ(byte, 0);
}

TEST_F(TempFileSpec, LiesInTheTemporaryFolder)
{
    FSSpec spec{};
    EXPECT_EQ(GetTempFileSpec("spool.mpg", &spec), noErr);
    EXPECT_EQ(Text(spec.name), "spool.mpg");
    EXPECT_EQ(SInt16{spec.vRefNum}, SInt16{directory.vRefNum});
    EXPECT_EQ(SInt32{spec.parID}, SInt32{directory.parID});
}

TEST_F(TempFileSpec, CreatesNoFile)
{
    FSSpec spec{};
    ASSERT_EQ(GetTempFileSpec("none.mpg", &spec), noErr);
    EXPECT_EQ(FileOrFolderExists(&spec, nullptr), fnfErr);
}

TEST_F(TempFileSpec, GivesANumberedNameBesideAnExistingFileAndLeavesItAlone)
{
    const FSSpec existing = Named("kept.mpg");
    Create(existing);
    SInt16 path = 0;
    ASSERT_EQ(FSpOpenDF(&existing, fsRdWrPerm, &path), noErr);
    SInt32 count = 5;
    ASSERT_EQ(FSWrite(path, &count, "bytes"), noErr);
    ASSERT_EQ(FSClose(path), noErr);

    FSSpec spec{};
    EXPECT_EQ(GetTempFileSpec("kept.mpg", &spec), noErr);
    EXPECT_EQ(Text(spec.name), "kept.2.mpg");

    char content[6] = {};
    ASSERT_EQ(FSpOpenDF(&existing, fsRdPerm, &path), noErr);
    EXPECT_EQ(FSRead(path, &count, content), noErr);
    EXPECT_EQ(FSClose(path), noErr);
    EXPECT_STREQ(content, "bytes");
}

TEST_F(TempFileSpec, AnErrorOfFindingTheFolderIsReturned)
{
    FSSpec spec{};
    ToolboxProbe probe;
    probe.Fail("FindFolder", dskFulErr);
    EXPECT_EQ(GetTempFileSpec("spool.mpg", &spec), dskFulErr);
}

TEST_F(FileLookUp, TellsAFileFromAFolder)
{
    const FSSpec file = Named("file");
    Create(file);
    Boolean isFolder = 7;
    EXPECT_EQ(FileOrFolderExists(&file, &isFolder), noErr);
    EXPECT_FALSE(isFolder);
    // The empty name names the directory itself.
    EXPECT_EQ(FileOrFolderExists(&directory, &isFolder), noErr);
    EXPECT_TRUE(isFolder);
}

TEST_F(FileLookUp, ReportsWhatIsNotThere)
{
    const FSSpec nothing = Named("nothing");
    Boolean isFolder = 7;
    EXPECT_EQ(FileOrFolderExists(&nothing, &isFolder), fnfErr);
    EXPECT_EQ(isFolder, 7);
}

TEST_F(FileLookUp, NeedsNoPlaceForTheAnswer)
{
    const FSSpec file = Named("other");
    Create(file);
    EXPECT_EQ(FileOrFolderExists(&file, nullptr), noErr);
}

TEST_F(FileLookUp, ReturnsTheErrorOfTheCatalogue)
{
    const FSSpec file = Named("file");
    ToolboxProbe probe;
    probe.Fail("PBGetCatInfoSync", ioErr);
    EXPECT_EQ(FileOrFolderExists(&file, nullptr), ioErr);
}
