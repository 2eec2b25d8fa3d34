// SPDX-License-Identifier: MIT
#include "tests/datahandler/RequestQueuesTest.h"
#include "toolbox/gestalt/Gestalt.h"

namespace test
{
namespace
{

class AsynchronousFileSize : public RequestQueues
{
};

TEST_F(AsynchronousFileSize, TheFileSizeIsToldAtOnceWhenItIsKnown)
{
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    wide size = {1, 1};
    handler->GetFileSizeAsync(&size, Complete, 42);
    EXPECT_EQ(size.hi, 0);
    EXPECT_EQ(size.lo, 500u);
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&size), 42, noErr}}));
    size = {1, 1};
    handler->GetFileSizeAsync(&size, nullptr, 42);
    EXPECT_EQ(size.lo, 500u);
}

TEST_F(AsynchronousFileSize, CompletionAnswersEveryRequestForTheFileSize)
{
    Open("video/quicktime", 0, 500);
    wide first = {1, 1};
    wide second = {1, 1};
    handler->GetFileSizeAsync(&first, Complete, 1);
    handler->GetFileSizeAsync(&second, Complete, 2);
    EXPECT_EQ(first.hi, 0);
    EXPECT_EQ(first.lo, 0u);
    Arrive(100);
    EXPECT_TRUE(completions.empty());
    ArriveCompletely();
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&first), 1, noErr},
                                        {reinterpret_cast<char*>(&second), 2, noErr}}));
    EXPECT_EQ(first.lo, 600u);
    EXPECT_EQ(second.lo, 600u);
    EXPECT_EQ(second.hi, 0);
    EXPECT_TRUE(IsEmpty(handler->fileSizeQueue));
}

TEST_F(AsynchronousFileSize, AFileSizeProcessedBeforeTheEndIsWhatHasArrived)
{
    Open("video/quicktime", 0, 500);
    wide size = {1, 1};
    handler->GetFileSizeAsync(&size, Complete, 1);
    handler->ProcessAsyncFileSizeCallbacks();
    EXPECT_EQ(size.lo, 500u);
    EXPECT_EQ(completions, (Completions{{reinterpret_cast<char*>(&size), 1, notEnoughDataErr}}));
}

TEST_F(AsynchronousFileSize, TheFileSizeBeforeTheEndNeedsACompletionRoutine)
{
    Open("video/quicktime", 0, 500);
    wide size = {1, 1};
    EXPECT_EQ(ThrownBy([&] { handler->GetFileSizeAsync(&size, nullptr, 0); }), notEnoughDataErr);
    EXPECT_EQ(size.hi, 0);
    EXPECT_EQ(size.lo, 0u);
}

TEST_F(AsynchronousFileSize, TheFileSizeCannotBeAskedForBeforeVersion5)
{
    SetGestaltValue(gestaltQuickTime, 0x04FFFFFF);
    Open("video/quicktime", 0, 500);
    ArriveCompletely();
    wide size = {1, 1};
    EXPECT_EQ(ThrownBy([&] { handler->GetFileSizeAsync(&size, Complete, 0); }), -32766);
    EXPECT_EQ(size.hi, 1);
}

} // namespace
} // namespace test
