// SPDX-License-Identifier: MIT
#include "viewer/Report.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sys/resource.h>

namespace viewer
{
namespace
{

using Json = nlohmann::ordered_json;

Json ToJson(const std::optional<FirstPicture>& first)
{
    if (!first) {
        return nullptr;
    }
    return {{"seconds", first->seconds}, {"bytes", first->bytes}};
}

Json ToJson(const ObjectReport& object)
{
    const Rect& rect = object.rect;
    return {
        {"name", object.name},
        {"type", object.type},
        {"plugin", object.plugin},
        {"bytes", object.bytes},
        {"complete", object.complete},
        {"error", object.error},
        {"rect", {rect.top, rect.left, rect.bottom, rect.right}},
        {"comment", object.comment},
        {"first_picture", ToJson(object.firstPicture)},
        {"pictures_shown", object.picturesShown},
        {"pictures_dropped", object.picturesDropped},
        {"sound_samples", object.soundSamples},
        {"duration_seconds", object.durationSeconds},
    };
}

double ToSeconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

std::string WriteReport(const PageReport& report)
{
    Json objects = Json::array();
    for (const ObjectReport& object : report.objects) {
        objects.push_back(ToJson(object));
    }
    Json json = {
        {"objects", objects},
        {"seconds", report.seconds},
        {"cpu_seconds", report.cpuSeconds},
        {"peak_rss_bytes", report.peakRssBytes},
    };
    if (!report.text.empty()) {
        json["text"] = report.text;
    }
    return json.dump(1, ' ', false, Json::error_handler_t::replace) + '\n';
}

int ExitStatusOf(const PageReport& report)
{
    return std::all_of(report.objects.begin(), report.objects.end(),
                       [](const ObjectReport& object) { return object.shown; })
               ? 0
               : 1;
}

void MeasureProcess(PageReport& report)
{
    constexpr SInt64 kBytesPerUnit = 1024; // of ru_maxrss
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    report.cpuSeconds = ToSeconds(usage.ru_utime) + ToSeconds(usage.ru_stime);
    report.peakRssBytes = usage.ru_maxrss * kBytesPerUnit;
}

} // namespace viewer
