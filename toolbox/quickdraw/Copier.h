// SPDX-License-Identifier: MIT
//
// One copy from map to map.
#pragma once

#include "toolbox/quickdraw/ColorSearch.h"
#include "toolbox/quickdraw/SpanReader.h"

namespace toolbox
{

struct CopyRequest {
    PixelView source;
    PixelView target;
    Rect from;
    Rect to;
    bool mayDither = false;
    Tint tint;
    PixelView mask; // of depth 0 if there is none
    Rect maskRect{};

    bool HasMask() const { return mask.depth != 0; }
};

class Copier
{
public:
    // The request must outlive the copier.
    explicit Copier(const CopyRequest& request);

    // Whether the pixels of a rectangle are moved as they are, in one go for each row. Only that
    // is right where source and target overlap.
    bool MovesRows() const { return way_ == Way::kMoveRows; }
    // Copies what the source has for `box` of the target. Returns what was drawn to. May throw
    // std::bad_alloc.
    Rect Copy(const Rect& box);

private:
    enum class Way { kMoveRows, kWidenRows, kSelectRows, kPickRows, kAverageRows, kSpans };
    Way ChooseWay() const;
    bool HasTargetsPixels() const;
    bool HasBitMask() const { return request_.mask.depth == 1 && !maskReader_->IsScaled(); }

    void MoveRows(const Rect& box) const;
    void MoveRow(int v, int h, int count) const;
    void PickRows(const Rect& box);
    void AverageRows(const Rect& box);
    void CopySpans(const Rect& box);
    void CopySpan(int v, int h, int count);
    void CopyThroughBits(int v, int h, int count);
    void SelectSpan(const Color* colors, int v, int h, int count, const UInt8* mask,
                    int maskColumn);
    void BlendSpan(const Color* colors, int v, int h, int count);
    void Blend(const Color* mask, const Color* under, int count, Color* colors) const;
    void Store(UInt8* row, int column, int count, const Color* colors, int v, int h) const;

    const CopyRequest& request_;
    ColorSearch* search_ = nullptr; // of an indexed target
    SpanReader reader_;
    std::optional<SpanReader> maskReader_;
    bool dithers_;
    bool isWeighted_ = false; // the mask was taken from the colours already
    Way way_;
};

} // namespace toolbox
