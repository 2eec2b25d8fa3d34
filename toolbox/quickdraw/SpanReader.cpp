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

// What there is of a range: an average leaves out what lies outside of the map.
SourceRange Limited(SourceRange range, int low, int high)
{
    if (range.first < low) {
        range.first = low;
        range.firstWeight = range.last == low ? range.lastWeight : 1;
    }
    if (range.last >= high) {
        range.lastWeight = 1;
        range.last = high - 1;
    }
    return range;
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
        scratch_.columns[i] = Limited(columns_.RangeOf(box.left + static_cast<int>(i)),
                                      view_.bounds.left, view_.bounds.right);
    }
    firstColumn_ = scratch_.columns.front().first;
    columnCount_ = scratch_.columns.back().last + 1 - firstColumn_;
    for (SourceRange& range : scratch_.columns) {
        range.first -= firstColumn_;
        range.last -= firstColumn_;
    }
    scratch_.fetched.resize(static_cast<size_t>(columnCount_));
    if (rows_.Averages() || columns_.Averages()) {
        scratch_.sums.resize(static_cast<size_t>(columnCount_) * 4);
    }
}

void SpanReader::Read(int v, int h, int count, Color* colors)
{
    if (!IsScaled()) {
        Fetch(v - rows_.to + rows_.from, h - columns_.to + columns_.from, count, colors);
        return;
    }
    if (madeRow_ != v) {
        MakeRow(v);
        madeRow_ = v;
    }
    std::memcpy(colors, scratch_.made.data() + (h - box_.left),
                static_cast<size_t>(count) * sizeof(Color));
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
    const SourceRange rows = Limited(rows_.RangeOf(v), view_.bounds.top, view_.bounds.bottom);
    const auto count = static_cast<int>(scratch_.columns.size());
    if (!rows_.Averages() && !columns_.Averages()) {
        if (fetchedRow_ == rows.first) {
            return; // the row that was made last comes from the same row of the map
        }
        FetchNearestRow(rows.first);
        PickColors(scratch_.fetched.data(), scratch_.columns.data(), count, scratch_.made.data());
        return;
    }
    SumRows(rows);
    AverageSums(scratch_.sums.data(), scratch_.columns.data(), count, 1 / rows.Total(),
                scratch_.made.data());
}

void SpanReader::FetchNearestRow(int row)
{
    Fetch(row, firstColumn_, columnCount_, scratch_.fetched.data());
    fetchedRow_ = row;
}

void SpanReader::SumRows(const SourceRange& rows)
{
    for (int row = rows.first; row <= rows.last; ++row) {
        const float weight = row == rows.first  ? rows.firstWeight
                             : row == rows.last ? rows.lastWeight
                                                : 1;
        for (int done = 0; done < columnCount_; done += kSpan) {
            std::array<Color, kSpan> colors;
            const int count = std::min(kSpan, columnCount_ - done);
            Fetch(row, firstColumn_ + done, count, colors.data());
            float* const sums = scratch_.sums.data() + ptrdiff_t{4} * done;
            (row == rows.first ? SetSums : AddToSums)(colors.data(), count, weight, sums);
        }
    }
}

} // namespace toolbox
