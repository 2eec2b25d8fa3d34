// SPDX-License-Identifier: MIT
//
// The base class: the steps of decoding, and what becomes of an error in each.
#include "src/plugin/VornPlugin.h"

#include "src/datasource/VornDataSource.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/ScriptedHost.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

using test::ErrorOf;

namespace
{

using Steps = std::vector<std::string>;

// Steps as they are taken, and the one that is to fail.
struct StepLog {
    void Take(const std::string& name)
    {
        steps.push_back(name);
        if (name == failing)
            throw OSErr{ioErr};
    }
    Steps steps;
    std::string failing;
};

// A data source that writes its steps down and can fail in each.
class StepDataSource : public VornDataSource
{
public:
    explicit StepDataSource(StepLog& log) : log_(log) {}
    ~StepDataSource() override { log_.steps.push_back("destroy"); }
    void PrepareDataSource() override { log_.Take("prepare"); }
    void TerminateDataSource() override { log_.Take("terminate"); }
    OSErr GetBytes(void*, SInt32, SInt32*) override { return noErr; }
    UInt8* GetBytesDataPtr(SInt32, SInt32) override { return nullptr; }
    OSErr FetchDataFromSource(void*, SInt32, SInt32*, unsigned char) override { return noErr; }

private:
    StepLog& log_;
};

// An object that does the same.
class StepPlugin : public test::TestPlugin
{
public:
    StepPlugin(CFBundleRef ownBundle, StepLog& log) : TestPlugin(ownBundle), log_(log)
    {
        dataSource = new StepDataSource(log);
    }
    void Render() override
    {
        log_.Take("render");
        TestPlugin::Render();
    }
    void FinishRendering() override
    {
        log_.Take("finish");
        TestPlugin::FinishRendering();
    }
    void DisposeDecodingData() override
    {
        log_.Take("dispose");
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
    StepLog& log_;
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
    StepLog log;
    StepPlugin object{bundle.Get(), log};
};

} // namespace

TEST_F(Decoding, TakesItsStepsInOrder)
{
    EXPECT_EQ(Decode(), noErr);
    EXPECT_EQ(log.steps, (Steps{"prepare", "render", "finish", "dispose", "terminate"}));
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
    EXPECT_EQ(log.steps, (Steps{"prepare", "render", "finish", "dispose", "terminate"}));
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
    log.failing = "finish";
    Decode();
    EXPECT_EQ(object.renderingError, memFullErr);
    EXPECT_EQ(object.GetRenderingError(), kVornErrStillRendering);
}

TEST_F(Decoding, AFailureToPrepareEndsItAtOnce)
{
    log.failing = "prepare";
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(log.steps, Steps{"prepare"});
    EXPECT_TRUE(host.calls.empty());
    EXPECT_NE(object.decodingThread, 0U);
}

TEST_F(Decoding, AFailureToFinishEndsItThere)
{
    log.failing = "finish";
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(log.steps, (Steps{"prepare", "render", "finish"}));
    EXPECT_NE(object.decodingThread, 0U);
}

TEST_F(Decoding, AFailureToDisposeEndsItThere)
{
    log.failing = "dispose";
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(log.steps, (Steps{"prepare", "render", "finish", "dispose"}));
    EXPECT_NE(object.decodingThread, 0U);
}

TEST_F(Decoding, AFailureToTerminateTakesTheRenderingErrorsPlace)
{
    log.failing = "terminate";
    object.render = [] { throw OSErr{memFullErr}; };
    EXPECT_EQ(Decode(), ioErr);
    EXPECT_EQ(object.decodingThread, 0U);
}

TEST_F(Decoding, TheObjectDestroysItsDataSource)
{
    {
        StepPlugin other(bundle.Get(), log);
    }
    EXPECT_EQ(log.steps, Steps{"destroy"});
}

namespace
{

// Counts, when it is destroyed, what is alive of bundles and their like.
class CountingDataSource : public StepDataSource
{
public:
    CountingDataSource(StepLog& log, SInt32& countOut) : StepDataSource(log), count(countOut) {}
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
    other->dataSource = new CountingDataSource(log, seen);
    const SInt32 before = CountLiveObjects(kLiveFoundationObjects);
    delete other;
    EXPECT_EQ(seen, before);
    EXPECT_LT(CountLiveObjects(kLiveFoundationObjects), before);
}
