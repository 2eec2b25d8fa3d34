// SPDX-License-Identifier: MIT
//
// Objects that come and go leave nothing behind, and more of them do not make each of them cost
// more. Counts only; scripts/soak runs the same for an hour of the page's clock and measures.
#include "tests/soak/ProcessState.h"
#include "tests/soak/SoakMaterials.h"
#include "tests/viewer/TestFiles.h"
#include "viewer/HeadlessRun.h"
#include "viewer/QuietOutput.h"

#include <gtest/gtest.h>

namespace
{

constexpr SInt64 kStep = 100'000;

// A minute of a page of 40 objects of which about as many go as there are.
void RunAndRemove(const viewer::PluginFolder& plugins, const std::vector<SoakMaterial>& materials,
                  int& shown)
{
    SoakPage page(plugins, materials, 7, 40);
    {
        const viewer::QuietOutput quiet;
        for (int round = 0; round < 600; ++round) {
            page.Round(kStep, true);
        }
        page.RemoveAll();
    }
    EXPECT_GT(page.Gone(), 80);
    EXPECT_GT(page.Shown(), 40);
    EXPECT_GT(page.Unknown(), 0);
    shown = page.Shown();
}

TEST(Soak, ObjectsThatHaveGoneLeaveNothingBehind)
{
    const viewer::PluginFolder plugins(VORN_PLUGINS);
    const std::vector<SoakMaterial> materials = MakeSoakMaterials();
    int shown = 0;
    RunAndRemove(plugins, materials, shown); // what is made once and kept is there then
    const ProcessState before = ProcessState::Now();
    int shownAgain = 0;
    RunAndRemove(plugins, materials, shownAgain);
    const ProcessState after = ProcessState::Now();
    EXPECT_EQ(shown, shownAgain);
    EXPECT_EQ(before.live, after.live);
    EXPECT_EQ(before.descriptors, after.descriptors);
    EXPECT_LE(after.heapBytes, before.heapBytes + 64 * 1024);
}

// How many toolbox operations a page of so many movies takes from its beginning to its end.
int CountOperations(const viewer::PluginFolder& plugins, const std::string& clip, size_t movies)
{
    viewer::Options options;
    options.headless = true;
    options.play = true;
    for (size_t i = 0; i < movies; ++i) {
        options.objects.push_back({clip, "", 0x1F});
    }
    int count = 0;
    SetToolboxObserver(
        [](const char*, void* refCon) -> OSErr {
            ++*static_cast<int*>(refCon);
            return 0;
        },
        &count);
    viewer::PageReport report;
    {
        const viewer::QuietOutput quiet;
        report = viewer::HeadlessRun(options, plugins).Run();
    }
    SetToolboxObserver(nullptr, nullptr);
    for (const viewer::ObjectReport& object : report.objects) {
        EXPECT_EQ(object.error, 0);
    }
    return count;
}

TEST(Soak, AMovieAmongManyTakesHardlyMoreOperationsThanAmongFew)
{
    const viewer::PluginFolder plugins(VORN_PLUGINS);
    const int few = CountOperations(plugins, VORN_CLIPS "/tiny.mpg", 15);
    const int many = CountOperations(plugins, VORN_CLIPS "/tiny.mpg", 60);
    RecordProperty("OperationsAmong15", few / 15);
    RecordProperty("OperationsAmong60", many / 60);
    EXPECT_LT(many / 60, few / 15 * 3 / 2);
}

} // namespace
