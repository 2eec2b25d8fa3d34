// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/SpanReader.h"

#include "toolbox/quickdraw/PixelSpans.h"
#include "toolbox/quickdraw/Tinting.h"

#include <algorithm>
#include <cstring>

namespace toolbox
{
namespace
{

// The part of [first, end) whose ranges touch [low, high).
void LimitTo(const Axis& axis, int low, int high, SInt16& first, SInt16& end)
{
    if (!axis.IsScaled()) {
        const int offset = axis.to - axis.from;
        first = static_cast<SInt16>(std::max<int>(first, low + offset));
        end = static_cast<SInt16>(std::min<int>(end, high + offset));
        return;
    }
    while (first < end && axis.RangeOf(first).last < low) {
        ++first;
    }
    while (first < end && axis.RangeOf(end - 1).first >= high) {
        --end;
    }
}

} // namespace

SpanReader::SpanReader(const PixelView& view, const Rect& from, const Rect& to, const Tint& tint,
                       ScalingScratch& scratch)
    : view_(view), rows_{from.top, from.bottom - from.top, to.top, to.bottom - to.top},
      columns_{from.left, from.right - from.left, to.left, to.right - to.left}, tint_(tint),
      scratch_(scratch)
{
    if (view.IsIndexed()) {
        palette_ = PaletteOf(view.colors, view.depth);
        if (!tint.IsNone()) {
            palette_->seed = 0;
            TintColors(palette_->colors.data(), 1 << view.depth, tint);
        }
    }
}

Rect SpanReader::Reachable(const Rect& box) const
{
    Rect reachable = box;
    LimitTo(rows_, view_.bounds.top, view_.bounds.bottom, reachable.top, reachable.bottom);
    LimitTo(columns_, view_.bounds.left, view_.bounds.right, reachable.left, reachable.right);
    return reachable;
}

bool SpanReader::HasAllPixels() const
{
    return rows_.from >= view_.bounds.top && rows_.from + rows_.fromSize <= view_.bounds.bottom &&
           columns_.from >= view_.bounds.left &&
           columns_.from + columns_.fromSize <= view_.bounds.right;
}

bool SpanReader::WeighBy(const SpanReader& mask)
{
    const bool isSameScale =
        rows_.fromSize == mask.rows_.fromSize && columns_.fromSize == mask.columns_.fromSize;
    if (Picks() || !isSameScale || !HasAllPixels() || !mask.HasAllPixels()) {
        return false;
    }
    weights_ = &mask;
    return true;
}

void SpanReader::FetchWeighted(int row, int column, int count, Color* colors) const
{
    Fetch(row, column, count, colors);
    if (weights_ == nullptr) {
        return;
    }
    static constexpr std::array<Color, kSpan> kBlack{};
    std::array<Color, kSpan> mask;
    for (int done = 0; done < count; done += kSpan) {
        const int part = std::min(kSpan, count - done);
        weights_->Fetch(row - rows_.from + weights_->rows_.from,
                        column + done - columns_.from + weights_->columns_.from, part, mask.data());
        BlendColors(mask.data(), kBlack.data(), part, colors + done);
    }
}

void SpanReader::Prepare(const Rect& box)
{
    madeRow_ = fetchedRow_ = kNoRow;
    box_ = box;
    if (!IsScaled()) {
        return;
    }
    const auto count = static_cast<size_t>(box.right - box.left);
    scratch_.columns.resize(count);
    scratch_.made.resize(count);
    for (size_t i = 0; i < count; ++i) {
        scratch_.columns[i] = columns_.RangeOf(box.left + static_cast<int>(i))
                                  .Within(view_.bounds.left, view_.bounds.right);
    }
    firstColumn_ = scratch_.columns.front().first;
    columnCount_ = scratch_.columns.back().last + 1 - firstColumn_;
    for (SourceRange& range : scratch_.columns) {
        range.first -= firstColumn_;
        range.last -= firstColumn_;
    }
    const auto sourceCount = static_cast<size_t>(columnCount_);
    if (Picks()) {
        scratch_.fetched.resize(sourceCount);
        return;
    }
    if (!AveragesPixels()) {
        scratch_.fetched.resize(sourceCount * kMostRowsAtOnce);
    }
    hasLongRows_ = rows_.LongestRange() > kLongRange;
    hasLongColumns_ = columns_.LongestRange() > kLongRange;
    if (!hasLongColumns_) {
        SetColumnWeights(scratch_.columns.data(), static_cast<int>(count), columns_.LongestRange(),
                         scratch_.columnWeights);
    }
    scratch_.sums.resize(sourceCount * 4 + kMostUncountedSums);
}

const Color* SpanReader::Read(int v, int h, int count, Color* buffer)
{
    if (!IsScaled()) {
        Fetch(v - rows_.to + rows_.from, h - columns_.to + columns_.from, count, buffer);
        return buffer;
    }
    if (madeRow_ != v) {
        MakeRow(v);
        madeRow_ = v;
    }
    return scratch_.made.data() + (h - box_.left);
}

void SpanReader::PickRow(int v, UInt8* to) const
{
    const UInt8* const from =
        view_.Row(PickedRow(v)) + ptrdiff_t{view_.Column(firstColumn_)} * (view_.depth / 8);
    PickPixels(from, scratch_.columns.data(), view_.depth,
               static_cast<int>(scratch_.columns.size()), to);
}

void SpanReader::Fetch(int row, int column, int count, Color* colors) const
{
    FetchSpan(view_.Row(row), view_.depth, view_.Column(column), count, Colors(), colors);
    if (!tint_.IsNone() && !view_.IsIndexed()) {
        TintColors(colors, count, tint_);
    }
}

void SpanReader::MakeRow(int v)
{
    const SourceRange rows = rows_.RangeOf(v).Within(view_.bounds.top, view_.bounds.bottom);
    const auto count = static_cast<int>(scratch_.columns.size());
    if (Picks()) {
        if (fetchedRow_ == rows.first) {
            return; // the row that was made last comes from the same row of the map
        }
        fetchedRow_ = rows.first;
        Fetch(rows.first, firstColumn_, columnCount_, scratch_.fetched.data());
        PickColors(scratch_.fetched.data(), scratch_.columns.data(), count, scratch_.made.data());
        return;
    }
    auto* const made = reinterpret_cast<UInt8*>(scratch_.made.data());
    AverageRow(v, made);
    if (AveragesPixels()) {
        FetchSpan(made, 32, 0, count, nullptr, scratch_.made.data());
    }
}

bool SpanReader::AveragesPixels() const
{
    return !Picks() && view_.depth == 32 && tint_.IsNone() && weights_ == nullptr;
}

void SpanReader::AverageRow(int v, UInt8* to)
{
    const SourceRange rows = rows_.RangeOf(v).Within(view_.bounds.top, view_.bounds.bottom);
    const auto count = static_cast<int>(scratch_.columns.size());
    if (hasLongRows_) {
        SumLongRange(rows);
    } else {
        SumRows(rows);
    }
    if (hasLongColumns_) {
        AverageLongRanges(scratch_.sums.data(), scratch_.columns.data(), count, to);
    } else {
        AverageSums(scratch_.sums.data(), scratch_.columnWeights, count, to);
    }
}

SpanReader::Rows SpanReader::FetchRows(int row, int count)
{
    if (AveragesPixels()) {
        return {view_.Row(row) + ptrdiff_t{view_.Column(firstColumn_)} * 4, view_.rowBytes};
    }
    // The row that one row of the target ends with is often that which the next one begins with.
    if (count > 1 || row != fetchedRow_) {
        for (int i = 0; i < count; ++i) {
            FetchWeighted(row + i, firstColumn_, columnCount_,
                          scratch_.fetched.data() + ptrdiff_t{columnCount_} * i);
        }
        fetchedRow_ = row;
    }
    return {reinterpret_cast<const UInt8*>(scratch_.fetched.data()), ptrdiff_t{columnCount_} * 4};
}

void SpanReader::SumRows(const SourceRange& rows)
{
    UInt32 before = 0;
    for (int row = rows.first; row <= rows.last;) {
        const int count = EqualRows(rows, row);
        const Rows fetched = FetchRows(row, count);
        const UInt32 upTo = WeightBefore(rows, row + count);
        (row == rows.first ? SetSums : AddToSums)(fetched.first, fetched.rowBytes, count,
                                                  WeightBetween(before, upTo), columnCount_,
                                                  scratch_.sums.data());
        before = upTo;
        row += count;
    }
}

void SpanReader::SumLongRange(const SourceRange& rows)
{
    scratch_.longSums.assign(static_cast<size_t>(columnCount_) * 4, 0);
    for (int row = rows.first; row <= rows.last; ++row) {
        AddLongRow(FetchRows(row, 1).first, rows.WeightOf(row), columnCount_,
                   scratch_.longSums.data());
    }
    ShortenSums(scratch_.longSums.data(), rows.Weight(), columnCount_, scratch_.sums.data());
}

} // namespace toolbox
