// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/EmbeddedObject.h"

#include <optional>
#include <string>
#include <vector>

namespace viewer
{

// What an object is called in the window. The URL of a folder has no file's name.
std::string NameToShow(const std::string& name, const std::string& fileName);
// What a caption says of an object: type, bytes, size, time, state; for example "video/mpeg",
// "1.2 MB", "352 × 240", "0:12 / 1:00", "playing".
// The parts in that order; what a narrow caption has no room for goes from the front.
std::vector<std::string> DescribeState(EmbeddedObject& object);
// How much of it has been taken in, of a hundred; none where its length is not known.
std::optional<int> PercentArrived(EmbeddedObject& object);
// Where a movie stands and how long it is, as far as known: "0:12 / 1:00", "1:02:03 / 2:00:00".
// Empty where there is none.
std::string DescribeTime(const MovieStatistics& movie);
// "playing", "paused", "finished"; empty for a movie at its beginning.
std::string DescribePlaying(const MovieStatistics& movie);
// "14 bytes", "3 KB", "1.2 MB".
std::string DescribeSize(SInt64 bytes);

} // namespace viewer
