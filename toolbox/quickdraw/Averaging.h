// SPDX-License-Identifier: MIT
//
// Averaging areas of pixels of four bytes, in whatever order: first down the columns, which gives a
// sum for each byte, then along the row. Sums are 256 times a byte, and whole numbers throughout,
// so that every machine makes the same of them.
#pragma once

#include "toolbox/quickdraw/Scaling.h"

#include <vector>

namespace toolbox
{

inline constexpr int kMostRowsAtOnce = 8;
// The longest range whose weights are brought to 65536 together, and whose sums so fit 16 bits. In
// longer ones what that cuts off would add up: they keep their weights and take wider numbers.
inline constexpr int kLongRange = 32;

// For each pixel its first column, and the weights of its columns, four times each: once for each
// byte.
struct ColumnWeights {
    int groups = 0; // of four columns for each pixel, some of them with weights of 0
    std::vector<int> firsts;
    std::vector<UInt16> weights;
};

// How many rows from `row` on count the same, and so can be added up before they are weighed: 1,
// 2, 4 or kMostRowsAtOnce.
int EqualRows(const SourceRange& rows, int row);
// Sets the sums to, or adds to them, what so many rows contribute.
void SetSums(const UInt8* row, ptrdiff_t rowBytes, int rowCount, UInt16 weight, int count,
             UInt16* sums);
void AddToSums(const UInt8* row, ptrdiff_t rowBytes, int rowCount, UInt16 weight, int count,
               UInt16* sums);
// What the rows or columns of a range before `end` weigh, of 65536 for all of them; and what those
// between two such numbers do, where all of them at once weigh one less.
UInt32 WeightBefore(const SourceRange& range, int end);
inline UInt16 WeightBetween(UInt32 before, UInt32 upTo)
{
    return static_cast<UInt16>(upTo - before - ((upTo - before) >> 16));
}

// `columns` count from the first of the sums, and none has more than `longest`. Behind the last sum
// that counts, so many more are read.
void SetColumnWeights(const SourceRange* columns, int count, int longest, ColumnWeights& weights);
inline constexpr size_t kMostUncountedSums = size_t{4} * kLongRange;
void AverageSums(const UInt16* sums, const ColumnWeights& weights, int count, UInt8* averages);

// The same for long ranges.
void AddLongRow(const UInt8* row, int weight, int count, UInt32* longSums);
void ShortenSums(const UInt32* longSums, int weight, int count, UInt16* sums);
void AverageLongRanges(const UInt16* sums, const SourceRange* columns, int count, UInt8* averages);

} // namespace toolbox
