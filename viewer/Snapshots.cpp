// SPDX-License-Identifier: MIT
#include "viewer/Snapshots.h"

#include "viewer/Console.h"
#include "viewer/PngWriter.h"

#include <algorithm>

namespace viewer
{
namespace
{

SInt64 TimeOf(const SnapshotRequest& request)
{
    return request.at.value_or(INT64_MAX);
}

} // namespace

Snapshots::Snapshots(std::vector<SnapshotRequest> requests) : requests_(std::move(requests))
{
    std::stable_sort(requests_.begin(), requests_.end(),
                     [](const auto& a, const auto& b) { return TimeOf(a) < TimeOf(b); });
}

void Snapshots::TakeDue(CGrafPtr port, SInt64 now)
{
    while (next_ < requests_.size() && TimeOf(requests_[next_]) <= now) {
        Take(port, requests_[next_++].path);
    }
}

void Snapshots::TakeLast(CGrafPtr port)
{
    for (const SnapshotRequest& request : requests_) {
        if (!request.at) {
            Take(port, request.path);
        }
    }
}

std::optional<SInt64> Snapshots::NextTime() const
{
    return next_ < requests_.size() ? requests_[next_].at : std::nullopt;
}

void Snapshots::Take(CGrafPtr port, const std::string& path)
{
    try {
        WritePng(port, path);
    } catch (const std::runtime_error& problem) {
        failed_ = true;
        Console::Tell("", problem.what());
    }
}

} // namespace viewer
