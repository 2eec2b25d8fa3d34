// SPDX-License-Identifier: MIT
#include "tests/datahandler/DataHandlerTest.h"
#include "tests/support/CooperativeThread.h"
#include "toolbox/memory/Memory.h"

#include <stdexcept>

namespace test
{
namespace
{

class SynchronousAccess : public DataHandlerTest
{
protected:
    SInt32 Ask(SInt16 selector)
    {
        SInt32 answer = 0;
        EXPECT_EQ(Call(selector, &answer), noErr);
        return answer;
    }
    std::string AskForText(SInt16 selector)
    {
        Str255 text;
        std::fill_n(text, sizeof text, UInt8{0xEE});
        EXPECT_EQ(Call(selector, &text[0]), noErr);
        return std::string(reinterpret_cast<const char*>(text) + 1, text[0]);
    }
};

// Reading into a handle -------------------------------------------------------------------------

class HandleReading : public SynchronousAccess
{
protected:
    void SetUp() override
    {
        SynchronousAccess::SetUp();
        Open("video/quicktime", FOUR_CHARS('M', 'o', 'o', 'V'), 1000);
        handle = NewHandle(0);
    }
    void TearDown() override
    {
        DisposeHandle(handle);
        SynchronousAccess::TearDown();
    }
    ComponentResult GetData(SInt32 handleOffset, SInt32 offset, SInt32 size)
    {
        return Call(kDataHGetDataSelect, handle, handleOffset, offset, size);
    }

