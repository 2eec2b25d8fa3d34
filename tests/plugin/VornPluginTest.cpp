// SPDX-License-Identifier: MIT
//
// The base class: its defaults, its texts and its talk with the host.
#include "src/plugin/VornPlugin.h"

#include "tests/plugin/VirtualSlot.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace
{

class PluginBase : public testing::Test
{
protected:
    void SetUp() override { host.Install(); }
    std::string Comment(UInt32 limit)
    {
        std::vector<char> buffer(limit + 1, '#');
        plugin.GetComment(buffer.data(), limit);
        return buffer.data();
    }

    test::TestBundle bundle;
    test::ScriptedHost host;
    test::TestPlugin plugin{bundle.Get()};
};

} // namespace

TEST_F(PluginBase, StartsWithItsDefaults)
{
    EXPECT_EQ(plugin.dataSource, nullptr);
    EXPECT_EQ(plugin.bundle, bundle.Get());
    EXPECT_STREQ(plugin.Comment(), "");
    EXPECT_STREQ(plugin.MimeType(), "");
    EXPECT_STREQ(plugin.FileName(), "");
    EXPECT_EQ(plugin.fileType, 0x3F3F3F3FU);
    EXPECT_EQ(plugin.creator, 0x3F3F3F3FU);
    EXPECT_EQ(plugin.GetDisplayFlags(), 0U);
    EXPECT_EQ(plugin.displayRect.right, 0);
    EXPECT_EQ(plugin.reservedRefNum, -1);
    EXPECT_EQ(plugin.decodingThread, 0U);
    EXPECT_EQ(plugin.estimatedDataSize, -1);
    EXPECT_FALSE(plugin.reservedFlag);
    EXPECT_FALSE(plugin.GetHaveDimensions());
    EXPECT_FALSE(plugin.renderingFinished);
    EXPECT_EQ(plugin.renderingError, 0);
    EXPECT_EQ(plugin.finalError, 0);
}

TEST_F(PluginBase, HoldsAReferenceToItsBundle)
{
    const SInt32 before = CountLiveObjects(kLiveFoundationObjects);
    auto* own = new test::TestBundle;
    auto* object = new test::TestPlugin(own->Get());
    delete own;
    EXPECT_GT(CountLiveObjects(kLiveFoundationObjects), before);
    delete object;
    EXPECT_EQ(CountLiveObjects(kLiveFoundationObjects), before);
}

TEST_F(PluginBase, CanHandleNothing)
{
    EXPECT_FALSE(plugin.CanHandleData("video/mpeg", "clip.mpg"));
}

