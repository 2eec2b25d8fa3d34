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

// A packet's own header cannot look like a start code, so that the next one is its contents'.
std::vector<UInt8> MakeProgramStreamMapFor(const UInt8* bytes, size_t count)
{
    constexpr UInt8 kSequenceHeader = 0xB3;
    UInt8 pictures = 0;
    for (size_t at = 0; at + 4 <= count; ++at) {
        if (bytes[at] != 0 || bytes[at + 1] != 0 || bytes[at + 2] != 1) {
            continue;
        }
        const UInt8 code = bytes[at + 3];
        if (pictures != 0) {
            return code == kSequenceHeader ? MakeProgramStreamMap(pictures) : std::vector<UInt8>();
        }
        if ((code & 0xF0) == 0xE0) {
            pictures = code;
        }
    }
    return {};
}

} // namespace toolbox