    Handle handle = nullptr;
};

TEST_F(HandleReading, GrowsAHandleThatIsTooSmall)
{
    const SInt8 state = HGetState(handle);
    EXPECT_EQ(GetData(16, 300, 100), noErr);
    EXPECT_EQ(GetHandleSize(handle), 116);
    EXPECT_EQ(HGetState(handle), state);
    EXPECT_TRUE(Holds(*handle + 16, 300, 100));
}

TEST_F(HandleReading, LeavesALargerHandleAsItIs)
{
    SetHandleSize(handle, 200);
    EXPECT_EQ(GetData(100, 300, 100), noErr);
    EXPECT_EQ(GetHandleSize(handle), 200);
    EXPECT_EQ(GetData(0, 0, 10), noErr);
    EXPECT_EQ(GetHandleSize(handle), 200);
    EXPECT_TRUE(Holds(*handle, 0, 10));
    EXPECT_TRUE(Holds(*handle + 100, 300, 100));
}

TEST_F(HandleReading, LeavesALockedHandleLocked)
{
    SetHandleSize(handle, 100);
    HLock(handle);
    const SInt8 state = HGetState(handle);
    EXPECT_EQ(GetData(0, 0, 100), noErr);
    EXPECT_EQ(HGetState(handle), state);
}

TEST_F(HandleReading, LocksTheHandleOnlyWhileItReads)
{
    SInt8 stateInside = 0;
    probe.onCall = [&](const std::string& call) {
        if (call == "FSRead") {
            stateInside = HGetState(handle);
        }
    };
    EXPECT_EQ(GetData(0, 0, 100), noErr);
    probe.onCall = nullptr;
    EXPECT_EQ(stateInside & 0x80, 0x80);
    EXPECT_EQ(HGetState(handle) & 0x80, 0);
}

TEST_F(HandleReading, UnlocksTheHandleWhenTheReadFails)
{
    probe.Fail("FSRead", ioErr);
    EXPECT_EQ(GetData(0, 0, 100), ioErr);
    EXPECT_EQ(HGetState(handle) & 0x80, 0);
}

TEST_F(HandleReading, ReturnsWhatGrowingFailsWith)
{
    probe.Fail("SetHandleSize", memFullErr);
    probe.Forget();
    EXPECT_EQ(GetData(0, 0, 100), memFullErr);
    EXPECT_EQ(probe.Count("FSRead"), 0);
    EXPECT_EQ(GetHandleSize(handle), 0);
}

TEST_F(HandleReading, RefusesASizeThatNoHandleHas)
{
    EXPECT_EQ(GetData(INT32_MAX, 0, 100), memFullErr);
    EXPECT_EQ(GetHandleSize(handle), 0);
}

TEST_F(HandleReading, WaitsForBytesThatHaveNotArrived)
{
    const CooperativeThread bringer([this] { Spool(*plugin, 500); });
    EXPECT_EQ(GetData(0, 900, 400), noErr);
    EXPECT_EQ(plugin->bytesSpooled, 1500);
    EXPECT_TRUE(Holds(*handle, 900, 400));
}

TEST_F(HandleReading, ReturnsWhatReadingBeyondTheEndFailsWith)
{
    ArriveCompletely();
    EXPECT_EQ(GetData(0, 1100, 10), paramErr); // a negative count for the File Manager
}

TEST_F(HandleReading, CopiesNothingOnceThePluginHasDied)
{
    SetHandleSize(handle, 10);
    std::fill_n(*handle, 10, char{7});
    KillPlugin();
    EXPECT_EQ(GetData(0, 0, 10), noErr);
    EXPECT_EQ(std::count(*handle, *handle + 10, char{7}), 10);
}

// Sizes -----------------------------------------------------------------------------------------

TEST_F(SynchronousAccess, WhileLoadingTellsTheSizeTheHostExpects)
{
    Open();
    host.estimate = 9000;
    Arrive(700);
    EXPECT_EQ(Ask(kDataHGetFileSizeSelect), 9000);
    wide size = {1, 1};
    EXPECT_EQ(Call(kDataHGetFileSize64Select, &size), noErr);
    EXPECT_EQ(size.hi, 0);
    EXPECT_EQ(size.lo, 9000u);
}

TEST_F(SynchronousAccess, TellsASizeTheHostDoesNotKnowAsAllOnesInTheLowWord)
{
    Open();
    host.estimate = -1;
    wide size = {1, 1};
    EXPECT_EQ(Call(kDataHGetFileSize64Select, &size), noErr);
    EXPECT_EQ(size.hi, 0);
    EXPECT_EQ(size.lo, 0xFFFFFFFFu);
}

TEST_F(SynchronousAccess, AfterLoadingTellsTheFinalSize)
{
    Open();
    host.estimate = 9000;
    handler->LoadComplete(5000);
    EXPECT_EQ(Ask(kDataHGetFileSizeSelect), 5000);
    wide size = {1, 1};
    EXPECT_EQ(Call(kDataHGetFileSize64Select, &size), noErr);
    EXPECT_EQ(size.hi, 0);
    EXPECT_EQ(size.lo, 5000u);
    EXPECT_EQ(handler->GetEstimatedFileSize(), 5000);
}

TEST_F(SynchronousAccess, WithoutAPluginTellsTheSizeThatHasArrived)
{
    Open();
    host.estimate = 9000;
    Arrive(700);
    KillPlugin();
    EXPECT_EQ(Ask(kDataHGetFileSizeSelect), 700);
    EXPECT_EQ(Ask(kDataHGetAvailableFileSizeSelect), 700);
}

TEST_F(SynchronousAccess, WhatIsAvailableIsWhatHasArrived)
{
    Open();
    host.estimate = 9000;
    Arrive(700);
    EXPECT_EQ(Ask(kDataHGetAvailableFileSizeSelect), 700);
    ArriveCompletely();
    EXPECT_EQ(Ask(kDataHGetAvailableFileSizeSelect), 700);
}

TEST_F(SynchronousAccess, WhatIsAvailableOfCompleteMpegIsWhatTheHostExpects)
{
    OpenForMpeg();
    host.estimate = 9000;
    Arrive(700);
    EXPECT_EQ(Ask(kDataHGetAvailableFileSizeSelect), 700);
    ArriveCompletely();
    EXPECT_EQ(Ask(kDataHGetAvailableFileSizeSelect), 9000);
    KillPlugin();
    EXPECT_EQ(Ask(kDataHGetAvailableFileSizeSelect), 700);
}

// What kind of data it is -----------------------------------------------------------------------

TEST_F(SynchronousAccess, NeedsTheNetwork)
{
    Open();
    UInt32 flags = 0xFFFFFFFF;
    EXPECT_EQ(Call(kDataHGetInfoFlagsSelect, &flags), noErr);
    EXPECT_EQ(flags, 4u);
}

TEST_F(SynchronousAccess, TellsMimeTypeFileNameAndFileType)
{
    Open();
    EXPECT_EQ(AskForText(kDataHGetMIMETypeSelect), "video/quicktime");
    EXPECT_EQ(AskForText(kDataHGetFileNameSelect), "clip.mov");
    OSType type = 0;
    EXPECT_EQ(Call(kDataHGetMacOSFileTypeSelect, &type), noErr);
    EXPECT_EQ(type, FOUR_CHARS('M', 'o', 'o', 'V'));
}

TEST_F(SynchronousAccess, TellsNamesOfUpTo255Characters)
{
    const std::string name(300, 'n');
    plugin = MakePlugin("video/mpeg", name.c_str());
    ASSERT_EQ(OpenAComponent(gDataHandlerComponent, &instance), noErr);
    EXPECT_EQ(AskForText(kDataHGetFileNameSelect), std::string(255, 'n'));
}

TEST_F(SynchronousAccess, TellsNothingOnceThePluginHasDied)
{
    Open();
    KillPlugin();
    EXPECT_EQ(AskForText(kDataHGetMIMETypeSelect), "");
    EXPECT_EQ(AskForText(kDataHGetFileNameSelect), "");
    OSType type = 77;
    EXPECT_EQ(Call(kDataHGetMacOSFileTypeSelect, &type), noErr);
    EXPECT_EQ(type, 77u);
}

TEST_F(SynchronousAccess, HasNoCacheToFlush)
{
    OpenForMpeg();
    Schedule(buffer, 0, 100);
    Spool(*plugin, 100);
    handler->availableSize = 100; // arrived, but nothing processed
    plugin->inControllerCall = true;
    EXPECT_EQ(Call(kDataHFlushCacheSelect), noErr);
    EXPECT_TRUE(completions.empty());
    plugin->inControllerCall = false;
}

// Reads in general ------------------------------------------------------------------------------

TEST_F(SynchronousAccess, ReportsAnyOtherExceptionAsABadParameter)
{
    Open("video/quicktime", FOUR_CHARS('M', 'o', 'o', 'V'), 100);
    Schedule(buffer, 50, 100);
    handler->availableSize = 200; // more than is spooled
    UInt32 count = 0;
    // The plug-in throws an integer for bytes that are not there.
    EXPECT_EQ(Call(kDataHPollReadSelect, &buffer[0], &count), paramErr);

    onCompletion = [] { throw std::runtime_error("the caller fails"); };
    EXPECT_EQ(Call(kDataHScheduleDataSelect, &buffer[0], 0, 10, 0, nullptr, Complete), paramErr);
}

TEST_F(SynchronousAccess, AsksThePluginWhichThreadIsRunning)
{
    Open();
    EXPECT_TRUE(handler->OnApplicationThread());
    EXPECT_FALSE(handler->OnDecodingThread());
    GetCurrentThread(&plugin->decodingThread);
    EXPECT_TRUE(handler->OnDecodingThread());
    plugin->decodingThread = kNoThreadID;
    KillPlugin();
    EXPECT_FALSE(handler->OnApplicationThread());
    EXPECT_FALSE(handler->OnDecodingThread());
}

} // namespace
} // namespace test
