// SPDX-License-Identifier: MIT
#include "viewer/Viewer.h"

#include "viewer/Console.h"
#include "viewer/HeadlessRun.h"
#include "viewer/OutputCheck.h"
#include "viewer/OutputFile.h"
#include "viewer/SoundFile.h"
#include "viewer/TemporaryPlace.h"

#include <cstdio>

namespace viewer
{
namespace
{

constexpr int kSuccess = 0;
constexpr int kNotShown = 1;
constexpr int kUsage = 2;

void WriteReportFile(const PageReport& report, const std::string& path)
{
    try {
        const std::string text = WriteReport(report);
        OutputFile file(path, "the report");
        file.Write(text.data(), text.size());
        file.Commit();
    } catch (const std::runtime_error& problem) {
        throw std::runtime_error(path + ": " + problem.what());
    }
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

int ShowPage(const Options& options, const PluginFolder& plugins)
{
    std::unique_ptr<SoundFile> sound;
    if (!options.wavPath.empty()) {
        sound = std::make_unique<SoundFile>(options.wavPath);
    }
    HeadlessRun run(options, plugins);
    const PageReport report = run.Run();
    bool written = !run.SnapshotFailed();
    if (sound != nullptr) {
        written = SucceedsOrTells([&] { sound->Finish(); }) && written;
    }
    if (!options.reportPath.empty()) {
        written = SucceedsOrTells([&] { WriteReportFile(report, options.reportPath); }) && written;
    }
    return written ? ExitStatusOf(report) : kNotShown;
}

// A page without an output would run unseen.
void TellThereIsNoWindow(const Options& options)
{
    const bool isSeen =
        !options.snapshots.empty() || !options.wavPath.empty() || !options.reportPath.empty();
    Console::Tell("", std::string("this build has no window: the page runs without one") +
                          (isSeen ? "" : "; --snapshot, --wav and --report show what comes of it"));
}

int Run(const Options& options)
{
    RefuseOutputsThatAreObjects(options);
    const std::string folder =
        options.pluginsFolder.empty() ? DefaultPluginsFolder() : options.pluginsFolder;
    const PluginFolder plugins(folder);
    if (options.listPlugins) {
        std::fputs(DescribePlugins(plugins).c_str(), stdout);
        return kSuccess;
    }
    RequireTemporaryPlace();
    if (!options.headless) {
        TellThereIsNoWindow(options);
    }
    return ShowPage(options, plugins);
}

} // namespace

int RunViewer(int argc, char* const* argv)
{
    try {
        const Options options = ParseOptions(argc, argv);
        if (options.help) {
            std::fputs(HelpText(), stdout);
            return kSuccess;
        }
        if (options.version) {
            std::puts("vornview " VORN_VERSION);
            return kSuccess;
        }
        return Run(options);
    } catch (const UsageError& problem) {
        Console::Tell("", std::string(problem.what()) + "\nTry 'vornview --help'.");
        return kUsage;
    } catch (const std::exception& problem) {
        Console::Tell("", problem.what());
        return kNotShown;
    }
}

} // namespace viewer
