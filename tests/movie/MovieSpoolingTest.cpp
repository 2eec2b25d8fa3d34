// SPDX-License-Identifier: MIT
#include "src/datasource/VornDataSource.h"
#include "tests/movie/SpoolingTest.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

namespace test
{
namespace
{

class MovieSpooling : public SpoolingTest
{
};

TEST_F(MovieSpooling, MakesTheFileFromTheObjectsNameTypeAndCreator)
{
    auto plugin = MakePlugin("video/mpeg", "clip.mpg", FOUR_CHARS('M', 'P', 'G', '3'));
    plugin->CreateMovieFile();
    EXPECT_TRUE(plugin->spoolFileCreated);
    CInfoPBRec info{};
    info.ioNamePtr = plugin->spoolFileSpec.name;
    info.ioVRefNum = plugin->spoolFileSpec.vRefNum;
    info.ioDirID = plugin->spoolFileSpec.parID;
    ASSERT_EQ(PBGetCatInfoSync(&info), noErr);
    EXPECT_EQ(info.ioFlFndrType, FOUR_CHARS('M', 'P', 'G', '3'));
    EXPECT_EQ(info.ioFlFndrCreator, FOUR_CHARS('h', 'o', 's', 't'));
    EXPECT_EQ(info.ioFlLgLen, 0);
    const auto* const name = reinterpret_cast<const char*>(plugin->spoolFileSpec.name);
    EXPECT_EQ(std::string(name + 1, static_cast<size_t>(name[0])), "clip.mpg");
}

TEST_F(MovieSpooling, CutsALongNameTo31CharactersBeforeAnythingElse)
{
    auto plugin = MakePlugin("video/mpeg", "abcdefghijklmnopqrstuvwxyz0123456789.mpg");
    plugin->CreateMovieFile();
    const auto* const name = reinterpret_cast<const char*>(plugin->spoolFileSpec.name);
    EXPECT_EQ(std::string(name + 1, static_cast<size_t>(name[0])),
              "abcdefghijklmnopqrstuvwxyz01234");
}

TEST_F(MovieSpooling, GivesTwoObjectsOfOneNameTwoFiles)
{
    auto first = MakePlugin();
    auto second = MakePlugin();
    first->CreateMovieFile();
    second->CreateMovieFile();
    Spool(*first, 10);
    first->CloseMovieFile();
    EXPECT_EQ(FileBytes(first->spoolFileSpec).size(), 10u);
    EXPECT_EQ(FileBytes(second->spoolFileSpec).size(), 0u);
}

TEST_F(MovieSpooling, DoesNotMarkAFileCreatedThatCouldNotBe)
{
    auto plugin = MakePlugin();
    probe.Fail("FSpCreate", dskFulErr);
    EXPECT_EQ(ThrownBy([&] { plugin->CreateMovieFile(); }), dskFulErr);
    EXPECT_FALSE(plugin->spoolFileCreated);
}

TEST_F(MovieSpooling, KnowsWhereTheFileWasToBeWhenItCouldNotBeCreated)
{
    auto plugin = MakePlugin();
    probe.Fail("FSpCreate", dskFulErr);
    EXPECT_EQ(ThrownBy([&] { plugin->CreateMovieFile(); }), dskFulErr);
    const auto* const name = reinterpret_cast<const char*>(plugin->spoolFileSpec.name);
    EXPECT_EQ(std::string(name + 1, static_cast<size_t>(name[0])), "clip.mpg");
}

TEST_F(MovieSpooling, ThrowsWhatTheTemporaryFolderFailsWith)
{
    auto plugin = MakePlugin();
    probe.Fail("FindFolder", fnfErr);
    EXPECT_EQ(ThrownBy([&] { plugin->CreateMovieFile(); }), fnfErr);
    EXPECT_EQ(probe.Count("FSpCreate"), 0);
}

// One chunk -----------------------------------------------------------------------------------

TEST_F(MovieSpooling, RefusesAChunkBeforeTheFileExists)
{
    auto plugin = MakePlugin();
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), paramErr);
    EXPECT_EQ(probe.Count("FSpOpenDF"), 0);
}

