// SPDX-License-Identifier: MIT
#include "viewer/HeadlessRun.h"

#include "tests/support/ToolboxProbe.h"
#include "tests/viewer/FakePlugins.h"
#include "tests/viewer/TestFiles.h"
#include "toolbox/Errors.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using viewer::ObjectReport;
using viewer::Options;
using viewer::PageReport;

class HeadlessRunTest : public testing::Test
{
protected:
    // Adds an object of that size to the page; it does what its name says.
    void Add(const std::string& name, size_t size = 100'000)
    {
        options.objects.push_back({folder.Write(name + ".fake", Pattern(size)), "", 0x1F});
    }
    std::string AddFifo(const std::string& name)
    {
        const std::string path = folder.Path(name + ".fake");
        mkfifo(path.c_str(), 0600);
        options.objects.push_back({path, "", 0x1F});
        return path;
    }
    PageReport Run()
    {
        testing::internal::CaptureStderr();
        viewer::HeadlessRun run(options, plugins.Folder());
        PageReport report = run.Run();
        told = testing::internal::GetCapturedStderr();
        snapshotFailed = run.OutputFailed();
        return report;
    }
    // On a thread of its own: the log only grows while a page runs.
    void WaitForLogged(const std::string& text) const
    {
        while (plugins.Log().find(text) == std::string::npos) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    bool Told(const std::string& text) const { return told.find(text) != std::string::npos; }

    TestFolder folder;
    FakePlugins plugins;
    Options options;
    std::string told;
    bool snapshotFailed = false;
};

TEST_F(HeadlessRunTest, ShowsAnObjectToItsEnd)
{
    Add("a");
    const PageReport report = Run();
    const ObjectReport& object = report.objects.at(0);
    EXPECT_EQ(object.error, noErr);
    EXPECT_TRUE(object.complete);
    EXPECT_TRUE(object.shown);
    EXPECT_EQ(object.bytes, 100'000);
    EXPECT_EQ(object.type, "video/x-fake");
    EXPECT_EQ(object.plugin, "Fake");
    EXPECT_EQ(object.comment, "flags 31");
    EXPECT_EQ(object.rect.right, 100);
    EXPECT_EQ(plugins.Count("make a.fake FAKE"), 1);
    EXPECT_EQ(plugins.Count("free a.fake"), 1);
    EXPECT_EQ(told, "");
}

TEST_F(HeadlessRunTest, WithoutAPaceNoTimePassesWhileAFileLoads)
{
    Add("a", 5'000'000);
    EXPECT_EQ(Run().seconds, 0);
}

TEST_F(HeadlessRunTest, WithAPaceTheLastByteSetsTheTime)
{
    Add("a", 100'000);
    options.bytesPerSecond = 50'000;
    const PageReport report = Run();
    EXPECT_GE(report.seconds, 2.0);
    EXPECT_LE(report.seconds, 2.1);
}

TEST_F(HeadlessRunTest, AnObjectIsDrawnAsSoonAsItsBytesAllowIt)
{
    for (const SInt64 pace : {0, 100'000, 3'000'000}) {
        options.objects.clear();
        options.bytesPerSecond = pace == 0 ? std::nullopt : std::optional<SInt64>(pace);
        options.until = pace == 0 ? 0 : 65537 * SInt64{1'000'000} / pace + 20'000;
        Add("a-open65537", 2'000'000);
        EXPECT_EQ(Run().objects.at(0).rect.right, 100) << pace;
    }
}

TEST_F(HeadlessRunTest, ObjectsOpenOneAtATime)
{
    for (int i = 0; i < 20; ++i) {
        Add("a" + std::to_string(i) + "-open70000");
    }
    options.bytesPerSecond = 200'000;
    const PageReport report = Run();
    EXPECT_EQ(plugins.Violations(), 0);
    for (const ObjectReport& object : report.objects) {
        EXPECT_TRUE(object.shown) << object.name;
    }
}

TEST_F(HeadlessRunTest, FailuresOfAllKindsLetTheOthersOpen)
{
    Add("never1-never");
    Add("b-badidle-never");
    Add("c-baddecode-never");
    Add("d-badmake");
    Add("fine");
    const PageReport report = Run();
    EXPECT_EQ(plugins.Violations(), 0);
    EXPECT_EQ(report.objects[0].error, noMovieFound);
    EXPECT_EQ(report.objects[1].error, invalidMovie);
    EXPECT_EQ(report.objects[2].error, ioErr);
    EXPECT_EQ(report.objects[3].error, memFullErr);
    EXPECT_EQ(report.objects[4].error, noErr);
    EXPECT_EQ(ExitStatusOf(report), 1);
    EXPECT_TRUE(Told("never1-never.fake: there is no movie in it (error -2048)"));
    EXPECT_TRUE(Told("b-badidle-never.fake: "));
    EXPECT_TRUE(Told("c-baddecode-never.fake: "));
    EXPECT_TRUE(Told("d-badmake.fake: "));
    EXPECT_FALSE(Told("fine.fake"));
}

TEST_F(HeadlessRunTest, AMissingFileIsTold)
{
    options.objects.push_back({folder.Path("nothing.fake"), "", 0x1F});
    Add("b");
    const PageReport report = Run();
    EXPECT_EQ(report.objects[0].error, fnfErr);
    EXPECT_EQ(report.objects[0].plugin, "");
    EXPECT_TRUE(report.objects[1].shown);
    EXPECT_TRUE(Told("nothing.fake: No such file or directory (error -43)"));
}

TEST_F(HeadlessRunTest, AnObjectThatNoBundleShowsIsTold)
{
    options.objects.push_back({folder.Write("a.txt", "hello"), "", 0x1F});
    options.objects.push_back({folder.Write("b.txt", "hello"), "text/plain", 0x1F});
    const PageReport report = Run();
    EXPECT_EQ(report.objects[0].error, paramErr);
    EXPECT_TRUE(Told("a.txt: its type is unknown, nothing here can show it (error -50)\n"));
    EXPECT_TRUE(Told("b.txt: nothing here can show its type, text/plain (error -50)\n"));
}

TEST_F(HeadlessRunTest, AMovieThatNobodyShowsForWantOfCodecsIsTold)
{
    options.objects.push_back({folder.Write("a.txt", "hello"), "video/other", 0x1F});
    test::ToolboxProbe probe;
    probe.Fail("QuickTimePresent", paramErr);
    EXPECT_EQ(Run().objects[0].error, noCodecErr);
    EXPECT_TRUE(
        Told("a.txt: the codec libraries of this system decode no MPEG movies (error -8961)"));
}

TEST_F(HeadlessRunTest, AnEmptyFileHasNoMovie)
{
    Add("empty-never", 0);
    EXPECT_EQ(Run().objects.at(0).error, noMovieFound);
    EXPECT_TRUE(Told("empty-never.fake: it is empty\n"));
}

TEST_F(HeadlessRunTest, AnEmptyObjectOfUnknownTypeIsEmptyFirstOfAll)
{
    options.objects.push_back({folder.Write("empty", ""), "", 0x1F});
    Run();
    EXPECT_TRUE(Told("empty: it is empty\n"));
}

TEST_F(HeadlessRunTest, ABundleThatWaitsInsideAnIdleGetsItsBytes)
{
    Add("a-wait50000", 100'000);
    options.bytesPerSecond = 100'000;
    const PageReport report = Run();
    EXPECT_TRUE(report.objects.at(0).shown);
    EXPECT_TRUE(report.objects.at(0).complete);
}

TEST_F(HeadlessRunTest, UntilEndsTheClockInTheMiddleOfLoading)
{
    Add("a-open70000", 1'000'000);
    options.bytesPerSecond = 10'000;
    options.until = 2'000'000;
    const PageReport report = Run();
    EXPECT_DOUBLE_EQ(report.seconds, 2.0);
    EXPECT_FALSE(report.objects.at(0).complete);
    EXPECT_EQ(report.objects.at(0).bytes, 20'000);
    EXPECT_EQ(report.objects.at(0).error, noErr);
    EXPECT_FALSE(report.objects.at(0).shown);
    EXPECT_TRUE(Told("the end came before"));
    EXPECT_EQ(plugins.Count("free a-open70000.fake"), 1);
}

TEST_F(HeadlessRunTest, UntilIsReachedThoughNothingIsLeftToDo)
{
    Add("a");
    options.until = 3'000'000;
    EXPECT_DOUBLE_EQ(Run().seconds, 3.0);
}

TEST_F(HeadlessRunTest, SnapshotsAreTakenAtTheirTimesAndAtTheEnd)
{
    Add("a-open1-grey9");
    options.snapshots = {{std::nullopt, folder.Path("end.png")},
                         {500'000, folder.Path("half.png")}};
    const PageReport report = Run();
    EXPECT_FALSE(snapshotFailed);
    EXPECT_GE(report.seconds, 0.5);
    EXPECT_FALSE(folder.Read("half.png").empty());
    EXPECT_EQ(folder.Read("half.png"), folder.Read("end.png"));
}

TEST_F(HeadlessRunTest, ASnapshotThatCannotBeWrittenIsTold)
{
    Add("a");
    options.snapshots = {{std::nullopt, folder.Path("no/folder.png")}};
    Run();
    EXPECT_TRUE(snapshotFailed);
    EXPECT_TRUE(Told("no/folder.png"));
}

TEST_F(HeadlessRunTest, UserEventsHoldUpTheEnd)
{
    Add("a");
    options.events = {{viewer::UserEvent::Kind::kClick, 1'000'000, {10, 10}, 0}};
    const PageReport report = Run();
    EXPECT_NEAR(report.seconds, 1.05, 0.0001);
    EXPECT_EQ(plugins.Count("event a.fake 2 0 10,10"), 1);
}

TEST_F(HeadlessRunTest, AnEventAtTheStartFindsItsObject)
{
    Add("a");
    options.events = {{viewer::UserEvent::Kind::kClick, 0, {10, 10}, 0},
                      {viewer::UserEvent::Kind::kKey, 0, {}, ' '}};
    Run();
    EXPECT_EQ(plugins.Count("event a.fake 1 0 10,10"), 1);
    EXPECT_EQ(plugins.Count("event a.fake 3 32 0,0"), 1);
    EXPECT_EQ(told, "");
}

TEST_F(HeadlessRunTest, AnEventWaitsUntilItsObjectHasArrived)
{
    Add("a-open50000", 60'000);
    options.bytesPerSecond = 10'000;
    options.events = {{viewer::UserEvent::Kind::kClick, 1'000'000, {10, 10}, 0}};
    const PageReport report = Run();
    EXPECT_EQ(plugins.Count("event a-open50000.fake 1 0 10,10"), 1);
    EXPECT_GE(report.seconds, 5.0);
    EXPECT_LE(report.seconds, 6.1);
}

TEST_F(HeadlessRunTest, EventsThatTheEndForestallsAreTold)
{
    Add("a");
    options.until = 1'000'000;
    options.events = {{viewer::UserEvent::Kind::kKey, 2'000'000, {}, ' '}};
    Run();
    EXPECT_TRUE(Told("the end came before 1 click or key could be delivered"));
}

TEST_F(HeadlessRunTest, ObjectsBelowThePageAreTold)
{
    options.width = 100;
    options.height = 60;
    Add("a");
    Add("b");
    Run();
    EXPECT_EQ(told, "");
    Add("c");
    Add("d");
    Run();
    EXPECT_TRUE(Told("the page is 164 rows higher than what is shown of it, 1 object is cut off, "
                     "2 objects lie below; --size 100x224 shows all"));
}

TEST_F(HeadlessRunTest, AnObjectThatASnapshotCutsOffIsTold)
{
    options.width = 100;
    options.height = 40;
    Add("a");
    Run();
    EXPECT_EQ(told, "") << "nobody looks";
    options.snapshots = {{std::nullopt, folder.Path("page.png")}};
    Run();
    EXPECT_TRUE(Told("the page is 10 rows higher than what is shown of it, 1 object is cut off; "
                     "--size 100x50 shows all"));
}

TEST_F(HeadlessRunTest, AFifoThatStallsLetsTheOthersOpenAndIsShownInTheEnd)
{
    const std::string bytes = Pattern(100'000);
    const int fifo = open(AddFifo("stalls-open70000").c_str(), O_RDWR);
    ASSERT_EQ(write(fifo, bytes.data(), 30'000), 30'000);
    Add("b");
    std::thread writer([&] {
        WaitForLogged("make b.fake");
        EXPECT_EQ(write(fifo, bytes.data() + 30'000, 70'000), 70'000);
        close(fifo);
    });
    const PageReport report = Run();
    writer.join();
    EXPECT_EQ(plugins.Violations(), 0);
    EXPECT_TRUE(report.objects[0].shown);
    EXPECT_EQ(report.objects[0].bytes, 100'000);
    EXPECT_TRUE(report.objects[1].shown);
    EXPECT_EQ(plugins.Count("make stalls-open70000.fake FAKE"), 2);
    const std::string log = plugins.Log();
    EXPECT_LT(log.find("make b.fake"), log.rfind("make stalls"));
}

TEST_F(HeadlessRunTest, AFifoThatSendsNothingHoldsNobodyUp)
{
    const int fifo = open(AddFifo("silent").c_str(), O_RDWR);
    Add("b");
    options.until = 200'000;
    const PageReport report = Run();
    close(fifo);
    EXPECT_FALSE(report.objects[0].shown);
    EXPECT_TRUE(report.objects[1].shown);
}

TEST_F(HeadlessRunTest, TheClockGoesNoFasterThanRealTimeWhileAPipeIsBehind)
{
    const std::string path = AddFifo("slow");
    std::thread writer([&] {
        const int fifo = open(path.c_str(), O_WRONLY);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        EXPECT_EQ(write(fifo, "abc", 3), 3);
        close(fifo);
    });
    const PageReport report = Run();
    writer.join();
    EXPECT_LT(report.seconds, 2.0);
    EXPECT_GT(report.seconds, 0.1);
    EXPECT_EQ(report.objects.at(0).bytes, 3);
}

TEST_F(HeadlessRunTest, NothingIsLeftBehind)
{
    const SInt32 ports = CountLiveObjects(kLivePorts);
    const SInt32 regions = CountLiveObjects(kLiveRegions);
    const SInt32 threads = CountLiveObjects(kLiveThreads);
    Add("a");
    Add("b-never");
    Run();
    EXPECT_EQ(CountLiveObjects(kLivePorts), ports);
    EXPECT_EQ(CountLiveObjects(kLiveRegions), regions);
    EXPECT_EQ(CountLiveObjects(kLiveThreads), threads);
}

} // namespace
