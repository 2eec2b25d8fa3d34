// SPDX-License-Identifier: MIT
#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"
#include "toolbox/gestalt/Gestalt.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <cstdint>
#include <tuple>

namespace test
{
namespace
{

class MoviePlugin : public MovieTest
{
};

const Calls kConstructionCalls = {"Gestalt", "QuickTimePresent", "EnterMovies"};
const Calls kReleaseCalls = {
    "DisposeThread", "StopMovie", "DisposeHandle", "DisposeMovieController",
    "DisposeMovie",  "FSClose",   "FSpDelete",     "CFRelease"};

class DeathWatch : public VornMovieLoadListener
{
public:
    explicit DeathWatch(ToolboxProbe& probe) : probe_(probe) {}
    void LoadComplete(SInt32) override {}
    void LoadProgress(SInt32) override {}
    void NotifyListenerOfPluginDeath() override { probe_.Note("NotifyListenerOfPluginDeath"); }

private:
    ToolboxProbe& probe_;
};

TEST_F(MoviePlugin, AsksForTheVersionThenForPresenceThenEntersMovies)
{
    const auto plugin = MakePlugin();
    EXPECT_EQ(probe.Calls(kConstructionCalls), kConstructionCalls);
}

TEST_F(MoviePlugin, StartsWithNothingSpooledAndNothingOpen)
{
    const auto plugin = MakePlugin();
    EXPECT_EQ(plugin->taskingThread, kNoThreadID);
    EXPECT_FALSE(plugin->spoolFileCreated);
    EXPECT_FALSE(plugin->allDataSpooled);
    EXPECT_FALSE(plugin->inControllerCall);
    EXPECT_EQ(plugin->bytesSpooled, 0);
    EXPECT_FALSE(plugin->reservedFlag);
    EXPECT_EQ(plugin->spoolWriteRefNum, -1);
    EXPECT_EQ(plugin->spoolReadRefNum, -1);
    EXPECT_EQ(plugin->movie, nullptr);
    EXPECT_EQ(plugin->movieController, nullptr);
    EXPECT_EQ(plugin->reservedLong, 0u);
    EXPECT_EQ(plugin->spoolBuffer, nullptr);
    EXPECT_EQ(plugin->moviePort, nullptr);
    EXPECT_EQ(plugin->loadListeners.count, 0);
    EXPECT_EQ(plugin->loadListeners.capacity, 0);
}

TEST_F(MoviePlugin, KeepsItsFieldsInTheirOrder)
{
    const auto plugin = MakePlugin();
    const auto place = [](const auto& field) { return reinterpret_cast<std::uintptr_t>(&field); };
    const std::vector<std::uintptr_t> places = {place(plugin->finalError),
                                                place(plugin->spoolFileSpec),
                                                place(plugin->taskingThread),
                                                place(plugin->spoolFileCreated),
                                                place(plugin->allDataSpooled),
                                                place(plugin->inControllerCall),
                                                place(plugin->bytesSpooled),
                                                place(plugin->reservedFlag),
                                                place(plugin->hasLoadStateCalls),
                                                place(plugin->quickTimeVersion),
                                                place(plugin->spoolWriteRefNum),
                                                place(plugin->spoolReadRefNum),
                                                place(plugin->movie),
                                                place(plugin->movieController),
                                                place(plugin->reservedLong),
                                                place(plugin->spoolBuffer),
                                                place(plugin->moviePort),
                                                place(plugin->loadListeners)};
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

TEST_F(MoviePlugin, KeepsTheHighHalfOfTheVersion)
{
    SetGestaltValue(gestaltQuickTime, static_cast<SInt32>(0xFEDC1234));
    EXPECT_EQ(MakePlugin()->quickTimeVersion, 0xFEDC);
}

TEST_F(MoviePlugin, UsesLoadStatesFromVersion41On)
{
    SetGestaltValue(gestaltQuickTime, 0x040FFFFF);
    EXPECT_FALSE(MakePlugin()->hasLoadStateCalls);
    SetGestaltValue(gestaltQuickTime, 0x04100000);
    EXPECT_TRUE(MakePlugin()->hasLoadStateCalls);
}

TEST_F(MoviePlugin, ComparesTheVersionWithoutSign)
{
    SetGestaltValue(gestaltQuickTime, static_cast<SInt32>(0x80000000));
    EXPECT_TRUE(MakePlugin()->hasLoadStateCalls);
}

TEST_F(MoviePlugin, DoesNotCareHowEnteringMoviesWent)
{
    Movies().enterMoviesResult = -2010;
    EXPECT_NE(MakePlugin(), nullptr);
}

TEST_F(MoviePlugin, IsTheCurrentOneOnceConstructed)
{
    const auto first = MakePlugin();
    EXPECT_EQ(VornMoviePlugin::GetMoviePlugin(), first.get());
    const auto second = MakePlugin();
    EXPECT_EQ(VornMoviePlugin::GetMoviePlugin(), second.get());
}

TEST_F(MoviePlugin, IsNotTheCurrentOneBeforeMoviesAreEntered)
{
    const auto former = MakePlugin();
    VornMoviePlugin* current = nullptr;
    Movies().onCall = [&](const std::string& call) {
        if (call == "EnterMovies") {
            current = VornMoviePlugin::GetMoviePlugin();
        }
    };
    const auto latter = MakePlugin();
    Movies().onCall = nullptr;
    EXPECT_EQ(current, former.get());
}

TEST_F(MoviePlugin, StaysTheCurrentOneWithItsListenersUntilItsFileIsGone)
{
    DeathWatch listener(probe);
    auto plugin = MakePlugin();
    plugin->AddLoadListener(&listener);
    plugin->CreateMovieFile();
    VornMoviePlugin* const dying = plugin.get();
    VornMoviePlugin* current = nullptr;
    SInt32 listeners = -1;
    probe.onCall = [&](const std::string& call) {
        if (call == "FSpDelete") {
            current = VornMoviePlugin::GetMoviePlugin();
            listeners = dying->loadListeners.count;
        }
    };
    plugin.reset();
    probe.onCall = nullptr;
    EXPECT_EQ(current, dying);
    EXPECT_EQ(listeners, 1);
}

TEST_F(MoviePlugin, ThrowsWhatGestaltFailsWith)
{
    const auto older = MakePlugin();
    probe.Fail("Gestalt", gestaltUndefSelectorErr);
    probe.Forget();
    EXPECT_EQ(ThrownBy([&] { VornMoviePlugin failing(bundle.Get()); }), gestaltUndefSelectorErr);
    EXPECT_EQ(probe.Calls(kConstructionCalls), Calls{"Gestalt"});
    EXPECT_EQ(VornMoviePlugin::GetMoviePlugin(), older.get());
}

TEST_F(MoviePlugin, CannotBeMadeWithoutQuickTime)
{
    Movies().present = false;
    EXPECT_EQ(ThrownBy([&] { VornMoviePlugin failing(bundle.Get()); }), paramErr);
    EXPECT_EQ(probe.Count("EnterMovies"), 0);
    EXPECT_EQ(VornMoviePlugin::GetMoviePlugin(), nullptr);
}

TEST_F(MoviePlugin, LetsGoOfTheBundleWhenItCannotBeMade)
{
    Movies().present = false;
    EXPECT_EQ(ThrownBy([&] { VornMoviePlugin failing(bundle.Get()); }), paramErr);
    EXPECT_EQ(probe.Calls({"CFRetain", "CFRelease"}), (Calls{"CFRetain", "CFRelease"}));
}

TEST_F(MoviePlugin, ReleasesEverythingInItsOrder)
{
    DeathWatch listener(probe);
    auto plugin = MakePlayingPlugin();
    Spool(*plugin, 100);
    SInt32 count = 10;
    char bytes[10];
    plugin->GetMovieData(bytes, 0, &count, false);
    plugin->CloseMovieFile();
    plugin->AddLoadListener(&listener);
    NewThread(
        kCooperativeThread, [](void*) -> void* { return nullptr; }, nullptr, 65536, 0, nullptr,
        &plugin->taskingThread);
    const FSSpec file = plugin->spoolFileSpec;
    probe.Forget();
    plugin.reset();
    Calls expected = {"NotifyListenerOfPluginDeath"};
    expected.insert(expected.end(), kReleaseCalls.begin(), kReleaseCalls.end());
    EXPECT_EQ(probe.Calls(expected), expected);
    EXPECT_FALSE(FileExists(file));
    EXPECT_EQ(VornMoviePlugin::GetMoviePlugin(), nullptr);
}

TEST_F(MoviePlugin, ReleasesNothingWhenNothingWasStarted)
{
    auto plugin = MakePlugin();
    probe.Forget();
    plugin.reset();
    EXPECT_EQ(probe.Calls(kReleaseCalls), Calls{"CFRelease"});
}

TEST_F(MoviePlugin, LeavesTheListenersAlive)
{
    auto listener = std::make_unique<DeathWatch>(probe);
    MakePlugin()->AddLoadListener(listener.get());
    listener->NotifyListenerOfPluginDeath();
    EXPECT_EQ(probe.Count("NotifyListenerOfPluginDeath"), 2);
}

TEST_F(MoviePlugin, LeavesTheWritePathToSpooling)
{
    auto plugin = MakePlugin();
    Spool(*plugin, 100);
    const SInt16 writePath = plugin->spoolWriteRefNum;
    probe.Forget();
    plugin.reset();
    EXPECT_EQ(probe.Count("FSClose"), 0);
    EXPECT_EQ(FSClose(writePath), noErr);
}

TEST_F(MoviePlugin, DoesNotCareWhetherReleasingFails)
{
    auto plugin = MakePlayingPlugin();
    Spool(*plugin, 100);
    SInt32 count = 10;
    char bytes[10];
    plugin->GetMovieData(bytes, 0, &count, false);
    plugin->CloseMovieFile();
    const FSSpec file = plugin->spoolFileSpec;
    const SInt16 path = plugin->spoolReadRefNum;
    probe.Fail("FSClose", ioErr);
    probe.Fail("FSpDelete", permErr);
    EXPECT_NO_THROW(plugin.reset());
    EXPECT_EQ(probe.Count("DisposeMovie"), 1);
    FSClose(path);
    FSpDelete(&file);
}

TEST_F(MoviePlugin, LeavesNoCurrentOneWhenAnOlderOneIsDestroyed)
{
    auto older = MakePlugin();
    const auto newer = MakePlugin();
    older.reset();
    EXPECT_EQ(VornMoviePlugin::GetMoviePlugin(), nullptr);
}

TEST_F(MoviePlugin, HasAnErrorProcedureThatDoesNothing)
{
    Calls calls;
    probe.onCall = [&](const std::string& call) { calls.push_back(call); };
    VornMoviePlugin::MyErrProc(-50, 1);
    probe.onCall = nullptr;
    EXPECT_EQ(calls, Calls{});
}

// File name, and the extension that is looked for.
class FileNameExtension : public MovieTest,
                          public testing::WithParamInterface<std::tuple<const char*, const char*>>
{
};

TEST_P(FileNameExtension, IsWhatFollowsTheLastDotOrTheFirstCharacter)
{
    const auto& [fileName, extension] = GetParam();
    const TestBundle declaring(DocumentType({"no/type"}, {extension}));
    VornMoviePlugin plugin(declaring.Get());
    EXPECT_TRUE(plugin.CanHandleData("some/type", fileName));
}

INSTANTIATE_TEST_SUITE_P(Names, FileNameExtension,
                         testing::Values(std::tuple{"clip.mpg", "mpg"},
                                         std::tuple{"a.b.mpeg", "mpeg"}, std::tuple{".mp3", "mp3"},
                                         std::tuple{"movie", "ovie"}, std::tuple{"x.mp", "mp"},
                                         std::tuple{"abc", "bc"}, std::tuple{"CLIP.MPG", "mpg"}));

// None of these may be found under any of the names that a slip would make of them.
class FileNameWithoutExtension : public MovieTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(FileNameWithoutExtension, IsNotLookedUp)
{
    const TestBundle declaring(
        DocumentType({"no/type"}, {"", "b", "ab", "m", "x.m", ".m", "a.m", "a", "ov.", "mpg."}));
    VornMoviePlugin plugin(declaring.Get());
    EXPECT_FALSE(plugin.CanHandleData("some/type", GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Names, FileNameWithoutExtension,
                         testing::Values("ab", "x.m", "a.m", "a", "a.", "mov.", "clip.mpg.", "",
                                         nullptr));

TEST_F(MoviePlugin, HandlesADeclaredMimeTypeWhateverTheName)
{
    const auto plugin = MakePlugin();
    EXPECT_TRUE(plugin->CanHandleData("video/mpeg", "letter.txt"));
    EXPECT_TRUE(plugin->CanHandleData("video/mpeg", nullptr));
}

TEST_F(MoviePlugin, HandlesADeclaredExtensionWhateverTheType)
{
    EXPECT_TRUE(MakePlugin()->CanHandleData("text/plain", "clip.mpg"));
}

TEST_F(MoviePlugin, HandlesNothingElse)
{
    EXPECT_FALSE(MakePlugin()->CanHandleData("text/plain", "letter.txt"));
}

TEST_F(MoviePlugin, HandlesNothingWithoutQuickTime)
{
    const auto plugin = MakePlugin();
    Movies().present = false;
    EXPECT_FALSE(plugin->CanHandleData("video/mpeg", "clip.mpg"));
    EXPECT_FALSE(plugin->CanHandleData("text/plain", "clip.mpg"));
    EXPECT_FALSE(plugin->CanHandleData("", ""));
}

} // namespace
} // namespace test
