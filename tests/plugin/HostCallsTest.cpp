// SPDX-License-Identifier: MIT
#include "src/plugin/HostCalls.h"

#include "tests/support/ErrorOf.h"
#include "tests/support/MockPlugin.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <cstring>

using test::ErrorOf;
using testing::StrEq;

namespace
{

bool SameTable(const VornPluginHostCalls& a, const VornPluginHostCalls& b)
{
    return a.gotRect == b.gotRect && a.renderingDone == b.renderingDone &&
           a.decodedChunk == b.decodedChunk && a.getData == b.getData &&
           a.getEstimatedObjectBytes == b.getEstimatedObjectBytes;
}

// Takes one slot of the table away.
VornPluginHostCalls TableWithout(int slot)
{
    VornPluginHostCalls table = test::ScriptedHost::Calls();
    std::memset(reinterpret_cast<char*>(&table) + static_cast<std::size_t>(slot) * sizeof(void*), 0,
                sizeof(void*));
    return table;
}

VornPlugin* const kObject = reinterpret_cast<VornPlugin*>(0x1000);

} // namespace

TEST(HostCallTable, ACompleteOneIsAccepted)
{
    const VornPluginHostCalls table = test::ScriptedHost::Calls();
    EXPECT_TRUE(SetupPluginHostCalls(&table));
    EXPECT_TRUE(SameTable(gHostCalls, table));
}

TEST(HostCallTable, IsRefusedForAnyMissingSlotAndCopiedAllTheSame)
{
    for (int slot = 0; slot < 5; ++slot) {
        const VornPluginHostCalls complete = test::ScriptedHost::Calls();
        SetupPluginHostCalls(&complete);
        const VornPluginHostCalls table = TableWithout(slot);
        EXPECT_FALSE(SetupPluginHostCalls(&table)) << slot;
        EXPECT_TRUE(SameTable(gHostCalls, table)) << slot;
    }
}

TEST(HostCallTable, TheLastOneWins)
{
    VornPluginHostCalls first = test::ScriptedHost::Calls();
    VornPluginHostCalls second = first;
    second.gotRect = [](VornPlugin*, const Rect*) { return OSErr{ioErr}; };
    SetupPluginHostCalls(&first);
    SetupPluginHostCalls(&second);
    EXPECT_TRUE(SameTable(gHostCalls, second));
}

TEST(HostCallWrappers, ForwardTheirArguments)
{
    test::ScriptedHost host("abcdef");
    host.Install();
    host.estimate = 77;
    const Rect rect{1, 2, 3, 4};
    CallPluginHostGotRect(kObject, &rect);
    CallPluginHostRenderingDone(kObject, -36);
    CallPluginHostDecodedChunk(kObject, 5, 9);
    char buffer[3] = {};
    SInt32 count = 2;
    SInt32 size = 0;
    unsigned char complete = false;
    CallPluginHostGetData(kObject, buffer, 3, &count, &size, &complete);
    SInt32 estimate = 0;
    CallPluginHostGetEstimatedObjectBytes(kObject, &estimate);

    EXPECT_EQ(host.calls, (std::vector<std::string>{"gotRect", "renderingDone", "decodedChunk",
                                                    "getData", "getEstimatedObjectBytes"}));
    EXPECT_EQ(host.objects, std::vector<VornPlugin*>(5, kObject));
    EXPECT_EQ(host.gotRects.at(0).bottom, 3);
    EXPECT_EQ(host.renderingDone.at(0), -36);
    EXPECT_EQ(host.decodedChunks.at(0), (std::pair<SInt16, SInt16>{5, 9}));
    EXPECT_STREQ(buffer, "de");
    EXPECT_EQ(size, 6);
    EXPECT_TRUE(complete);
    EXPECT_EQ(estimate, 77);
}

TEST(HostCallWrappers, ReturnWhatTheirSlotsReturn)
{
    const VornPluginHostCalls table = {
        [](VornPlugin*, const Rect*) { return OSErr{1}; },
        [](VornPlugin*, OSErr) { return OSErr{2}; },
        [](VornPlugin*, SInt16, SInt16) { return OSErr{3}; },
        [](VornPlugin*, void*, SInt32, SInt32*, SInt32*, unsigned char*) { return OSErr{4}; },
        [](VornPlugin*, SInt32*) { return OSErr{5}; },
    };
    SetupPluginHostCalls(&table);
    const Rect rect{};
    SInt32 number = 0;
    unsigned char complete = false;
    EXPECT_EQ(CallPluginHostGotRect(kObject, &rect), 1);
    EXPECT_EQ(CallPluginHostRenderingDone(kObject, 0), 2);
    EXPECT_EQ(CallPluginHostDecodedChunk(kObject, 0, 0), 3);
    EXPECT_EQ(CallPluginHostGetData(kObject, nullptr, 0, &number, &number, &complete), 4);
    EXPECT_EQ(CallPluginHostGetEstimatedObjectBytes(kObject, &number), 5);
}

TEST(SupportFunctions, SetTheDisplayRectThroughTheObject)
{
    const test::TestBundle bundle;
    test::MockPlugin object(bundle.Get());
    const Rect rect{1, 2, 3, 4};
    EXPECT_CALL(object, SetDisplayRect(testing::Ref(rect)));
    SetObjectDisplayRect(&object, &rect);
}

TEST(SupportFunctions, SetTheCommentThroughTheObject)
{
    const test::TestBundle bundle;
    test::MockPlugin object(bundle.Get());
    EXPECT_CALL(object, SetComment(StrEq("a comment")));
    SetObjectComment(&object, "a comment");
}

TEST(SupportFunctions, HaveNoBarrier)
{
    const test::TestBundle bundle;
    test::MockPlugin object(bundle.Get());
    const Rect rect{};
    EXPECT_CALL(object, SetDisplayRect).WillOnce(testing::Throw(OSErr{ioErr}));
    EXPECT_CALL(object, SetComment).WillOnce(testing::Throw(OSErr{memFullErr}));
    EXPECT_EQ(ErrorOf([&] { SetObjectDisplayRect(&object, &rect); }), ioErr);
    EXPECT_EQ(ErrorOf([&] { SetObjectComment(&object, ""); }), memFullErr);
}

TEST(SupportFunctions, ThrowAnErrorAsA16BitInteger)
{
    EXPECT_EQ(ErrorOf([] { ThrowWithError(nullptr, kDataNotAvailableErr); }), kDataNotAvailableErr);
    EXPECT_EQ(ErrorOf([] { ThrowWithError(kObject, memFullErr); }), memFullErr);
}

TEST(SupportFunctions, TestingTheSignaturesDoesNothing)
{
    const VornPluginHostCalls before = gHostCalls;
    TestUPPSignatures();
    EXPECT_TRUE(SameTable(gHostCalls, before));
}
