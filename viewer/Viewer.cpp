// SPDX-License-Identifier: MIT
#include "viewer/Viewer.h"

#include "viewer/ByteSource.h"
#include "viewer/Console.h"
#include "viewer/FileLimit.h"
#include "viewer/FolderObjects.h"
#include "viewer/HeadlessRun.h"
#include "viewer/InfoTable.h"
#include "viewer/OutputCheck.h"
#include "viewer/OutputFile.h"
#include "viewer/QuietOutput.h"
#include "viewer/SoundFile.h"
#include "viewer/TemporaryPlace.h"
#include "viewer/ViewerPart.h"
#include "viewer/window/WindowPart.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace viewer
{
namespace
{

constexpr int kSuccess = 0;
constexpr int kNotShown = 1;
constexpr int kUsage = 2;

void WriteReportFile(const PageReport& report, const std::string& path)
{
    const std::string text = WriteReport(report);
    OutputFile file(path, "the report");
    file.Write(text.data(), text.size());
    file.Commit();
}

// One output that cannot be written does not cost the others.
template <typename Action>
bool SucceedsOrTells(Action action)
{
    try {
        action();
        return true;
    } catch (const std::exception& problem) {
        Console::Tell("", problem.what());
        return false;
    }
}

// A page without an output would run unseen.
void TellThereIsNoWindow(const Options& options, const std::string& why)
{
    const bool isSeen = !options.snapshots.empty() || !options.wavPath.empty() ||
                        !options.reportPath.empty() || !options.drag.path.empty();
    Console::Tell("", "there is no window here (" + why + "): the page runs without one" +
                          (isSeen ? "" : "; --snapshot, --wav and --report show what comes of it"));
}

bool HasSomethingToPlay(const PageReport& report)
{
    return std::any_of(report.objects.begin(), report.objects.end(),
                       [](const ObjectReport& object) { return object.durationSeconds > 0; });
}

// What nobody started does not sound.
void FinishSound(SoundFile& sound, const Options& options, const PageReport& report)
{
    sound.Finish();
    if (sound.IsEmpty() && !options.play && HasSomethingToPlay(report)) {
        Console::Tell("", options.wavPath + ": nothing sounded; --play clicks the play buttons");
    }
}

struct Outcome {
    PageReport report;
    bool outputFailed = false;
};

// Throws NoDisplay and PartMissing.
#ifdef VORN_WITHOUT_WINDOW
Outcome RunInWindow(const Options&, const PluginFolder&)
{
    throw NoDisplay("this vornview was built without one; build it with SDL2 and FreeType");
}
#else
Outcome RunInWindow(const Options& options, const PluginFolder& plugins)
{
    const auto run = ViewerPart("VornWindow").Find<decltype(VornRunInWindow)>("VornRunInWindow");
    Outcome outcome;
    run(options, plugins, outcome.report, outcome.outputFailed);
    return outcome;
}
#endif

Outcome RunHeadless(const Options& options, const PluginFolder& plugins)
{
    HeadlessRun run(options, plugins);
    PageReport report = run.Run();
    return {std::move(report), run.OutputFailed()};
}

// A window would show nothing but what is told without one.
bool HasNothingToShow(const Options& options)
{
    return std::none_of(options.objects.begin(), options.objects.end(),
                        [](const ObjectRequest& each) { return MayBeOpened(each.location); });
}

Outcome RunPage(const Options& options, const PluginFolder& plugins)
{
    if (options.headless || HasNothingToShow(options)) {
        return RunHeadless(options, plugins);
    }
    try {
        return RunInWindow(options, plugins);
    } catch (const NoDisplay& problem) {
        TellThereIsNoWindow(options, problem.what());
    } catch (const PartMissing& problem) {
        TellThereIsNoWindow(options, problem.what());
    }
    return RunHeadless(options, plugins);
}

int ShowPage(const Options& options, const PluginFolder& plugins)
{
    std::unique_ptr<SoundFile> sound;
    if (!options.wavPath.empty()) {
        sound = std::make_unique<SoundFile>(options.wavPath);
    }
    const Outcome outcome = RunPage(options, plugins);
    const PageReport& report = outcome.report;
    bool written = !outcome.outputFailed;
    if (sound != nullptr) {
        written = SucceedsOrTells([&] { FinishSound(*sound, options, report); }) && written;
    }
    if (!options.reportPath.empty()) {
        written = SucceedsOrTells([&] { WriteReportFile(report, options.reportPath); }) && written;
    }
    return written ? ExitStatusOf(report) : kNotShown;
}

// Opens the objects, but does nothing to them.
PageReport LookAtObjects(Options options, const PluginFolder& plugins)
{
    const QuietOutput forBundles;
    options.play = false;
    options.events.clear();
    options.snapshots.clear();
    options.drag = {};
    return RunHeadless(options, plugins).report;
}

int ShowInfo(const Options& options, const PluginFolder& plugins)
{
    const PageReport report = LookAtObjects(options, plugins);
    std::fputs(DescribeObjects(report).c_str(), stdout);
    return ExitStatusOf(report);
}

int Run(Options options)
{
    const std::string folder =
        options.pluginsFolder.empty() ? DefaultPluginsFolder() : options.pluginsFolder;
    const PluginFolder plugins(folder);
    if (options.listPlugins) {
        std::fputs(DescribePlugins(plugins).c_str(), stdout);
        return kSuccess;
    }
    if (plugins.Bundles().empty()) {
        throw std::runtime_error("there is no plug-in in '" + folder + "': nothing can be shown");
    }
    ExpandFolders(options, plugins);
    RefuseOutputsThatMeet(options);
    RequireTemporaryPlace();
    AllowManyFiles();
    if (options.info) {
        return ShowInfo(options, plugins);
    }
    return ShowPage(options, plugins);
}

} // namespace

int RunViewer(int argc, char* const* argv)
{
    try {
        Options options = ParseOptions(argc, argv);
        if (options.help) {
            std::fputs(HelpText(), stdout);
            return kSuccess;
        }
        if (options.version) {
            std::puts("vornview " VORN_VERSION);
            return kSuccess;
        }
        return Run(std::move(options));
    } catch (const UsageError& problem) {
        Console::Tell("", std::string(problem.what()) + "\nTry 'vornview --help'.");
        return kUsage;
    } catch (const std::exception& problem) {
        Console::Tell("", problem.what());
        return kNotShown;
    }
}

} // namespace viewer
