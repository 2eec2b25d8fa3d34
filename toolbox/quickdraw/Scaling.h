// SPDX-License-Identifier: MIT
//
// Where the pixels of a scaled copy come from.
#pragma once

#include "toolbox/quickdraw/Palette.h"

namespace toolbox
{

// What one column (or row) of the target is made of: source columns first to last, of which the
// outer two may count by a part only. Weights are in parts of a column, of which it has `whole`;
// together they are less than 65536.
struct SourceRange {
    int first;
    int last;
    int firstWeight;
    int lastWeight; // of a single column: 0
    int whole;

    int WeightOf(int column) const
    {
        return column == first ? firstWeight : column == last ? lastWeight : whole;
    }
    int Weight() const;
    // Only what lies in [low, high), which must be something.
    SourceRange Within(int low, int high) const;
};

// One direction of a scaled copy: [from, from + fromSize) of the source onto [to, to + toSize) of
// the target. Shrinking averages, enlarging takes the nearest.
struct Axis {
    int from;
    int fromSize;
    int to;
    int toSize;

    bool IsScaled() const { return fromSize != toSize; }
    bool Averages() const { return fromSize > toSize; }
    SourceRange RangeOf(int target) const;
    // The most columns that a range has.
    int LongestRange() const;
};

// Pixels of `depth` bits (8, 16 or 32) by their columns, as they are.
void PickPixels(const UInt8* from, const SourceRange* columns, int depth, int count, UInt8* to);
// Colours by their columns.
void PickColors(const Color* from, const SourceRange* columns, int count, Color* colors);

} // namespace toolbox
