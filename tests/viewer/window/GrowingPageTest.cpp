// SPDX-License-Identifier: MIT
//
// A page as a window shows it.
#include "viewer/Page.h"

#include "tests/viewer/PageFixture.h"

namespace
{

using viewer::EmbeddedObject;

class GrowingPageTest : public PageFixture
{
protected:
    GrowingPageTest() { page.SetStyle({10, 8, 30, 0, 0xF4}, viewer::Page::Height::kGrows); }

    EmbeddedObject& AddShown(const std::string& name)
    {
        EmbeddedObject& object = Add(name);
        Run(object);
        return object;
    }
    void Run(EmbeddedObject& object)
    {
        object.Start(*plugins.Folder().Bundles()[0]);
        RunToEnd();
    }
    Rect PortBounds() const
    {
        Rect bounds{};
        return *GetPortBounds(page.Port(), &bounds);
    }
};

TEST_F(GrowingPageTest, LeavesAMarginAndRoomForACaption)
{
    Add("a");
    Add("b");
    page.DrawChanges();
    EXPECT_EQ(page.Objects()[0]->Area().left, 10);
    EXPECT_EQ(page.Objects()[0]->Area().top, 10);
    EXPECT_EQ(page.Objects()[1]->Area().top, 10 + 120 + 30 + 8);
}

TEST_F(GrowingPageTest, ThePortIsAsHighAsThePage)
{
    Add("a");
    Add("b");
    page.DrawChanges();
    EXPECT_EQ(page.ContentHeight(), 10 + 120 + 30 + 8 + 120 + 30 + 10);
    EXPECT_EQ(PortBounds().bottom, page.ContentHeight());
    EXPECT_EQ(GreyAt(page.ContentHeight() - 1, 0), 0xF4);
}

TEST_F(GrowingPageTest, ThePortIsAtLeastAsHighAsTheWindow)
{
    Add("a");
    page.DrawChanges();
    EXPECT_EQ(PortBounds().bottom, 200);
}

TEST_F(GrowingPageTest, ObjectsKeepThePortWhenItGrows)
{
    const CGrafPtr port = page.Port();
    for (const char* name : {"a", "b", "c", "d"}) {
        Add(name);
    }
    page.DrawChanges();
    EXPECT_EQ(page.Port(), port);
}

TEST_F(GrowingPageTest, AWiderWindowPutsObjectsSideBySide)
{
    Add("a");
    Add("b");
    page.DrawChanges();
    page.Reshape({400, 200});
    page.DrawChanges();
    EXPECT_EQ(page.Objects()[1]->Area().top, 10);
    EXPECT_EQ(PortBounds().right, 400);
}

TEST_F(GrowingPageTest, ZoomEnlargesAnObject)
{
    const EmbeddedObject& object = AddShown("a");
    const int before = object.Area().right - object.Area().left;
    page.Reshape({300, 200, 2.0});
    page.DrawChanges();
    EXPECT_EQ(object.Area().right - object.Area().left, 2 * before);
}

TEST_F(GrowingPageTest, ZoomKeepsTheHeightOfAController)
{
    const EmbeddedObject& object = AddShown("a");
    const int picture = object.NaturalSize().height - viewer::kControllerRows;
    page.Reshape({300, 200, 2.0});
    page.DrawChanges();
    EXPECT_EQ(object.Area().bottom - object.Area().top, 2 * picture + viewer::kControllerRows);
}

// Its own proportions would be those with the controller.
TEST_F(GrowingPageTest, OnlyAnObjectOfItsOwnSizeKeepsItsProportionsItself)
{
    EmbeddedObject& object = AddShown("a");
    EXPECT_EQ(object.Report().comment, "flags 31");
    page.Reshape({300, 200, 2.0});
    page.DrawChanges();
    EXPECT_EQ(object.Report().comment, "flags 25");
    page.Reshape({300, 200});
    page.DrawChanges();
    EXPECT_EQ(object.Report().comment, "flags 31");
}

TEST_F(GrowingPageTest, ANarrowPageShrinksAMovieInProportionToItsPicture)
{
    const EmbeddedObject& object = AddShown("a");
    page.Reshape({70, 200});
    page.DrawChanges();
    EXPECT_EQ(object.Area().right - object.Area().left, 50);
    EXPECT_EQ(object.Area().bottom - object.Area().top, 33 / 2 + viewer::kControllerRows);
}

TEST_F(GrowingPageTest, AParagraphMovesWithTheObjectAboveItAndLeavesNothingBehind)
{
    page.Texts().SetMeasure([](size_t, SInt16, double) { return 20; });
    Add("a");
    page.Texts().Add({"below", 1});
    page.DrawChanges();
    const Rect before = page.Texts().Area(0);
    page.Texts().TakeMoved();
    SInt32 rowBytes = 0;
    page.PixelsToDraw(before, rowBytes)[(before.bottom - 1) * rowBytes + 250 * 4 + 1] = 0;
    EmbeddedObject& object = *page.Objects()[0];
    Run(object);
    ASSERT_NE(object.Area().bottom, 10 + 120);
    EXPECT_EQ(page.Texts().Area(0).top, object.Area().bottom + 30 + 8);
    EXPECT_EQ(page.Texts().TakeMoved(), std::vector<size_t>{0});
    EXPECT_EQ(GreyAt(before.bottom - 1, 250), 0xF4);
}

TEST_F(GrowingPageTest, AnObjectAloneHasNoParagraphsBesideIt)
{
    page.Texts().SetMeasure([](size_t, SInt16, double) { return 20; });
    page.Texts().Add({"above", 0});
    EmbeddedObject& object = AddShown("a");
    page.Reshape({300, 200, 1.0, &object});
    page.DrawChanges();
    EXPECT_EQ(page.Texts().Area(0).right, 0);
    page.Reshape({300, 200});
    page.DrawChanges();
    EXPECT_EQ(page.Texts().Area(0).top, 10);
    EXPECT_EQ(object.Area().top, 10 + 20 + 8);
}

TEST_F(GrowingPageTest, EveryObjectIsDisplayedAgainAfterAChangeOfShape)
{
    AddShown("a");
    const int before = plugins.Count("display a");
    page.Reshape({320, 200});
    page.DrawChanges();
    EXPECT_GT(plugins.Count("display a"), before);
}

TEST_F(GrowingPageTest, AnObjectAloneFillsTheWindowInProportion)
{
    AddShown("a");
    EmbeddedObject& object = AddShown("b");
    const viewer::AreaSize natural = object.NaturalSize();
    page.Reshape({static_cast<SInt16>(natural.width * 3), static_cast<SInt16>(natural.height * 4),
                  1.0, &object});
    page.DrawChanges();
    const int height = 3 * (natural.height - viewer::kControllerRows) + viewer::kControllerRows;
    EXPECT_EQ(object.Area().right - object.Area().left, natural.width * 3);
    EXPECT_EQ(object.Area().bottom - object.Area().top, height);
    EXPECT_EQ(object.Area().top, (natural.height * 4 - height) / 2);
    EXPECT_EQ(page.Objects()[0]->Area().right, 0);
}

TEST_F(GrowingPageTest, WhatIsDrawnBesidesObjectsCountsAsChanged)
{
    page.DrawChanges();
    page.TakeChanges();
    SInt32 rowBytes = 0;
    page.PixelsToDraw({50, 60, 70, 80}, rowBytes);
    const std::vector<Rect> changes = page.TakeChanges();
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].top, 50);
    EXPECT_EQ(changes[0].right, 80);
}

} // namespace