TEST_F(PluginBase, DoesNothingWhenIdleAndTakesNoClick)
{
    plugin.Idle(Rect{}, 1);
    EXPECT_FALSE(plugin.HandleClick(Rect{}, EventRecord{}));
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(PluginBase, RefusesDrags)
{
    unsigned char flag = 1;
    plugin.PrepareDrag(nullptr, 0, Rect{}, flag);
    EXPECT_EQ(flag, 0);
}

TEST_F(PluginBase, HasNoDataOfAnyType)
{
    UInt32 type = 0;
    char* master = nullptr;
    Handle data = &master;
    plugin.GetData(type, &data);
    EXPECT_EQ(type, 0x3F3F3F3FU);
    EXPECT_EQ(data, nullptr);
}

TEST_F(PluginBase, TellsTheTypeOfItsDataAlone)
{
    UInt32 type = 0;
    plugin.GetData(type, nullptr);
    EXPECT_EQ(type, 0x3F3F3F3FU);
}

TEST_F(PluginBase, DrawsInAllOfItsBounds)
{
    Rect out{};
    plugin.GetDisplayRect(Rect{1, 2, 3, 4}, out);
    EXPECT_EQ(out.top, 1);
    EXPECT_EQ(out.left, 2);
    EXPECT_EQ(out.bottom, 3);
    EXPECT_EQ(out.right, 4);
}

TEST_F(PluginBase, KeepsDisplayFlagsUnchanged)
{
    plugin.SetDisplayFlags(0xFFFFFFFF);
    EXPECT_EQ(plugin.GetDisplayFlags(), 0xFFFFFFFF);
}

TEST_F(PluginBase, TellsTheHostItsRectangle)
{
    plugin.SetDisplayRect(Rect{0, 0, 20, 30});
    EXPECT_TRUE(plugin.GetHaveDimensions());
    EXPECT_EQ(plugin.displayRect.right, 30);
    ASSERT_EQ(host.gotRects.size(), 1U);
    EXPECT_EQ(host.gotRects[0].bottom, 20);
    EXPECT_EQ(host.objects[0], &plugin);
}

TEST_F(PluginBase, HasItsRectangleWhenTheHostHearsOfIt)
{
    static Boolean gHad;
    static Rect gSeen;
    gHad = false;
    gSeen = {};
    VornPluginHostCalls calls = test::ScriptedHost::Calls();
    calls.gotRect = [](VornPlugin* object, const Rect*) {
        gHad = VornPluginHaveObjectDimensions(object);
        gSeen = object->displayRect;
        return OSErr{noErr};
    };
    SetupPluginHostCalls(&calls);
    plugin.SetDisplayRect(Rect{0, 0, 20, 30});
    EXPECT_TRUE(gHad);
    EXPECT_EQ(gSeen.bottom, 20);
    EXPECT_EQ(gSeen.right, 30);
}

TEST_F(PluginBase, TellsTheHostAnEmptyRectangleToo)
{
    plugin.SetDisplayRect(Rect{});
    EXPECT_TRUE(plugin.GetHaveDimensions());
    EXPECT_EQ(host.gotRects.size(), 1U);
}

TEST_F(PluginBase, TellsTheHostOfDecodedRows)
{
    plugin.CallHostDecodedChunk(3, 8);
    EXPECT_EQ(host.decodedChunks, (std::vector<std::pair<SInt16, SInt16>>{{3, 8}}));
    EXPECT_EQ(host.objects[0], &plugin);
}

TEST_F(PluginBase, AsksForTheEstimatedSizeOnce)
{
    host.estimate = 12345;
    EXPECT_EQ(plugin.GetEstimatedDataSize(), 12345);
    host.estimate = 1;
    EXPECT_EQ(plugin.GetEstimatedDataSize(), 12345);
    EXPECT_EQ(host.calls.size(), 1U);
}

TEST_F(PluginBase, AsksAgainForAnEstimateThatWasUnknown)
{
    EXPECT_EQ(plugin.GetEstimatedDataSize(), -1);
    host.estimate = 9;
    EXPECT_EQ(plugin.GetEstimatedDataSize(), 9);
    EXPECT_EQ(host.calls.size(), 2U);
}

TEST_F(PluginBase, TakesNoAnswerForAnUnknownEstimate)
{
    VornPluginHostCalls calls = test::ScriptedHost::Calls();
    calls.getEstimatedObjectBytes = [](VornPlugin*, SInt32*) { return OSErr{ioErr}; };
    SetupPluginHostCalls(&calls);
    EXPECT_EQ(plugin.GetEstimatedDataSize(), -1);
}

TEST_F(PluginBase, TakesAnEstimateWhateverTheHostsResultIs)
{
    VornPluginHostCalls calls = test::ScriptedHost::Calls();
    calls.getEstimatedObjectBytes = [](VornPlugin*, SInt32* bytes) {
        *bytes = 77;
        return OSErr{ioErr};
    };
    SetupPluginHostCalls(&calls);
    EXPECT_EQ(plugin.CallHostGetEstimatedDataSize(), 77);
}

TEST_F(PluginBase, KeepsAnyNegativeEstimateButTheUnknownOne)
{
    host.estimate = -2;
    EXPECT_EQ(plugin.GetEstimatedDataSize(), -2);
    host.estimate = 9;
    EXPECT_EQ(plugin.GetEstimatedDataSize(), -2);
    EXPECT_EQ(host.calls.size(), 1U);
}

TEST_F(PluginBase, InitializeKeepsAllFour)
{
    plugin.Initialize(FOUR_CHARS('M', 'P', 'E', 'G'), FOUR_CHARS('T', 'V', 'O', 'D'), "clip.mpg",
                      "video/mpeg");
    EXPECT_EQ(plugin.fileType, FOUR_CHARS('M', 'P', 'E', 'G'));
    EXPECT_EQ(plugin.creator, FOUR_CHARS('T', 'V', 'O', 'D'));
    EXPECT_STREQ(plugin.FileName(), "clip.mpg");
    EXPECT_STREQ(plugin.MimeType(), "video/mpeg");
}

TEST_F(PluginBase, InitializeCutsItsTextsAt255Characters)
{
    const std::string name(300, 'n');
    const std::string type(300, 't');
    plugin.Initialize(0, 0, name.c_str(), type.c_str());
    EXPECT_EQ(plugin.FileName(), name.substr(0, 255));
    EXPECT_EQ(plugin.MimeType(), type.substr(0, 255));
}

TEST_F(PluginBase, KeepsAComment)
{
    plugin.SetComment("a comment");
    EXPECT_EQ(Comment(255), "a comment");
    EXPECT_EQ(Comment(5), "a com");
}

TEST_F(PluginBase, ALongCommentKeeps256CharactersAndEmptiesTheMimeType)
{
    plugin.Initialize(0, 0, "clip.mpg", "video/mpeg");
    plugin.SetComment(std::string(300, 'c').c_str());
    EXPECT_EQ(Comment(1000), std::string(256, 'c'));
    EXPECT_STREQ(plugin.MimeType(), "");
    EXPECT_STREQ(plugin.FileName(), "clip.mpg");
}

TEST_F(PluginBase, ACommentOf255CharactersLeavesTheMimeType)
{
    plugin.Initialize(0, 0, "clip.mpg", "video/mpeg");
    plugin.SetComment(std::string(255, 'c').c_str());
    EXPECT_STREQ(plugin.MimeType(), "video/mpeg");
}

TEST_F(PluginBase, TheTextsLieOneAfterAnother)
{
    EXPECT_EQ(plugin.MimeType() - plugin.Comment(), 256);
    EXPECT_EQ(plugin.FileName() - plugin.MimeType(), 256);
}

TEST_F(PluginBase, FoldsUnknownPositiveErrors)
{
    for (const OSErr known :
         std::vector<OSErr>{0, 1200, 1202, 1207, 1209, 1210, -1, -39, -50, -108, -32768})
        EXPECT_EQ(plugin.ConvertError(known), known);
    for (const OSErr unknown : std::vector<OSErr>{1, 5, 1199, 1201, 1203, 1206, 1208, 1211, 32767})
        EXPECT_EQ(plugin.ConvertError(unknown), kVornErrRenderFailed) << unknown;
}

// Where the virtual operations and the fields lie is part of the binary interface.
#ifdef VORN_KNOWS_VIRTUAL_SLOTS

TEST(PluginLayout, KeepsTheOrderOfTheVirtualOperations)
{
    const std::uintptr_t slots[] = {
        test::VirtualSlot(&VornPlugin::CanHandleData),
        test::VirtualSlot(&VornPlugin::Decode),
        test::VirtualSlot(&VornPlugin::Display),
        test::VirtualSlot(&VornPlugin::Idle),
        test::VirtualSlot(&VornPlugin::HandleClick),
        test::VirtualSlot(&VornPlugin::PrepareDrag),
        test::VirtualSlot(&VornPlugin::CleanupDrag),
        test::VirtualSlot(&VornPlugin::GetData),
        test::VirtualSlot(&VornPlugin::GetDisplayRect),
        test::VirtualSlot(&VornPlugin::GetDisplayFlags),
        test::VirtualSlot(&VornPlugin::SetDisplayFlags),
        test::VirtualSlot(&VornPlugin::GetHaveDimensions),
        test::VirtualSlot(&VornPlugin::GetRenderingError),
        test::VirtualSlot(&VornPlugin::GetComment),
        test::VirtualSlot(&VornPlugin::SetDisplayRect),
        test::VirtualSlot(&VornPlugin::SetComment),
        test::VirtualSlot(&VornPlugin::GetEstimatedDataSize),
        test::VirtualSlot(&VornPlugin::Initialize),
        test::VirtualSlot(&VornPlugin::Render),
        test::VirtualSlot(&VornPlugin::ConvertError),
        test::VirtualSlot(&VornPlugin::FinishRendering),
        test::VirtualSlot(&VornPlugin::DisposeDecodingData),
    };
    std::uintptr_t expected = 2;
    for (const std::uintptr_t slot : slots)
        EXPECT_EQ(slot, expected++);
    EXPECT_EQ(expected, 24U);
}

#endif

TEST_F(PluginBase, KeepsTheOrderOfItsFields)
{
    const void* const fields[] = {
        &plugin.dataSource,     &plugin.bundle,         &plugin.texts.comment,
        &plugin.texts.mimeType, &plugin.texts.fileName, &plugin.fileType,
        &plugin.creator,        &plugin.displayFlags,   &plugin.displayRect,
        &plugin.reservedRefNum, &plugin.decodingThread, &plugin.estimatedDataSize,
        &plugin.reservedFlag,   &plugin.haveDimensions, &plugin.renderingFinished,
        &plugin.renderingError, &plugin.finalError,
    };
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<>()));
}
