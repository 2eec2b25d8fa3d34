// SPDX-License-Identifier: MIT
//
// The platform's run-length packing. A packet is a flag and then what it speaks of: the flag's
// value plus one units as they are (0 to 127), or one unit that stands 257 minus the flag times
// (129 to 255). 128 is never written, as readers disagree about it.
#pragma once

#include "toolbox/Types.h"

namespace toolbox
{

// What the packed form of `size` bytes may take, whatever they are.
size_t MaxPackedSize(size_t size);

// Packs `size` bytes by single bytes; returns how many were written at `packed`.
size_t PackBytes(const UInt8* bytes, size_t size, UInt8* packed);
// The same by units of two bytes; `size` is even.
size_t PackWords(const UInt8* bytes, size_t size, UInt8* packed);

} // namespace toolbox
