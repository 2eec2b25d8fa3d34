// SPDX-License-Identifier: MIT
#include "viewer/InfoTable.h"

#include <gtest/gtest.h>

namespace
{

TEST(InfoTable, HasALineForEachObject)
{
    viewer::PageReport report;
    viewer::ObjectReport clip;
    clip.name = "clip.mpg";
    clip.type = "video/mpeg";
    clip.plugin = "VornMovie";
    clip.wholeBytes = 123456;
    clip.width = 352;
    clip.height = 240;
    clip.durationSeconds = 4;
    clip.shown = true;
    viewer::ObjectReport text;
    text.name = "\u00E4.txt";
    text.error = -50;
    report.objects = {clip, text};
    EXPECT_EQ(viewer::DescribeObjects(report),
              "NAME      TYPE        PLUG-IN     BYTES     SIZE  SECONDS  STATE\n"
              "clip.mpg  video/mpeg  VornMovie  123456  352x240     4.00  ok\n"
              "\u00E4.txt     -           -               -        -        -  error -50\n");
}

TEST(InfoTable, CountsTheParagraphs)
{
    viewer::PageReport report;
    report.text = {"one", "two"};
    EXPECT_TRUE(viewer::DescribeObjects(report).ends_with("\nand 2 paragraphs of text\n"));
}

} // namespace
