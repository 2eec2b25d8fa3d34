// SPDX-License-Identifier: MIT
#include "viewer/UserActions.h"

#include "tests/viewer/PageFixture.h"

namespace
{

using viewer::EmbeddedObject;
using viewer::UserActions;
using viewer::UserEvent;

// Two objects side by side, of 100 by 50 pixels.
class UserActionsTest : public PageFixture
{
protected:
    UserActionsTest()
    {
        AddStarted("a");
        AddStarted("b");
    }
    ~UserActionsTest() override { RunToEnd(); }
    static UserEvent Click(SInt16 h, SInt16 v, SInt64 at)
    {
        return {UserEvent::Kind::kClick, at, {v, h}, 0};
    }
    static UserEvent Key(UInt8 character, SInt64 at)
    {
        return {UserEvent::Kind::kKey, at, {}, character};
    }
};

TEST_F(UserActionsTest, AClickIsAPressAndALaterRelease)
{
    RunToEnd();
    UserActions user(page, {Click(110, 20, 1000)}, false);
    EXPECT_EQ(user.NextTime(), 1000);
    user.SendDue(1000);
    EXPECT_EQ(plugins.Count("event b 1 0 20,110"), 1);
    EXPECT_EQ(plugins.Count("event b 2 0 20,110"), 0);
    EXPECT_EQ(user.NextTime(), 51'000);
    user.SendDue(51'000);
    EXPECT_EQ(plugins.Count("event b 2 0 20,110"), 1);
    EXPECT_FALSE(user.NextTime());
}

TEST_F(UserActionsTest, NothingHappensBeforeItsTime)
{
    RunToEnd();
    UserActions user(page, {Click(10, 20, 1000)}, false);
    user.SendDue(999);
    EXPECT_EQ(plugins.Log().find("event"), std::string::npos);
}

TEST_F(UserActionsTest, AClickBesideTheObjectsGoesNowhere)
{
    RunToEnd();
    UserActions user(page, {Click(104, 20, 0)}, false);
    user.SendDue(1'000'000);
    EXPECT_EQ(plugins.Log().find("event"), std::string::npos);
    EXPECT_FALSE(user.NextTime());
}

TEST_F(UserActionsTest, KeysGoToTheFirstObjectUntilOneIsClicked)
{
    RunToEnd();
    UserActions user(page, {Key(' ', 0), Click(110, 20, 1), Key(28, 2)}, false);
    user.SendDue(2);
    EXPECT_EQ(plugins.Count("event a 3 32 0,0"), 1);
    EXPECT_EQ(plugins.Count("event b 3 28 0,0"), 1);
}

TEST_F(UserActionsTest, AKeyComesWithTheModifierThatIsHeldDown)
{
    RunToEnd();
    UserEvent key = Key(29, 0);
    key.modifiers = shiftKey;
    UserActions user(page, {key}, false);
    user.SendDue(0);
    EXPECT_EQ(plugins.Count("event a 3 29 0,0 shift"), 1);
}

TEST_F(UserActionsTest, EventsComeInTheOrderOfTheirTimes)
{
    RunToEnd();
    UserActions user(page, {Key('z', 2000), Key('y', 1000)}, false);
    EXPECT_EQ(user.NextTime(), 1000);
    user.SendDue(5000);
    EXPECT_LT(plugins.Log().find("event a 3 121"), plugins.Log().find("event a 3 122"));
}

TEST_F(UserActionsTest, ThePlayButtonIsClickedOnceItIsThere)
{
    UserActions user(page, {}, true);
    EXPECT_FALSE(user.PlayNewMovies());
    RunToEnd();
    EXPECT_TRUE(user.PlayNewMovies());
    EXPECT_FALSE(user.PlayNewMovies());
    EXPECT_EQ(plugins.Count("event a 1 0 41,24"), 1);
    EXPECT_EQ(plugins.Count("event a 2 0 41,24"), 1);
    EXPECT_EQ(plugins.Count("event b 1 0 41,132"), 1);
}

TEST_F(UserActionsTest, AnObjectThatIsMadeAnewIsPlayedAnew)
{
    RunToEnd();
    UserActions user(page, {}, true);
    user.PlayNewMovies();
    EmbeddedObject& object = *page.Objects()[0];
    object.Free();
    object.WaitAgain();
    object.Start(*plugins.Folder().Bundles()[0]);
    RunToEnd();
    EXPECT_TRUE(user.PlayNewMovies());
    EXPECT_FALSE(user.PlayNewMovies());
    EXPECT_EQ(plugins.Count("event a 1 0 41,24"), 2);
    EXPECT_EQ(plugins.Count("event b 1 0 41,132"), 1);
}

TEST_F(UserActionsTest, AnEventWaitsForItsObjectAndTheNextOneForIt)
{
    UserActions user(page, {Click(110, 20, 0), Key('z', 0)}, false);
    EXPECT_FALSE(user.SendDue(0));
    EXPECT_FALSE(user.NextTime());
    RunToEnd();
    EXPECT_TRUE(user.SendDue(0));
    EXPECT_EQ(plugins.Count("event b 1 0 20,110"), 1);
    EXPECT_EQ(plugins.Count("event b 3 122 0,0"), 1);
    EXPECT_EQ(user.CountLeft(), 0u);
}

TEST_F(UserActionsTest, AKeyWaitsForTheObjectThatTakesIt)
{
    UserActions user(page, {Key('z', 0)}, false);
    EXPECT_FALSE(user.SendDue(0));
    EXPECT_EQ(user.CountLeft(), 1u);
    RunToEnd();
    EXPECT_TRUE(user.SendDue(0));
    EXPECT_EQ(plugins.Count("event a 3 122 0,0"), 1);
}

TEST_F(UserActionsTest, TheButtonIsLetGoBeforeItIsPressedAgain)
{
    RunToEnd();
    UserActions user(page, {Click(10, 20, 0), Click(110, 20, 0)}, false);
    user.SendDue(0);
    EXPECT_EQ(plugins.Count("event a 2 0 20,10"), 1);
    EXPECT_EQ(plugins.Count("event b 2 0 20,110"), 0);
    EXPECT_LT(plugins.Log().find("event a 2"), plugins.Log().find("event b 1"));
}

TEST_F(UserActionsTest, NothingIsPlayedUnasked)
{
    RunToEnd();
    UserActions user(page, {}, false);
    EXPECT_FALSE(user.PlayNewMovies());
}

} // namespace
