// SPDX-License-Identifier: MIT
//
// The base class: its defaults, its texts, its talk with the host and its decoding steps.
#include "src/plugin/VornPlugin.h"

#include "src/datasource/VornDataSource.h"
#include "tests/plugin/VirtualSlot.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

using test::ErrorOf;

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

namespace
{

using Steps = std::vector<std::string>;

// A data source that writes its steps down and can fail in each.
class StepDataSource : public VornDataSource
{
public:
    explicit StepDataSource(Steps& log, const std::string& failing) : steps(log), fails(failing) {}
    ~StepDataSource() override { steps.push_back("destroy"); }
    void PrepareDataSource() override { Step("prepare"); }
    void TerminateDataSource() override { Step("terminate"); }
    OSErr GetBytes(void*, SInt32, SInt32*) override { return noErr; }
    UInt8* GetBytesDataPtr(SInt32, SInt32) override { return nullptr; }
    OSErr FetchDataFromSource(void*, SInt32, SInt32*, unsigned char) override { return noErr; }

private:
    void Step(const std::string& name)
    {
        steps.push_back(name);
        if (name == fails)
            throw OSErr{ioErr};
    }
    Steps& steps;
    const std::string& fails;
};

// An object that does the same.
class StepPlugin : public test::TestPlugin
{
public:
    StepPlugin(CFBundleRef ownBundle, Steps& log, const std::string& failing)
        : TestPlugin(ownBundle), steps(log), fails(failing)
    {
        dataSource = new StepDataSource(log, failing);
    }
    void Render() override
    {
        Step("render");
        TestPlugin::Render();
    }
    void FinishRendering() override
    {
        Step("finish");
        TestPlugin::FinishRendering();
    }
    void DisposeDecodingData() override
    {
        Step("dispose");
        TestPlugin::DisposeDecodingData();
    }
    OSErr ConvertError(OSErr err) override
    {
        ++conversions;
        return convert ? convert(err) : TestPlugin::ConvertError(err);
    }
    std::function<OSErr(OSErr)> convert;
    int conversions = 0;

private:
    void Step(const std::string& name)
    {
        steps.push_back(name);
        if (name == fails)
            throw OSErr{ioErr};
    }
    Steps& steps;
    const std::string& fails;
};

class Decoding : public testing::Test
{
protected:
    void SetUp() override { host.Install(); }
    OSErr Decode()
    {
        return ErrorOf([&] { object.Decode(); });
    }

    test::TestBundle bundle;
    test::ScriptedHost host;
    Steps steps;
    std::string failing;
    StepPlugin object{bundle.Get(), steps, failing};
};

} // namespace

TEST_F(Decoding, TakesItsStepsInOrder)
{
    EXPECT_EQ(Decode(), noErr);
    EXPECT_EQ(steps, (Steps{"prepare", "render", "finish", "dispose", "terminate"}));
    EXPECT_EQ(host.renderingDone, std::vector<OSErr>{noErr});
}

