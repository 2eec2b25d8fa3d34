// SPDX-License-Identifier: MIT
//
// The pictures of the page that were asked for.
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"
#include "viewer/Options.h"

namespace viewer
{

class Snapshots
{
public:
    explicit Snapshots(std::vector<SnapshotRequest> requests);

    // Writes those that are due by the page's clock.
    void TakeDue(CGrafPtr port, SInt64 now);
    // Writes those for the end.
    void TakeLast(CGrafPtr port);
    // When one is due next.
    std::optional<SInt64> NextTime() const;
    // One could not be written; the user has been told.
    bool Failed() const { return failed_; }

private:
    void Take(CGrafPtr port, const std::string& path);

    std::vector<SnapshotRequest> requests_; // in the order of their times, those for the end last
    size_t next_ = 0;
    bool failed_ = false;
};

} // namespace viewer
