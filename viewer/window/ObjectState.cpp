// SPDX-License-Identifier: MIT
#include "viewer/window/ObjectState.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cmath>
#include <cstdio>

namespace viewer
{
namespace
{

constexpr SInt64 kKilobyte = 1000;
constexpr SInt64 kMegabyte = 1000 * kKilobyte;

std::string DescribeLoading(EmbeddedObject& object)
{
    if (const std::optional<int> percent = PercentArrived(object)) {
        return "loading " + std::to_string(*percent) + " %";
    }
    return "loading, " + DescribeSize(object.Bytes().HandedOut());
}

std::string DescribeDoing(EmbeddedObject& object)
{
    if (!object.Problem().empty()) {
        return object.HasDimensions() ? object.Problem() : "not shown";
    }
    if (object.CurrentState() == EmbeddedObject::State::kWaiting) {
        return "waiting";
    }
    const MovieStatistics statistics = object.Statistics();
    if (statistics.waiting != 0) {
        return "waiting for bytes";
    }
    const std::string loading = object.IsSettled() ? "" : DescribeLoading(object);
    const std::string playing = DescribePlaying(statistics);
    if (playing.empty() || loading.empty()) {
        return playing.empty() && loading.empty() ? "ready" : playing + loading;
    }
    return playing + ", " + loading;
}

std::string DescribeClock(SInt64 seconds)
{
    constexpr SInt64 kMinute = 60;
    constexpr SInt64 kHour = 60 * kMinute;
    std::array<char, 48> text{};
    if (seconds < kHour) {
        std::snprintf(text.data(), text.size(), "%" PRId64 ":%02" PRId64, seconds / kMinute,
                      seconds % kMinute);
    } else {
        std::snprintf(text.data(), text.size(), "%" PRId64 ":%02" PRId64 ":%02" PRId64,
                      seconds / kHour, seconds % kHour / kMinute, seconds % kMinute);
    }
    return text.data();
}

std::string DescribeDimensions(const EmbeddedObject& object)
{
    const AreaSize size = object.PictureSize();
    return std::to_string(size.width) + " \u00D7 " + std::to_string(size.height);
}

} // namespace

std::string NameToShow(const std::string& name, const std::string& fileName)
{
    if (name == "-") {
        return "standard input";
    }
    return fileName.empty() ? name : fileName;
}

std::string DescribeSize(SInt64 bytes)
{
    if (bytes < kKilobyte) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    if (bytes < kMegabyte) {
        return std::to_string(bytes / kKilobyte) + " KB";
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f MB",
                  static_cast<double>(bytes) / static_cast<double>(kMegabyte));
    return text.data();
}

// A second has passed when it is over, but at its end all of a movie has.
std::string DescribeTime(const MovieStatistics& movie)
{
    if (movie.durationSeconds <= 0) {
        return "";
    }
    const SInt64 duration = std::llround(movie.durationSeconds);
    const auto passed = static_cast<SInt64>(std::max(0.0, movie.timeSeconds));
    return DescribeClock(movie.atEnd ? duration : passed) + " / " + DescribeClock(duration);
}

std::string DescribePlaying(const MovieStatistics& movie)
{
    if (movie.playing != 0) {
        return "playing";
    }
    if (movie.atEnd != 0) {
        return "finished";
    }
    return movie.timeSeconds > 0 ? "paused" : "";
}

std::optional<int> PercentArrived(EmbeddedObject& object)
{
    if (!object.HasBytes() || object.Bytes().EstimatedBytes() <= 0) {
        return std::nullopt;
    }
    const SInt64 percent =
        SInt64{object.Bytes().HandedOut()} * 100 / object.Bytes().EstimatedBytes();
    return static_cast<int>(std::clamp<SInt64>(percent, 0, 100));
}

std::vector<std::string> DescribeState(EmbeddedObject& object)
{
    std::vector<std::string> parts;
    if (!object.MimeType().empty()) {
        parts.push_back(object.MimeType());
    }
    if (object.HasBytes() && object.Bytes().EstimatedBytes() > 0) {
        parts.push_back(DescribeSize(object.Bytes().EstimatedBytes()));
    }
    if (object.HasDimensions() && !object.IsSoundOnly()) {
        parts.push_back(DescribeDimensions(object));
    }
    if (object.HasDimensions()) {
        const std::string time = DescribeTime(object.Statistics());
        parts.insert(parts.end(), time.empty() ? 0 : 1, time);
    }
    parts.push_back(DescribeDoing(object));
    return parts;
}

} // namespace viewer
