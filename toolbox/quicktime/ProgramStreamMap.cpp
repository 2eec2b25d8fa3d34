// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/ProgramStreamMap.h"

namespace toolbox
{

std::vector<UInt8> MakeProgramStreamMap(UInt8 streamId)
{
    constexpr UInt8 kMpegPictures = 0x02;
    return {
        0,        0,    1,
        0xBC,           // start code
        0,        14,   // bytes that follow
        0xE0,     0xFF, // in force now, version 0
        0,        0,    // no descriptors of the whole
        0,        4,    kMpegPictures,
        streamId,    // one stream …
        0,        0, // … without descriptors
        0,        0,    0,
        0 // the checksum, which nobody here looks at
    };
}

} // namespace toolbox