TEST_F(MovieSpooling, OpensPathThenMakesBufferOnceForAllChunks)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Forget();
    Spool(*plugin, 3 * kChunk);
    EXPECT_EQ(probe.Calls({"FSpOpenDF", "NewHandle"}), (Calls{"FSpOpenDF", "NewHandle"}));
    EXPECT_EQ(GetHandleSize(plugin->spoolBuffer), kChunk);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, ReadsStraightIntoTheLockedBlockAndWritesOnce)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Forget();
    SInt8 stateInside = 0;
    host.onGetData = [&] { stateInside = HGetState(plugin->spoolBuffer); };
    Spool(*plugin, 100);
    EXPECT_EQ(stateInside & 0x80, 0x80);
    EXPECT_EQ(HGetState(plugin->spoolBuffer) & 0x80, 0);
    EXPECT_EQ(probe.Calls({"HLockHi", "HSetState", "FSWrite"}),
              (Calls{"HLockHi", "HSetState", "FSWrite"}));
    ASSERT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.requests[0].offset, 0);
    EXPECT_EQ(host.requests[0].count, kChunk);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, UnlocksTheBlockWhenTheReadThrows)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    host.failure = ioErr;
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), ioErr);
    EXPECT_EQ(HGetState(plugin->spoolBuffer) & 0x80, 0);
    EXPECT_EQ(plugin->bytesSpooled, 100);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, ThrowsMemFullWithoutAChunkBuffer)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Fail("NewHandle", -1);
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), memFullErr);
    EXPECT_EQ(plugin->spoolBuffer, nullptr);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, ThrowsWhatOpeningForWritingFailsWith)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    probe.Fail("FSpOpenDF", tmfoErr);
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), tmfoErr);
    EXPECT_EQ(plugin->spoolWriteRefNum, -1);
}

TEST_F(MovieSpooling, ThrowsWhatWritingFailsWith)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    host.arrivals = {100};
    probe.Fail("FSWrite", dskFulErr);
    EXPECT_EQ(ThrownBy([&] { plugin->SpoolMovieToFile(); }), dskFulErr);
    EXPECT_EQ(plugin->bytesSpooled, 0);
    plugin->CloseMovieFile();
}

TEST_F(MovieSpooling, WritesTheBytesOfTheReadThatReportsTheEnd)
{
    auto plugin = MakePlugin();
    plugin->CreateMovieFile();
    host.arrivals = {70};
    host.reportsEndWithLastBytes = true;
    plugin->SpoolMovieToFile();
    EXPECT_TRUE(plugin->allDataSpooled);
    EXPECT_EQ(plugin->bytesSpooled, 70);
    plugin->CloseMovieFile();
    EXPECT_EQ(FileBytes(plugin->spoolFileSpec).size(), 70u);
}

TEST_F(MovieSpooling, TakesAnyErrorOfABlockReadForTheEnd)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    struct FailingSource : VornDataSource {
        OSErr GetBytes(void*, SInt32, SInt32* count) override
        {
            *count = 5;
            return -1234;
        }
        UInt8* GetBytesDataPtr(SInt32, SInt32) override { return nullptr; }
        OSErr FetchDataFromSource(void*, SInt32, SInt32*, unsigned char) override { return 0; }
    };
    delete plugin->dataSource;
    plugin->dataSource = new FailingSource;
    plugin->SpoolMovieToFile();
    EXPECT_TRUE(plugin->allDataSpooled);
    EXPECT_EQ(plugin->bytesSpooled, 105);
    plugin->CloseMovieFile();
}

// Closing -------------------------------------------------------------------------------------

TEST_F(MovieSpooling, ClosesTheWritePathOnce)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    probe.Forget();
    plugin->CloseMovieFile();
    EXPECT_EQ(plugin->spoolWriteRefNum, -1);
    plugin->CloseMovieFile();
    EXPECT_EQ(probe.Count("FSClose"), 1);
}

TEST_F(MovieSpooling, ForgetsTheWritePathEvenWhenClosingFails)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    const SInt16 path = plugin->spoolWriteRefNum;
    probe.Fail("FSClose", ioErr);
    EXPECT_EQ(ThrownBy([&] { plugin->CloseMovieFile(); }), ioErr);
    EXPECT_EQ(plugin->spoolWriteRefNum, -1);
    EXPECT_NO_THROW(plugin->CloseMovieFile());
    FSClose(path);
}

} // namespace
} // namespace test
