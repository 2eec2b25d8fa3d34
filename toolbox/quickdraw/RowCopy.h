// SPDX-License-Identifier: MIT
//
// Moving pixels between rows of the same depth as they are.
#pragma once

#include "toolbox/Types.h"

namespace toolbox
{

// Whether CopyRow may be used on overlapping pixels of one row.
bool MayOverlap(int depth, int fromColumn, int toColumn);
void CopyRow(const UInt8* from, int fromColumn, UInt8* to, int toColumn, int depth, int count);

} // namespace toolbox
