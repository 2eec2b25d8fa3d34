// SPDX-License-Identifier: MIT
#include "viewer/Viewer.h"

#include "viewer/Console.h"
#include "viewer/HeadlessRun.h"
#include "viewer/SoundFile.h"

#include <cstdio>
#include <fstream>

namespace viewer
{
namespace
{

constexpr int kSuccess = 0;
constexpr int kNotShown = 1;
constexpr int kUsage = 2;

void WriteReportFile(const PageReport& report, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    file << WriteReport(report);
    file.close();
    if (!file) {
        throw std::runtime_error(path + ": the report could not be written");
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
    if (sound != nullptr) {
        sound->Finish();
    }
    if (!options.reportPath.empty()) {
        WriteReportFile(report, options.reportPath);
    }
    return run.SnapshotFailed() ? kNotShown : ExitStatusOf(report);
}

int Run(const Options& options)
{
    const std::string folder =
        options.pluginsFolder.empty() ? DefaultPluginsFolder() : options.pluginsFolder;
    const PluginFolder plugins(folder);
    if (options.listPlugins) {
        std::fputs(DescribePlugins(plugins).c_str(), stdout);
        return kSuccess;
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
