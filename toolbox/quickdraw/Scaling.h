// SPDX-License-Identifier: MIT
//
// Where the pixels of a scaled copy come from, and averaging them.
#pragma once

#include "toolbox/quickdraw/Palette.h"

#include <vector>

namespace toolbox
{

// What one column (or row) of the target is made of: source columns first to last, of which the
// outer two count by their weights and those between fully.
struct SourceRange {
    int first;
    int last;
    float firstWeight;
    float lastWeight; // of a single column: 0
    float scale;      // one over all weights

    float WeightOf(int column) const
    {
        return column == first ? firstWeight : column == last ? lastWeight : 1;
    }
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
    bool Halves() const { return fromSize == 2 * toSize; }
    SourceRange RangeOf(int target) const;
};

// Averaging goes down the columns first, two rows at a time: `sums` are four components for each
// source column.
void SetSums(const Color* row, float weight, const Color* nextRow, float nextWeight, int count,
             float* sums);
void AddToSums(const Color* row, float weight, const Color* nextRow, float nextWeight, int count,
               float* sums);
// ... and then along the row. `columns` count from the first of the sums; `rowScale` is one over
// the weight of the rows.
void AverageSums(const float* sums, const SourceRange* columns, int count, float rowScale,
                 Color* colors);

// The same where it is halving in both directions, for pixels of four bytes in whatever order:
// `count` averages of two pixels each of both rows.
void AverageFours(const UInt8* row, const UInt8* nextRow, int count, UInt8* averages);

// Pixels of `depth` bits (8, 16 or 32) by their columns, as they are.
void PickPixels(const UInt8* from, const SourceRange* columns, int depth, int count, UInt8* to);
// Colours by their columns.
void PickColors(const Color* from, const SourceRange* columns, int count, Color* colors);

} // namespace toolbox