TEST_F(Decoding, NeedsADataSource)
{
    test::TestPlugin bare(bundle.Get());
    EXPECT_EQ(ErrorOf([&] { bare.Decode(); }), paramErr);
    EXPECT_EQ(VornPluginDecodeObject(&bare), paramErr);
    EXPECT_EQ(bare.decodingThread, 0U);
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(Decoding, KnowsItsThreadWhileItRenders)
{
    ThreadID current = 0;
    GetCurrentThread(&current);
    ThreadID seen = 0;
    object.render = [&] { seen = object.decodingThread; };
    Decode();
    EXPECT_EQ(seen, current);
    EXPECT_EQ(object.decodingThread, 0U);
}

TEST_F(Decoding, KeepsAnErrorOfRenderingAndThrowsItLast)
{
    object.render = [] { throw OSErr{memFullErr}; };
    EXPECT_EQ(Decode(), memFullErr);
    EXPECT_EQ(steps, (Steps{"prepare", "render", "finish", "dispose", "terminate"}));
    EXPECT_EQ(host.renderingDone, std::vector<OSErr>{memFullErr});
    EXPECT_EQ(object.renderingError, memFullErr);
    EXPECT_EQ(object.GetRenderingError(), memFullErr);
}

TEST_F(Decoding, FoldsAnUnknownErrorOfRendering)
{
    object.render = [] { throw OSErr{5}; };
    EXPECT_EQ(VornPluginDecodeObject(&object), kVornErrRenderFailed);
    EXPECT_EQ(host.renderingDone, std::vector<OSErr>{kVornErrRenderFailed});
    EXPECT_EQ(object.renderingError, 5);
    EXPECT_EQ(object.finalError, kVornErrRenderFailed);
}

TEST_F(Decoding, TakesAnyOtherExceptionOfRenderingForAFailureWithoutACode)
{
    object.render = [] { throw std::runtime_error("failed"); };
    EXPECT_EQ(Decode(), kVornErrRenderFailed);
    EXPECT_EQ(host.renderingDone, std::vector<OSErr>{kVornErrRenderFailed});
    object.render = [] { throw SInt32{-39}; };
    EXPECT_EQ(Decode(), kVornErrRenderFailed);
}

TEST_F(Decoding, ConvertsTheErrorASecondTimeBeforeItThrowsIt)
{
    object.convert = [](OSErr err) { return static_cast<OSErr>(err - 1); };
    object.render = [] { throw OSErr{-10}; };
    EXPECT_EQ(Decode(), -12);
    EXPECT_EQ(host.renderingDone, std::vector<OSErr>{-11});
    EXPECT_EQ(object.finalError, -11);
}

TEST_F(Decoding, HasFinishedWhenItConvertsTheError)
{
    std::vector<Boolean> finished;
    object.convert = [&](OSErr err) {
        finished.push_back(object.renderingFinished);
        return err;
    };
    Decode();
    EXPECT_EQ(finished, std::vector<Boolean>{true});
}

TEST_F(Decoding, KnowsItsOutcomeWhenTheHostHearsOfIt)
{
    static OSErr gSeen;
    gSeen = noErr;
    VornPluginHostCalls calls = test::ScriptedHost::Calls();
    calls.renderingDone = [](VornPlugin* finished, OSErr) {
        VornPluginGetObjectRenderingError(finished, &gSeen);
        return OSErr{noErr};
    };
    SetupPluginHostCalls(&calls);
    object.render = [] { throw OSErr{5}; };
    Decode();
    EXPECT_EQ(gSeen, kVornErrRenderFailed);
}

TEST_F(Decoding, ConvertsSuccessOnce)
{
    Decode();
    EXPECT_EQ(object.conversions, 1);
}

TEST_F(Decoding, ItsErrorIsNotKnownBeforeRenderingHasFinished)
{
    EXPECT_EQ(object.GetRenderingError(), kVornErrStillRendering);
    object.render = [&] {
        EXPECT_EQ(object.GetRenderingError(), kVornErrStillRendering);
        throw OSErr{memFullErr};
    };
    failing = "finish";
    Decode();
    EXPECT_EQ(object.renderingError, memFullErr);
    EXPECT_EQ(object.GetRenderingError(), kVornErrStillRendering);
}

TEST_F(Decoding, AFailureToPrepareEndsItAtOnce)
{
    failing = "prepare";
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(steps, Steps{"prepare"});
    EXPECT_TRUE(host.calls.empty());
    EXPECT_NE(object.decodingThread, 0U);
}

TEST_F(Decoding, AFailureToFinishEndsItThere)
{
    failing = "finish";
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(steps, (Steps{"prepare", "render", "finish"}));
    EXPECT_NE(object.decodingThread, 0U);
}

TEST_F(Decoding, AFailureToDisposeEndsItThere)
{
    failing = "dispose";
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(steps, (Steps{"prepare", "render", "finish", "dispose"}));
    EXPECT_NE(object.decodingThread, 0U);
}

TEST_F(Decoding, AFailureToTerminateTakesTheRenderingErrorsPlace)
{
    failing = "terminate";
    object.render = [] { throw OSErr{memFullErr}; };
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(object.decodingThread, 0U);
}

TEST_F(Decoding, TheObjectDestroysItsDataSource)
{
    {
        StepPlugin other(bundle.Get(), steps, failing);
    }
    EXPECT_EQ(steps, Steps{"destroy"});
}

namespace
{

// Counts, when it is destroyed, what is alive of bundles and their like.
class CountingDataSource : public StepDataSource
{
public:
    CountingDataSource(Steps& log, const std::string& failing, SInt32& countOut)
        : StepDataSource(log, failing), count(countOut)
    {
    }
    ~CountingDataSource() override { count = CountLiveObjects(kLiveFoundationObjects); }

private:
    SInt32& count;
};

} // namespace

TEST_F(Decoding, TheDataSourceGoesBeforeTheBundle)
{
    SInt32 seen = -1;
    auto* own = new test::TestBundle;
    auto* other = new test::TestPlugin(own->Get());
    delete own;
    other->dataSource = new CountingDataSource(steps, failing, seen);
    const SInt32 before = CountLiveObjects(kLiveFoundationObjects);
    delete other;
    EXPECT_EQ(seen, before);
    EXPECT_LT(CountLiveObjects(kLiveFoundationObjects), before);
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
