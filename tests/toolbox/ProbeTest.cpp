// SPDX-License-Identifier: MIT
#include "toolbox/probe/Probe.h"

#include "toolbox/Errors.h"
#include "toolbox/events/Events.h"
#include "toolbox/files/Resources.h"
#include "toolbox/gestalt/Gestalt.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/threads/Threads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using testing::ElementsAre;

class Probe : public testing::Test
{
protected:
    ~Probe() override { SetToolboxObserver(nullptr, nullptr); }

    static OSErr Log(const char* operation, void* refCon)
    {
        static_cast<std::vector<std::string>*>(refCon)->emplace_back(operation);
        return noErr;
    }

    std::vector<std::string> log_;
};

TEST_F(Probe, HearsOperationsByThePlatformsNamesInTheirOrder)
{
    SetToolboxObserver(Log, &log_);
    const Handle handle = NewHandle(1);
    HLockHi(handle);
    TickCount();
    YieldToAnyThread();
    CurResFile();
    DisposeHandle(handle);
    EXPECT_THAT(log_, ElementsAre("NewHandle", "HLockHi", "TickCount", "YieldToAnyThread",
                                  "CurResFile", "DisposeHandle"));
}

TEST_F(Probe, HearsNothingOnceItIsTakenAway)
{
    SetToolboxObserver(Log, &log_);
    SetToolboxObserver(nullptr, nullptr);
    TickCount();
    EXPECT_THAT(log_, ElementsAre());
}

TEST_F(Probe, IsNotToldOfItsOwnCalls)
{
    int calls = 0;
    SetToolboxObserver(
        [](const char*, void* refCon) {
            ++*static_cast<int*>(refCon);
            TickCount();
            return OSErr{noErr};
        },
        &calls);
    TickCount();
    EXPECT_EQ(1, calls);
}

TEST_F(Probe, MakesAnOperationFailBeforeAnyEffect)
{
    SetToolboxObserver([](const char*, void*) { return OSErr{-5000}; }, nullptr);
    ThreadID thread = 77;
    EXPECT_EQ(-5000, NewThread(
                         kCooperativeThread, [](void*) -> void* { return nullptr; }, nullptr, 0, 0,
                         nullptr, &thread));
    EXPECT_EQ(77U, thread);
    EXPECT_EQ(0, CountLiveObjects(kLiveThreads));
}

TEST_F(Probe, CannotFailWhatCannotFail)
{
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    const Handle handle = NewHandle(1);
    SetToolboxObserver([](const char*, void*) { return OSErr{-5000}; }, nullptr);
    HLock(handle);
    const SInt8 state = HGetState(handle);
    DisposeHandle(handle);
    EXPECT_NE(0, state);
    EXPECT_EQ(handles, CountLiveObjects(kLiveHandles));
}

TEST(Ledger, HasNoObjectsOfAnUnknownKind)
{
    EXPECT_EQ(0, CountLiveObjects(-1));
    EXPECT_EQ(0, CountLiveObjects(kLiveObjectKinds));
}

} // namespace
