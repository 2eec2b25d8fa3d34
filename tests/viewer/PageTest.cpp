// SPDX-License-Identifier: MIT
#include "viewer/Page.h"

#include "tests/viewer/PageFixture.h"

namespace
{

using viewer::EmbeddedObject;
using viewer::ObjectBytes;
using viewer::Page;

class PageTest : public PageFixture
{
};

std::vector<int> Sides(const Rect& rect)
{
    return {rect.top, rect.left, rect.bottom, rect.right};
}

TEST_F(PageTest, AnObjectWithoutDimensionsHasAPlaceholder)
{
    const EmbeddedObject& object = Add("a");
    page.DrawChanges();
    EXPECT_EQ(Sides(object.Area()), (std::vector<int>{0, 0, 120, 160}));
    EXPECT_EQ(GreyAt(0, 0), 0xC0);
    EXPECT_EQ(GreyAt(1, 1), 0xFF);
}

TEST_F(PageTest, AnObjectIsDisplayedWhenItHasDimensionsAndWhenItIsDone)
{
    const EmbeddedObject& object = AddStarted("a-grey7");
    RunToEnd();
    EXPECT_EQ(Sides(object.Area()), (std::vector<int>{0, 0, 50, 100}));
    EXPECT_EQ(GreyAt(49, 99), 7);
    EXPECT_EQ(GreyAt(50, 99), 0xFF);
    EXPECT_EQ(plugins.Count("display a-grey7"), 2);
}

TEST_F(PageTest, WhatStandsBehindMovesUpAndIsDisplayedThere)
{
    AddStarted("first-open1000-grey1");
    const EmbeddedObject& second = AddStarted("second-grey2");
    page.IdleObjects();
    RunToEnd();
    EXPECT_EQ(Sides(second.Area()), (std::vector<int>{0, 108, 50, 208}));
    EXPECT_EQ(GreyAt(10, 50), 1);
    EXPECT_EQ(GreyAt(10, 104), 0xFF); // the gap
    EXPECT_EQ(GreyAt(10, 150), 2);
    EXPECT_EQ(GreyAt(60, 150), 0xFF); // where the placeholders were
}

TEST_F(PageTest, EveryCallHasTheObjectsRectangleAsItsClip)
{
    AddStarted("a");
    EmbeddedObject& object = AddStarted("b");
    RunToEnd();
    page.Click(object, EventRecord{});
    EXPECT_EQ(plugins.WrongClips(), 0);
}

TEST_F(PageTest, FindsTheObjectAtAPlace)
{
    const EmbeddedObject& first = AddStarted("a");
    const EmbeddedObject& second = AddStarted("b");
    RunToEnd();
    EXPECT_EQ(page.ObjectAt({49, 99}), &first);
    EXPECT_EQ(page.ObjectAt({49, 100}), nullptr);
    EXPECT_EQ(page.ObjectAt({49, 108}), &second);
    EXPECT_EQ(page.ObjectAt({50, 108}), nullptr);
}

TEST_F(PageTest, AControllerBarKeepsItsWidthOnANarrowerPage)
{
    Page narrow(100, 100);
    const std::string path = folder.Write("a-bar", Pattern(1000));
    EmbeddedObject& object = narrow.Add(std::make_unique<EmbeddedObject>(
        viewer::ObjectDescription{"a-bar", "a-bar", viewer::ObjectType{"video/x-fake"}, 0x1F},
        std::make_unique<ObjectBytes>(viewer::OpenSource(path), viewer::ArrivalPace(), time)));
    object.Start(*plugins.Folder().Bundles()[0]);
    for (int i = 0; i < 10; ++i) {
        YieldToAnyThread();
        narrow.IdleObjects();
        narrow.DrawChanges();
    }
    EXPECT_EQ(Sides(object.Area()), (std::vector<int>{0, 0, 17, 240}));
    narrow.FreeObjects();
    SetPort(page.Port());
}

TEST_F(PageTest, CountsWhatLiesBelowIt)
{
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}) {
        AddStarted(name);
    }
    EXPECT_EQ(page.LookBelow().objects, 0);
    RunToEnd();
    EXPECT_EQ(page.LookBelow().objects, 2); // two in each row of 58
    EXPECT_EQ(page.LookBelow().cut, 2);
    EXPECT_EQ(page.LookBelow().bottom, 4 * 58 + 50);
}

TEST_F(PageTest, FreesTheObjectsInOrder)
{
    AddStarted("a");
    AddStarted("b");
    RunToEnd();
    page.FreeObjects();
    const std::string log = plugins.Log();
    EXPECT_LT(log.find("free a"), log.find("free b"));
    EXPECT_NE(log.find("free b"), std::string::npos);
}

TEST_F(PageTest, AnObjectIsSettledAFullRoundAfterItsDecodingEnded)
{
    const EmbeddedObject& object = AddStarted("a-never");
    while (object.CurrentState() != EmbeddedObject::State::kDecoded) {
        YieldToAnyThread();
    }
    page.ObserveObjects(); // of the round in which it ended
    EXPECT_FALSE(object.IsSettled());
    page.ObserveObjects();
    EXPECT_TRUE(object.IsSettled());
}

TEST_F(PageTest, AMovieThatHasSettledAndNeedsNothingIsGivenTimeOncePerTick)
{
    const EmbeddedObject& object = AddStarted("a");
    EXPECT_TRUE(object.IsIdleDue(clock.Now(), true));
    for (int i = 0; i < 10; ++i) {
        YieldToAnyThread();
        page.IdleObjects();
        page.DrawChanges();
        page.ObserveObjects();
    }
    ASSERT_TRUE(object.IsSettled());
    EXPECT_FALSE(object.IsIdleDue(clock.Now(), true));
    EXPECT_TRUE(object.IsIdleDue(clock.Now() + viewer::kTickMicroseconds, true));
}

TEST_F(PageTest, NewRowsOfAnImageAreDrawn30TimesASecond)
{
    EmbeddedObject& object = AddStarted("a");
    RunToEnd();
    const int displays = plugins.Count("display a");
    object.TakeDecodedRows(0, 10);
    page.DrawChanges();
    EXPECT_EQ(plugins.Count("display a"), displays + 1);
    object.TakeDecodedRows(10, 20);
    page.DrawChanges();
    EXPECT_EQ(plugins.Count("display a"), displays + 1);
    clock.AdvanceTo(40'000);
    page.DrawChanges();
    EXPECT_EQ(plugins.Count("display a"), displays + 2);
}

} // namespace
