// SPDX-License-Identifier: MIT
//
// The colours that a map gives for the pixels of a target, scaled and tinted as the copy asks.
#pragma once

#include "toolbox/quickdraw/Averaging.h"
#include "toolbox/quickdraw/PixelView.h"

#include <optional>

namespace toolbox
{

// What black and white of the source become.
struct Tint {
    Color black = 0x000000;
    Color white = 0xFFFFFF;

    bool IsNone() const { return black == 0x000000 && white == 0xFFFFFF; }
};

// Memory of a scaled copy, to be used again by the next one.
struct ScalingScratch {
    std::vector<SourceRange> columns;
    ColumnWeights columnWeights;
    std::vector<Color> fetched;
    std::vector<Color> made;
    std::vector<UInt16> sums;
    std::vector<UInt32> longSums;
};

class SpanReader
{
public:
    // `from` of the map stands at `to` of the target. Neither may be empty. All arguments must
    // outlive the reader.
    SpanReader(const PixelView& view, const Rect& from, const Rect& to, const Tint& tint,
               ScalingScratch& scratch);

    bool IsScaled() const { return rows_.IsScaled() || columns_.IsScaled(); }
    // Of an indexed map, tinted; else null.
    const Palette* Colors() const { return palette_ ? &*palette_ : nullptr; }
    // The part of `box`, in the target's coordinates, for which the map has pixels.
    Rect Reachable(const Rect& box) const;
    // Says that the spans to come lie in `box`, which must be reachable. May throw std::bad_alloc.
    void Prepare(const Rect& box);
    // The colours for `count` pixels, at most kSpan, from (v, h) on; in `buffer` or elsewhere.
    const Color* Read(int v, int h, int count, Color* buffer);
    // Averages only what a mask of the same scale lets through: what it hides must not show up in
    // the colours beside it. The colours then come blended with black. False if that cannot be
    // done, or need not.
    bool WeighBy(const SpanReader& mask);
    // Whether every pixel comes from one pixel of a scaled map.
    bool Picks() const { return !rows_.Averages() && !columns_.Averages(); }
    // The map's row that a row of the target is picked from, and putting the pixels of the
    // prepared box there as they are.
    int PickedRow(int v) const { return rows_.RangeOf(v).first; }
    void PickRow(int v, UInt8* to) const;
    // Whether pixels are averaged as they stand in a map of 32 bits, and putting those for a row
    // of the prepared box there.
    bool AveragesPixels() const;
    void AverageRow(int v, UInt8* to);
    // Where the pixel for (v, h) stands in an unscaled map.
    const UInt8* Row(int v) const { return view_.Row(v - rows_.to + rows_.from); }
    int Column(int h) const { return view_.Column(h - columns_.to + columns_.from); }

private:
    struct Rows {
        const UInt8* first;
        ptrdiff_t rowBytes;
    };

    void Fetch(int row, int column, int count, Color* colors) const;
    void MakeRow(int v);
    Rows FetchRows(int row, int count);
    void FetchWeighted(int row, int column, int count, Color* colors) const;
    void SumRows(const SourceRange& rows);
    void SumLongRange(const SourceRange& rows);
    bool HasAllPixels() const;

    static constexpr int kNoRow = INT32_MIN;
    const PixelView& view_;
    Axis rows_;
    Axis columns_;
    const Tint& tint_;
    std::optional<Palette> palette_;
    const SpanReader* weights_ = nullptr;
    ScalingScratch& scratch_;
    Rect box_{};          // the target's part being made …
    int firstColumn_ = 0; // … which needs these columns of the source
    int columnCount_ = 0;
    bool hasLongRows_ = false;
    bool hasLongColumns_ = false;
    int madeRow_ = kNoRow;    // the target's row in scratch_.made
    int fetchedRow_ = kNoRow; // the source's row that scratch_.fetched begins with
};

} // namespace toolbox
