// SPDX-License-Identifier: MIT
//
// The packet of a systems stream that says what its streams are (ISO 13818-1 2.5.4). Where reading
// begins in mid-data it spares the demultiplexer guessing from whatever comes first.
#pragma once

#include "toolbox/Types.h"

#include <vector>

namespace toolbox
{

// A map that tells of the stream of pictures `streamId` (0xE0 …) that it is MPEG.
std::vector<UInt8> MakeProgramStreamMap(UInt8 streamId);

} // namespace toolbox
