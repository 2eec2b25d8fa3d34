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
    if (weights_ != nullptr) {
        static constexpr std::array<Color, kSpan> kBlack{};
        std::array<Color, kSpan> mask;
        weights_->Fetch(row - rows_.from + weights_->rows_.from,
                        column - columns_.from + weights_->columns_.from, count, mask.data());
        BlendColors(mask.data(), kBlack.data(), count, colors);
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
    scratch_.fetched.resize(static_cast<size_t>(columnCount_));
    if (!Picks()) {
        scratch_.sums.resize(static_cast<size_t>(columnCount_) * 4);
    }
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
        FetchNearestRow(rows.first);
        PickColors(scratch_.fetched.data(), scratch_.columns.data(), count, scratch_.made.data());
        return;
    }
    // Nothing that is missing at the edges makes a range smaller.
    if (rows_.Halves() && columns_.Halves() && rows.last == rows.first + 1 &&
        columnCount_ == 2 * count) {
        HalveRow(rows.first);
        return;
    }
    SumRows(rows);
    AverageSums(scratch_.sums.data(), scratch_.columns.data(), count, rows.scale,
                scratch_.made.data());
}

void SpanReader::FetchNearestRow(int row)
{
    Fetch(row, firstColumn_, columnCount_, scratch_.fetched.data());
    fetchedRow_ = row;
}

// Colours are not made of pixels before they are averaged where that does not matter.
void SpanReader::HalveRow(int row)
{
    const auto count = static_cast<int>(scratch_.columns.size());
    auto* const made = reinterpret_cast<UInt8*>(scratch_.made.data());
    if (view_.depth == 32 && tint_.IsNone() && weights_ == nullptr) {
        const ptrdiff_t offset = ptrdiff_t{view_.Column(firstColumn_)} * 4;
        AverageFours(view_.Row(row) + offset, view_.Row(row + 1) + offset, count, made);
        FetchSpan(made, 32, 0, count, nullptr, scratch_.made.data());
        return;
    }
    for (int done = 0; done < count; done += kSpan / 2) {
        std::array<Color, kSpan> colors;
        std::array<Color, kSpan> nextColors;
        const int part = std::min(kSpan / 2, count - done);
        FetchWeighted(row, firstColumn_ + 2 * done, 2 * part, colors.data());
        FetchWeighted(row + 1, firstColumn_ + 2 * done, 2 * part, nextColors.data());
        AverageFours(reinterpret_cast<const UInt8*>(colors.data()),
                     reinterpret_cast<const UInt8*>(nextColors.data()), part,
                     made + ptrdiff_t{4} * done);
    }
}

// Two rows at a time, in pieces that stay in the nearest cache.
void SpanReader::SumRows(const SourceRange& rows)
{
    for (int done = 0; done < columnCount_; done += kSpan) {
        std::array<Color, kSpan> colors;
        std::array<Color, kSpan> nextColors;
        const int count = std::min(kSpan, columnCount_ - done);
        float* const sums = scratch_.sums.data() + ptrdiff_t{4} * done;
        for (int row = rows.first; row <= rows.last; row += 2) {
            const bool hasNext = row < rows.last;
            FetchWeighted(row, firstColumn_ + done, count, colors.data());
            FetchWeighted(hasNext ? row + 1 : row, firstColumn_ + done, count, nextColors.data());
            const float nextWeight = hasNext ? rows.WeightOf(row + 1) : 0;
            (row == rows.first ? SetSums : AddToSums)(colors.data(), rows.WeightOf(row),
                                                      nextColors.data(), nextWeight, count, sums);
        }
    }
}

} // namespace toolbox
