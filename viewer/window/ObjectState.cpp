// SPDX-License-Identifier: MIT
#include "viewer/window/ObjectState.h"

#include <algorithm>
#include <array>
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
    if (statistics.playing != 0) {
        return loading.empty() ? "playing" : "playing, " + loading;
    }
    return loading.empty() ? "ready" : loading;
}

std::string DescribeDimensions(const EmbeddedObject& object)
{
    const AreaSize size = object.NaturalSize();
    const int bar = object.Bundle()->PlaysMovies() ? kControllerRows : 0;
    return std::to_string(size.width) + " \u00D7 " + std::to_string(size.height - bar);
}

} // namespace

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
    parts.push_back(DescribeDoing(object));
    return parts;
}

} // namespace viewer
