// SPDX-License-Identifier: MIT
#include "viewer/Report.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace
{

using Json = nlohmann::ordered_json;
using viewer::ObjectReport;
using viewer::PageReport;

std::vector<std::string> KeysOf(const Json& json)
{
    std::vector<std::string> keys;
    for (const auto& [key, value] : json.items()) {
        keys.push_back(key);
    }
    return keys;
}

PageReport OneObject()
{
    ObjectReport object;
    object.name = "clip.mpg";
    object.type = "video/mpeg";
    object.plugin = "Some";
    object.bytes = 12345;
    object.complete = true;
    object.rect = {1, 2, 3, 4};
    object.comment = "a comment";
    object.firstPicture = viewer::FirstPicture{0.25, 81920};
    object.picturesShown = 120;
    object.picturesDropped = 3;
    object.soundSamples = 5'000'000'000;
    object.durationSeconds = 4.5;
    object.shown = true;
    return {{object}, 6.5, 0.5, 1 << 20};
}

TEST(Report, HasTheseKeysInThisOrder)
{
    const Json json = Json::parse(WriteReport(OneObject()));
    EXPECT_EQ(KeysOf(json),
              (std::vector<std::string>{"objects", "seconds", "cpu_seconds", "peak_rss_bytes"}));
    EXPECT_EQ(KeysOf(json["objects"][0]),
              (std::vector<std::string>{"name", "type", "plugin", "bytes", "complete", "error",
                                        "rect", "comment", "first_picture", "pictures_shown",
                                        "pictures_dropped", "sound_samples", "duration_seconds"}));
    EXPECT_EQ(KeysOf(json["objects"][0]["first_picture"]),
              (std::vector<std::string>{"seconds", "bytes"}));
}

TEST(Report, TellsWhatHappened)
{
    const Json object = Json::parse(WriteReport(OneObject()))["objects"][0];
    EXPECT_EQ(object["name"], "clip.mpg");
    EXPECT_EQ(object["complete"], true);
    EXPECT_EQ(object["rect"], Json::array({1, 2, 3, 4}));
    EXPECT_EQ(object["first_picture"]["bytes"], 81920);
    EXPECT_EQ(object["sound_samples"], 5'000'000'000);
}

TEST(Report, TheFirstPictureIsNullIfThereWasNone)
{
    PageReport report = OneObject();
    report.objects[0].firstPicture.reset();
    EXPECT_TRUE(Json::parse(WriteReport(report))["objects"][0]["first_picture"].is_null());
}

TEST(Report, AnEmptyPageHasAnEmptyList)
{
    EXPECT_EQ(Json::parse(viewer::WriteReport({}))["objects"], Json::array());
}

TEST(Report, TextThatIsNoUtf8IsRepaired)
{
    PageReport report = OneObject();
    report.objects[0].name = "b\xFF"
                             "d";
    EXPECT_EQ(Json::parse(WriteReport(report))["objects"][0]["name"], "b\xEF\xBF\xBD"
                                                                      "d");
}

TEST(Report, TheExitStatusIs0IfEveryObjectWasShown)
{
    PageReport report = OneObject();
    EXPECT_EQ(ExitStatusOf(report), 0);
    report.objects.push_back({});
    EXPECT_EQ(ExitStatusOf(report), 1);
}

TEST(Report, MeasuresThisProcess)
{
    PageReport report;
    MeasureProcess(report);
    EXPECT_GT(report.cpuSeconds, 0);
    EXPECT_GT(report.peakRssBytes, 1 << 20);
}

} // namespace
