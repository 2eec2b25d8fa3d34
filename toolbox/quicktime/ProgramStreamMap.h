// SPDX-License-Identifier: MIT
//
// The packet of a systems stream that says what its streams are (ISO 13818-1 2.5.4). It spares the
// demultiplexer guessing from what comes first, for which it asks each of the some 350 formats it
// knows: 2 MB of code that is otherwise never touched.
#pragma once

#include "toolbox/Types.h"

#include <cstddef>
#include <vector>

namespace toolbox
{

// A map that tells of the stream of pictures `streamId` (0xE0 …) that it is MPEG.
std::vector<UInt8> MakeProgramStreamMap(UInt8 streamId);

// The same for the first stream of pictures in `bytes`, the beginning of a systems stream; empty if
// none of its packets begins there, or not with an MPEG sequence header (ISO 11172-2, 13818-2).
std::vector<UInt8> MakeProgramStreamMapFor(const UInt8* bytes, size_t count);

} // namespace toolbox
