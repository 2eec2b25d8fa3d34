// SPDX-License-Identifier: MIT
//
// The fetch that both memory sources share.
#pragma once

#include "toolbox/Types.h"

// Copies up to *count bytes from `offset` of `data`, which is `limit` bytes long, on to `dest`;
// the areas may overlap. 0 if all were copied. A request is measured against the bytes left
// *behind* it: one for more than half of what remains is cut to that rest, written to *count (it
// may be negative, nothing is copied then), and answered by kDataNotAvailableErr. At or past the
// limit it is kDataNotAvailableErr with *count untouched. That code is thrown if `mustHaveAll`.
// A negative offset gives kDataOutOfRangeErr, never thrown.
OSErr FetchFromMemory(const void* data, SInt32 limit, void* dest, SInt32 offset, SInt32* count,
                      unsigned char mustHaveAll);
