// SPDX-License-Identifier: MIT
#include "src/datahandler/DataHandlerDispatch.h"

#include "src/datahandler/DataHandlerRoutines.h"
#include "tests/datahandler/DataHandlerTest.h"

#include <map>

namespace test
{
namespace
{

const std::map<SInt16, ProcInfoType> kTable = {
    {-4, 0x0F0}, {-3, 0x2F0},   {-2, 0x3F0}, {-1, 0x3F0},   {2, 0xFFF0}, {13, 0x0F0}, {14, 0xFFFF0},
    {15, 0x7F0}, {16, 0x0F0},   {18, 0x3F0}, {37, 0x3F0},   {38, 0x3F0}, {39, 0x3F0}, {40, 0x3F0},
    {45, 0x3F0}, {46, 0xFFFF0}, {48, 0x3F0}, {53, 0x3FFF0}, {54, 0xFF0},
};

constexpr ComponentResult kDelegatesAnswer = 4711;

// A delegate that keeps what it is sent.
class RecordingDelegate
{
public:
    RecordingDelegate()
    {
        received.clear();
        const ComponentDescription description = {FOUR_CHARS('d', 'h', 'l', 'r'),
                                                  FOUR_CHARS('t', 'e', 's', 't'), 0, 0, 0};
        static const Component component =
            RegisterComponent(&description, Dispatch, 0, nullptr, nullptr, nullptr);
        OpenAComponent(component, &instance);
    }
    ~RecordingDelegate() { CloseComponent(instance); }
    RecordingDelegate(const RecordingDelegate&) = delete;
    RecordingDelegate& operator=(const RecordingDelegate&) = delete;

    ComponentInstance instance = nullptr;
    static std::vector<ComponentParameters> received;

private:
    static ComponentResult Dispatch(ComponentParameters* params, void*)
    {
        if (params->what == kComponentOpenSelect || params->what == kComponentCloseSelect) {
            return noErr; // its own
        }
        received.push_back(*params);
        return kDelegatesAnswer;
    }
};

std::vector<ComponentParameters> RecordingDelegate::received;

class Dispatch : public DataHandlerTest
{
};

TEST_F(Dispatch, KnowsTheSelectorsOfTheTableByTheirProcInfo)
{
    for (const auto& [selector, procInfo] : kTable) {
        const DataHandlerRoutine* const routine = FindRoutine(selector);
        ASSERT_NE(routine, nullptr) << selector;
        EXPECT_EQ(routine->procInfo, procInfo) << selector;
        EXPECT_NE(routine->function, nullptr) << selector;
    }
}

TEST_F(Dispatch, KnowsNoOtherSelector)
{
    for (SInt32 selector = -32768; selector <= 32767; ++selector) {
        if (kTable.count(static_cast<SInt16>(selector)) == 0) {
            ASSERT_EQ(FindRoutine(static_cast<SInt16>(selector)), nullptr) << selector;
        }
    }
}

TEST_F(Dispatch, LeavesEveryOtherSelectorToTheDelegate)
{
    Open();
    const RecordingDelegate delegate;
    const ComponentInstance own = std::exchange(handler->delegate, delegate.instance);
    size_t sent = 0;
    for (SInt32 selector = -32768; selector <= 32767; ++selector) {
        const auto what = static_cast<SInt16>(selector);
        if (kTable.count(what) != 0) {
            continue;
        }
        ASSERT_EQ(Call(what, 11, 22, 33), kDelegatesAnswer) << selector;
        ASSERT_EQ(delegate.received.size(), ++sent) << selector;
        const ComponentParameters& params = delegate.received.back();
        ASSERT_EQ(params.what, what);
        ASSERT_EQ(params.params[0], 11);
        ASSERT_EQ(params.params[2], 33);
    }
    EXPECT_EQ(sent, 65536u - kTable.size());
    handler->delegate = own;
}

TEST_F(Dispatch, AnswersTheSelectorsOfTheTableItself)
{
    Open();
    const RecordingDelegate delegate;
    const ComponentInstance own = std::exchange(handler->delegate, delegate.instance);
    SInt32 number = 0;
    Str255 text = {};
    EXPECT_EQ(Call(kDataHTaskSelect), noErr);
    EXPECT_EQ(Call(kDataHFlushCacheSelect), noErr);
    EXPECT_EQ(Call(kDataHGetFileSizeSelect, &number), noErr);
    EXPECT_EQ(Call(kDataHGetAvailableFileSizeSelect, &number), noErr);
    EXPECT_EQ(Call(kDataHGetFileNameSelect, &text[0]), noErr);
    EXPECT_EQ(Call(kDataHGetInfoFlagsSelect, &number), noErr);
    EXPECT_TRUE(delegate.received.empty());
    handler->delegate = own;
}

TEST_F(Dispatch, LeavesTheAsynchronousFileSizeToTheDelegate)
{
    Open();
    const RecordingDelegate delegate;
    const ComponentInstance own = std::exchange(handler->delegate, delegate.instance);
    wide size = {7, 7};
    EXPECT_EQ(Call(kDataHGetFileSizeAsyncSelect, &size, Complete, 5), kDelegatesAnswer);
    EXPECT_EQ(size.hi, 7);
    EXPECT_TRUE(completions.empty());
    handler->delegate = own;
}

TEST_F(Dispatch, FindsNobodyToAskBeforeTheComponentIsOpen)
{
    ComponentParameters params{};
    params.what = kDataHSetDataRefSelect;
    EXPECT_EQ(VornPluginDataHandlerComponentDispatch(&params, nullptr), badComponentInstance);
}

TEST_F(Dispatch, RefusesARoutineWithoutAProcInfo)
{
    const DataHandlerRoutine routine = {
        reinterpret_cast<ComponentFunction>(datahandler::FlushCache), 0};
    ComponentParameters params{};
    EXPECT_EQ(CallRoutine(routine, &params, nullptr), static_cast<ComponentResult>(0x80008002));
    EXPECT_EQ(probe.Count("CallComponentFunctionWithStorageProcInfo"), 0) << "not even tried";
}

} // namespace
} // namespace test
