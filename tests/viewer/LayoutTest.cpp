// SPDX-License-Identifier: MIT
#include "viewer/Layout.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

using viewer::AreaForPicture;
using viewer::AreaSize;
using viewer::kObjectGap;
using viewer::LayOutRows;

std::vector<int> Sides(const Rect& rect)
{
    return {rect.top, rect.left, rect.bottom, rect.right};
}

TEST(Layout, APageWithoutObjectsIsEmpty)
{
    EXPECT_TRUE(LayOutRows({}, 800).objects.empty());
}

TEST(Layout, ObjectsStandInARowWithAGapBetweenThem)
{
    const std::vector<Rect> rects = LayOutRows({{100, 50}, {200, 80}}, 800).objects;
    EXPECT_EQ(Sides(rects[0]), (std::vector<int>{0, 0, 50, 100}));
    EXPECT_EQ(Sides(rects[1]), (std::vector<int>{0, 108, 80, 308}));
}

TEST(Layout, AFullRowIsFollowedByAnotherBelowItsHighestObject)
{
    const std::vector<Rect> rects = LayOutRows({{100, 50}, {100, 80}, {100, 10}}, 208).objects;
    EXPECT_EQ(Sides(rects[1]), (std::vector<int>{0, 108, 80, 208}));
    EXPECT_EQ(Sides(rects[2]), (std::vector<int>{88, 0, 98, 100}));
}

TEST(Layout, AnObjectWiderThanThePageHasARowOfItsOwn)
{
    const std::vector<Rect> rects = LayOutRows({{10, 10}, {500, 20}, {10, 10}}, 300).objects;
    EXPECT_EQ(Sides(rects[1]), (std::vector<int>{18, 0, 38, 500}));
    EXPECT_EQ(Sides(rects[2]), (std::vector<int>{46, 0, 56, 10}));
}

TEST(Layout, AParagraphStandsAboveTheObjectThatFollowsItAndBelowTheOneBefore)
{
    const auto [objects, captions, paragraphs] =
        LayOutRows({{100, 50}, {100, 80}}, 800, {}, {{1, 30}});
    EXPECT_EQ(Sides(objects[0]), (std::vector<int>{0, 0, 50, 100}));
    EXPECT_EQ(Sides(paragraphs[0]), (std::vector<int>{58, 0, 88, 800}));
    EXPECT_EQ(Sides(objects[1]), (std::vector<int>{96, 0, 176, 100}));
}

TEST(Layout, ParagraphsKeepTheirOwnDistanceAndThePagesMargin)
{
    const viewer::PageStyle style = {10, 8, 0, 0, 0xFF, 5};
    const auto [objects, captions, paragraphs] =
        LayOutRows({{100, 50}}, 800, style, {{0, 30}, {0, 20}});
    EXPECT_EQ(Sides(paragraphs[0]), (std::vector<int>{10, 10, 40, 790}));
    EXPECT_EQ(Sides(paragraphs[1]), (std::vector<int>{45, 10, 65, 790}));
    EXPECT_EQ(Sides(objects[0]), (std::vector<int>{73, 10, 123, 110}));
}

TEST(Layout, AParagraphStandsBelowTheCaptionsOfTheHighestObjectBefore)
{
    const viewer::PageStyle style = {0, 8, 40, 0, 0xFF, 5};
    const auto places = LayOutRows({{100, 50}, {100, 80}}, 800, style, {{2, 30}});
    EXPECT_EQ(places.paragraphs[0].top, 80 + 40 + 8);
}

TEST(Layout, APageOfParagraphsAloneHasThemAll)
{
    const auto [objects, captions, paragraphs] = LayOutRows({}, 800, {}, {{0, 30}, {0, 20}});
    EXPECT_TRUE(objects.empty());
    EXPECT_EQ(paragraphs.size(), 2U);
}

TEST(Layout, WhatStandsBehindAParagraphWithoutEndIsCutOff)
{
    const auto [objects, captions, paragraphs] = LayOutRows({{100, 50}}, 800, {}, {{0, 2'000'000}});
    EXPECT_EQ(paragraphs[0].bottom, 32767);
    EXPECT_EQ(Sides(objects[0]), (std::vector<int>{32767, 0, 32767, 100}));
}

TEST(Layout, CoordinatesEndAt32767)
{
    const std::vector<Rect> rects =
        LayOutRows(std::vector<AreaSize>(20, {700, 20000}), 800).objects;
    EXPECT_EQ(rects.back().top, 32767);
    EXPECT_EQ(rects.back().bottom, 32767);
}

TEST(Layout, RandomObjectsNeverOverlapAndStayInReadingOrder)
{
    std::mt19937 random(3);
    std::uniform_int_distribution<int> side(0, 150);
    for (int round = 0; round < 100; ++round) {
        std::vector<AreaSize> areas;
        for (int i = 0; i < 20; ++i) {
            areas.push_back({static_cast<SInt16>(side(random)), static_cast<SInt16>(side(random))});
        }
        const std::vector<Rect> rects = LayOutRows(areas, 400).objects;
        for (size_t i = 0; i + 1 < rects.size(); ++i) {
            const bool sameRow = rects[i].top == rects[i + 1].top &&
                                 rects[i + 1].left == rects[i].right + kObjectGap;
            const bool nextRow =
                rects[i + 1].left == 0 && rects[i + 1].top >= rects[i].bottom + kObjectGap;
            EXPECT_TRUE(sameRow || nextRow);
            EXPECT_LE(rects[i].right, 400);
        }
    }
}

TEST(Layout, APictureThatFitsKeepsItsSize)
{
    const AreaSize area = AreaForPicture({352, 257}, 0x1F, 352);
    EXPECT_EQ(area.width, 352);
    EXPECT_EQ(area.height, 257);
}

TEST(Layout, AWiderPictureShrinksInProportion)
{
    const AreaSize area = AreaForPicture({1600, 900}, 0x1F, 800);
    EXPECT_EQ(area.width, 800);
    EXPECT_EQ(area.height, 450);
}

TEST(Layout, WithoutKeepAspectOnlyTheWidthShrinks)
{
    const AreaSize area = AreaForPicture({1600, 900}, 0x01, 800);
    EXPECT_EQ(area.width, 800);
    EXPECT_EQ(area.height, 900);
}

TEST(Layout, WithoutScaleAPictureOverhangsThePage)
{
    EXPECT_EQ(AreaForPicture({1600, 900}, 0x00, 800).width, 1600);
}

} // namespace
