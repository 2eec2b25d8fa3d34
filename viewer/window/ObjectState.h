// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/EmbeddedObject.h"

#include <optional>
#include <string>

namespace viewer
{

// What a caption says of an object: type, size, state; for example
// "video/mpeg · 352 × 240 · 1.2 MB · playing".
std::string DescribeState(EmbeddedObject& object);
// How much of it has been taken in, of a hundred; none where its length is not known.
std::optional<int> PercentArrived(EmbeddedObject& object);
// "14 bytes", "3 KB", "1.2 MB".
std::string DescribeSize(SInt64 bytes);

} // namespace viewer
