// SPDX-License-Identifier: MIT
//
// What has a page for itself, in windows of many sizes.
#include "viewer/window/WindowFit.h"

#include "tests/viewer/window/UnseenWindow.h"

namespace
{

using viewer::EmbeddedObject;
using viewer::kControllerRows;
using Single = viewer::Page::Single;

constexpr int kMargin = 10;
constexpr int kCaption = 30;

class WindowFitTest : public UnseenWindow
{
protected:
    WindowFitTest()
    {
        page.SetStyle({kMargin, 8, kCaption, 0, 0xF4}, viewer::Page::Height::kGrows);
        fit.Open({300, 200}, Single::kInMiddle, 1);
    }
    // Its picture is 100 by 33 pixels large.
    EmbeddedObject& AddShown(const std::string& name)
    {
        EmbeddedObject& object = AddStarted(name);
        RunToEnd();
        return object;
    }
    void Resize(int width, int height)
    {
        SetSize(width, height);
        fit.TakeWindowSize();
        page.DrawChanges();
    }
    static int WidthOf(const EmbeddedObject& object)
    {
        return object.Area().right - object.Area().left;
    }
    static int HeightOf(const EmbeddedObject& object)
    {
        return object.Area().bottom - object.Area().top;
    }

    viewer::WindowFit fit{page, window, true};
};

TEST_F(WindowFitTest, OpensWithTheObjectInTheMiddleAtItsOwnSize)
{
    const EmbeddedObject& object = AddShown("a");
    EXPECT_EQ(WidthOf(object), 100);
    EXPECT_EQ(object.Area().left, (300 - 100) / 2);
    EXPECT_EQ(object.Area().top, (200 - HeightOf(object) - kCaption) / 2);
}

TEST_F(WindowFitTest, TheObjectGrowsWithTheWindowButForItsController)
{
    const EmbeddedObject& object = AddShown("a");
    Resize(2 * kMargin + 500, 600);
    EXPECT_EQ(WidthOf(object), 500);
    EXPECT_EQ(HeightOf(object), 5 * 33 + kControllerRows);
    EXPECT_EQ(object.Area().left, kMargin);
    EXPECT_EQ(object.Area().top, (600 - HeightOf(object) - kCaption) / 2);
}

TEST_F(WindowFitTest, ItShrinksWithTheWindowUntilItsCaptionFitsToo)
{
    const EmbeddedObject& object = AddShown("a");
    Resize(300, 2 * kMargin + kCaption + kControllerRows + 16);
    EXPECT_EQ(HeightOf(object), 16 + kControllerRows);
    EXPECT_EQ(WidthOf(object), 48);
    EXPECT_EQ(page.ContentHeight(), window.Height());
}

TEST_F(WindowFitTest, ItsCaptionIsAsWideAsTheWindow)
{
    const EmbeddedObject& object = AddShown("a");
    Resize(700, 150);
    EXPECT_EQ(object.CaptionArea().left, kMargin);
    EXPECT_EQ(object.CaptionArea().right, 700 - kMargin);
    EXPECT_EQ(object.CaptionArea().top, object.Area().bottom);
}

TEST_F(WindowFitTest, AWindowWithoutRoomStillHasAnObject)
{
    const EmbeddedObject& object = AddShown("a");
    Resize(8, 8);
    EXPECT_EQ(WidthOf(object), 1);
    EXPECT_EQ(HeightOf(object), 1 + kControllerRows);
    EXPECT_EQ(object.Area().left, kMargin);
}

TEST_F(WindowFitTest, AnObjectThatTellsItsSizeLaterFitsToo)
{
    Resize(2 * kMargin + 200, 600);
    EXPECT_EQ(WidthOf(AddShown("a")), 200);
}

TEST_F(WindowFitTest, ZoomingByHandBeginsAtTheSizeThatFitsAndEndsTheFollowing)
{
    const EmbeddedObject& object = AddShown("a");
    Resize(2 * kMargin + 400, 600);
    fit.ZoomBy(0.5);
    page.DrawChanges();
    EXPECT_EQ(WidthOf(object), 200);
    Resize(700, 650);
    EXPECT_EQ(WidthOf(object), 200);
    EXPECT_EQ(object.Area().left, 250);
}

TEST_F(WindowFitTest, AfterZoomingByHandAResetFitsAndASecondOneShowsItsOwnSize)
{
    const EmbeddedObject& object = AddShown("a");
    Resize(2 * kMargin + 400, 600);
    fit.ZoomBy(0.5);
    fit.ResetZoom();
    page.DrawChanges();
    EXPECT_EQ(WidthOf(object), 400);
    fit.ResetZoom();
    page.DrawChanges();
    EXPECT_EQ(WidthOf(object), 100);
}

TEST_F(WindowFitTest, WhereItOpenedEnlargedAResetShowsItsOwnSize)
{
    const EmbeddedObject& object = AddShown("a");
    fit.Open({300, 200}, Single::kInMiddle, 2);
    fit.ResetZoom();
    page.DrawChanges();
    EXPECT_EQ(WidthOf(object), 100);
}

TEST_F(WindowFitTest, AnEnlargementPastTheKeysOwnLimitIsNotTakenBackByThem)
{
    const EmbeddedObject& object = AddShown("a");
    Resize(2 * kMargin + 1000, 900);
    fit.ZoomBy(1.25);
    page.DrawChanges();
    EXPECT_EQ(WidthOf(object), 1000);
}

TEST_F(WindowFitTest, ComingBackFromTheFullScreenIsNoNewSize)
{
    const EmbeddedObject& object = AddShown("a");
    fit.ShowAlone(&object);
    fit.TakeWindowSize();
    page.DrawChanges();
    EXPECT_EQ(WidthOf(object), window.Width());
    fit.ShowAlone(nullptr);
    page.DrawChanges();
    Resize(300, 200);
    EXPECT_EQ(WidthOf(object), 100);
}

TEST_F(WindowFitTest, WhatStandsInARowBeginsToFollowWhenTheWindowChanges)
{
    const EmbeddedObject& object = AddShown("a");
    fit.Open({300, 200}, Single::kInRow, 1);
    page.DrawChanges();
    EXPECT_EQ(object.Area().left, kMargin);
    Resize(2 * kMargin + 200, 300);
    EXPECT_EQ(WidthOf(object), 200);
}

TEST_F(WindowFitTest, AScreenThatGivesAnotherSizeThanWasAskedForIsFollowedAtOnce)
{
    const EmbeddedObject& object = AddShown("a");
    SetSize(2 * kMargin + 200, 300);
    fit.Open({300, 200}, Single::kInMiddle, 1);
    page.DrawChanges();
    EXPECT_EQ(WidthOf(object), 200);
}

TEST_F(WindowFitTest, PlacesThatSomebodyCountsOnStay)
{
    const EmbeddedObject& object = AddShown("a");
    viewer::WindowFit still(page, window, false);
    still.Open({300, 200}, Single::kInRow, 1);
    SetSize(500, 400);
    still.TakeWindowSize();
    still.ResetZoom();
    page.DrawChanges();
    EXPECT_EQ(object.Area().left, kMargin);
    EXPECT_EQ(WidthOf(object), 100);
}

TEST_F(WindowFitTest, SeveralObjectsKeepTheirSizesAndRows)
{
    const EmbeddedObject& first = AddShown("a");
    const EmbeddedObject& second = AddShown("b");
    Resize(700, 600);
    EXPECT_EQ(WidthOf(first), 100);
    EXPECT_EQ(first.Area().left, kMargin);
    EXPECT_EQ(second.Area().left, kMargin + 100 + 8);
}

TEST_F(WindowFitTest, AnObjectBesideTextKeepsItsSizeAndPlace)
{
    page.Texts().SetMeasure([](size_t, SInt16, double) { return 20; });
    page.Texts().Add({"above", 0});
    const EmbeddedObject& object = AddShown("a");
    Resize(700, 600);
    EXPECT_EQ(WidthOf(object), 100);
    EXPECT_EQ(object.Area().top, kMargin + 20 + 8);
}

} // namespace
