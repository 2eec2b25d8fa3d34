// SPDX-License-Identifier: MIT
#include "src/plugin/MakeNewPlugin.h"

#include "src/datahandler/DataHandlerRegistration.h"
#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"
#include "toolbox/gestalt/Gestalt.h"

namespace test
{
namespace
{

class MakingANewPlugin : public MovieTest
{
protected:
    MakingANewPlugin() { gDataHandlerComponent = nullptr; }
};

TEST_F(MakingANewPlugin, RegistersTheDataHandlerThenMakesAMoviePlugin)
{
    const std::unique_ptr<VornPlugin> plugin(MakeNewPlugin(bundle.Get()));
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin.get(), VornMoviePlugin::GetMoviePlugin());
    EXPECT_EQ(plugin->bundle, bundle.Get());
    EXPECT_NE(gDataHandlerComponent, nullptr);
    EXPECT_EQ(probe.Calls({"RegisterComponent", "Gestalt"}),
              (Calls{"RegisterComponent", "Gestalt"}));
}

TEST_F(MakingANewPlugin, GivesNoneWhenTheDataHandlerCannotBeRegistered)
{
    probe.Fail("RegisterComponent", paramErr);
    EXPECT_EQ(MakeNewPlugin(bundle.Get()), nullptr);
    EXPECT_EQ(probe.Count("Gestalt"), 0);
}

TEST_F(MakingANewPlugin, PassesOnWhatTheConstructorThrows)
{
    probe.Fail("Gestalt", gestaltUndefSelectorErr);
    EXPECT_EQ(ThrownBy([&] { MakeNewPlugin(bundle.Get()); }), gestaltUndefSelectorErr);
}

TEST_F(MakingANewPlugin, GivesAnObjectThatDecodes)
{
    VornPlugin* plugin = nullptr;
    const VornPluginHostCalls calls = host.Calls();
    host.object.resize(30000);
    host.arrivals = {30000};
    ASSERT_EQ(VornPluginMakeNewObject(bundle.Get(), &calls, FOUR_CHARS('M', 'P', 'E', 'G'),
                                      FOUR_CHARS('h', 'o', 's', 't'), "clip.mpg", "video/mpeg",
                                      &plugin),
              noErr);
    EXPECT_EQ(VornPluginDecodeObject(plugin), noErr);
    EXPECT_EQ(FileBytes(VornMoviePlugin::GetMoviePlugin()->spoolFileSpec), host.object);
    EXPECT_EQ(host.told, Calls{"renderingDone 0"});
    YieldToAnyThread(); // the tasking thread sees that all is in
    VornPluginFreeObject(plugin);
}

} // namespace
} // namespace test
