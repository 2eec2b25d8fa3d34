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
    float lastWeight;

    float Total() const
    {
        return first == last ? firstWeight
                             : firstWeight + lastWeight + static_cast<float>(last - first - 1);
    }
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
};

// Averaging goes down the columns first: `sums` are four components for each source column.
void SetSums(const Color* colors, int count, float weight, float* sums);
void AddToSums(const Color* colors, int count, float weight, float* sums);
// ... and then along the row. `columns` count from the first of the sums; `scale` is one over the
// weight of the rows.
void AverageSums(const float* sums, const SourceRange* columns, int count, float scale,
                 Color* colors);

// Colours by their columns.
void PickColors(const Color* from, const SourceRange* columns, int count, Color* colors);

} // namespace toolbox
