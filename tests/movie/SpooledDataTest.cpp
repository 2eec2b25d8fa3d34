// SPDX-License-Identifier: MIT
#include "tests/movie/SpoolingTest.h"
#include "tests/support/CooperativeThread.h"
#include "toolbox/Errors.h"

#include <algorithm>

namespace test
{
namespace
{

class SpooledData : public SpoolingTest
{
protected:
    SpooledData() : plugin(MakePlugin()) {}
    ~SpooledData() override = default;

    void SetUp() override
    {
        MovieTest::SetUp();
        Spool(*plugin, 1000);
    }
    void TearDown() override
    {
        if (plugin->spoolWriteRefNum != -1) {
            plugin->CloseMovieFile();
        }
        plugin.reset();
        MovieTest::TearDown();
    }

    SInt32 Read(SInt32 offset, SInt32 want, unsigned char wait = false)
    {
        bytes.assign(static_cast<size_t>(std::max(want, 0)) + 1, 0);
        SInt32 count = want;
        plugin->GetMovieData(bytes.data(), offset, &count, wait);
        return count;
    }

    std::unique_ptr<VornMoviePlugin> plugin;
    std::vector<UInt8> bytes;
};

TEST_F(SpooledData, IsReadUpToItsVeryEndWithoutWaiting)
{
    EXPECT_EQ(Read(900, 100), 100);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end() - 1, host.object.begin() + 900));
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 0);
}

TEST_F(SpooledData, IsReadThroughOnePathThatStaysOpen)
{
    probe.Forget();
    Read(0, 10);
    Read(500, 10);
    EXPECT_EQ(probe.Count("FSpOpenDF"), 1);
    EXPECT_EQ(probe.Count("FSClose"), 0);
    EXPECT_NE(plugin->spoolReadRefNum, plugin->spoolWriteRefNum);
}

TEST_F(SpooledData, IsMeasuredThenSoughtThenRead)
{
    probe.Forget();
    Read(500, 10);
    const Calls inOrder = {"FSpOpenDF", "GetEOF", "SetFPos", "FSRead"};
    EXPECT_EQ(probe.Calls(inOrder), inOrder);
}

TEST_F(SpooledData, IsOpenForReadingOnly)
{
    Read(0, 10);
    SInt32 count = 1;
    EXPECT_EQ(FSWrite(plugin->spoolReadRefNum, &count, "x"), wrPermErr);
}

TEST_F(SpooledData, OneByteTooManyIsNotThereYet)
{
    EXPECT_EQ(IntThrownBy([&] { Read(900, 101); }), notEnoughDataErr);
}

TEST_F(SpooledData, OneByteTooManyIsPastTheEndOnceAllIsIn)
{
    SpoolTheEnd(*plugin);
    EXPECT_EQ(IntThrownBy([&] { Read(900, 101); }), eofErr);
}

TEST_F(SpooledData, IsOpenedBeforeItIsMissed)
{
    probe.Fail("FSpOpenDF", tmfoErr);
    EXPECT_EQ(ThrownBy([&] { Read(900, 101); }), tmfoErr);
    EXPECT_EQ(IntThrownBy([&] { Read(900, 101); }), notEnoughDataErr);
    EXPECT_NE(plugin->spoolReadRefNum, -1);
}

TEST_F(SpooledData, LeavesTheCountAloneWhenItThrows)
{
    SInt32 count = 101;
    char byte = 0;
    EXPECT_EQ(IntThrownBy([&] { plugin->GetMovieData(&byte, 900, &count, false); }),
              notEnoughDataErr);
    EXPECT_EQ(count, 101);
}

TEST_F(SpooledData, ARequestNear2GiBIsNotWrapped)
{
    EXPECT_EQ(IntThrownBy([&] { Read(INT32_MAX, 16); }), notEnoughDataErr);
    EXPECT_EQ(IntThrownBy([&] {
                  SInt32 count = INT32_MAX;
                  char byte = 0;
                  plugin->GetMovieData(&byte, INT32_MAX, &count, false);
              }),
              notEnoughDataErr);
}

TEST_F(SpooledData, IsCutAtTheEndOfACompleteFileWhenWaitedFor)
{
    SpoolTheEnd(*plugin);
    EXPECT_EQ(Read(900, 5000, true), 100);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.begin() + 100, host.object.begin() + 900));
}

TEST_F(SpooledData, BeyondACompleteFileAsksForANegativeCount)
{
    SpoolTheEnd(*plugin);
    EXPECT_EQ(ThrownBy([&] { Read(1001, 10, true); }), paramErr);
    EXPECT_EQ(ThrownBy([&] { Read(INT32_MAX, 10, true); }), paramErr);
}

TEST_F(SpooledData, BeforeItsStartIsNowhere)
{
    EXPECT_EQ(ThrownBy([&] { Read(-1, 10); }), posErr);
}

TEST_F(SpooledData, IsWaitedForUntilEnoughHasCome)
{
    const CooperativeThread bringer([this] {
        for (int turn = 0; turn < 5; ++turn) {
            Spool(*plugin, 100);
            YieldToAnyThread();
        }
    });
    EXPECT_EQ(Read(1000, 250, true), 250);
    EXPECT_EQ(plugin->bytesSpooled, 1300); // no turn more than needed
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end() - 1, host.object.begin() + 1000));
}

TEST_F(SpooledData, WaitingEndsWithTheData)
{
    const CooperativeThread ender([this] {
        YieldToAnyThread();
        SpoolTheEnd(*plugin);
    });
    plugin->SpoolMovieData(1000000);
    EXPECT_TRUE(plugin->allDataSpooled);
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 3); // two waits and the ender's own
}

TEST_F(SpooledData, NothingIsWaitedForThatIsThere)
{
    plugin->SpoolMovieData(1000);
    EXPECT_EQ(probe.Count("YieldToAnyThread"), 0);
}

struct FileFailure {
    const char* operation;
    OSErr err;
};

class FailingRead : public SpooledData, public testing::WithParamInterface<FileFailure>
{
};

TEST_P(FailingRead, IsThrownAsItIs)
{
    probe.Fail(GetParam().operation, GetParam().err);
    EXPECT_EQ(ThrownBy([&] { Read(0, 10); }), GetParam().err);
    EXPECT_EQ(Read(0, 10), 10); // and the next one works
}

INSTANTIATE_TEST_SUITE_P(Operations, FailingRead,
                         testing::Values(FileFailure{"FSpOpenDF", tmfoErr},
                                         FileFailure{"GetEOF", rfNumErr},
                                         FileFailure{"SetFPos", ioErr},
                                         FileFailure{"FSRead", eofErr}));

} // namespace
} // namespace test
