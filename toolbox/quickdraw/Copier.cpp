// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Copier.h"

#include "toolbox/quickdraw/Clipping.h"
#include "toolbox/quickdraw/MaskedStore.h"
#include "toolbox/quickdraw/PixelSpans.h"
#include "toolbox/quickdraw/RowCopy.h"
#include "toolbox/quickdraw/Tinting.h"

#include <algorithm>
#include <cstring>

namespace toolbox
{
namespace
{

constexpr Tint kNoTint;
constexpr int kMostPixelsInARow = 1 << 24; // whose bits can be counted

ScalingScratch& SourceScratch()
{
    static ScalingScratch scratch;
    return scratch;
}

ScalingScratch& MaskScratch()
{
    static ScalingScratch scratch;
    return scratch;
}

int WidthOf(const Rect& rect)
{
    return rect.right - rect.left;
}

// Colours get lost at 16 bits if there were 32, and always in a table.
bool LosesColors(int fromDepth, int toDepth)
{
    return toDepth <= 8 || (toDepth == 16 && fromDepth == 32);
}

} // namespace

Copier::Copier(const CopyRequest& request)
    : request_(request),
      reader_(request.source, request.from, request.to, request.tint, SourceScratch()),
      dithers_(request.mayDither && LosesColors(request.source.depth, request.target.depth))
{
    if (request.HasMask()) {
        maskReader_.emplace(request.mask, request.maskRect, request.to, kNoTint, MaskScratch());
        isWeighted_ = reader_.WeighBy(*maskReader_);
    }
    way_ = ChooseWay();
    if (request.target.IsIndexed() && way_ == Way::kSpans) {
        search_ =
            &SearchOf(PaletteOf(request.target.colors, request.target.depth), request.target.depth);
    }
}

bool Copier::HasTargetsPixels() const
{
    if (request_.source.depth != request_.target.depth || !request_.tint.IsNone()) {
        return false;
    }
    if (!request_.target.IsIndexed()) {
        return true;
    }
    const Palette& target = PaletteOf(request_.target.colors, request_.target.depth);
    const Palette& source = *reader_.Colors();
    return (source.seed != 0 && source.seed == target.seed) || source.colors == target.colors;
}

Copier::Way Copier::ChooseWay() const
{
    if (reader_.IsScaled()) {
        if (!request_.HasMask() && reader_.AveragesPixels() && request_.target.depth == 32) {
            return Way::kAverageRows;
        }
        const bool picks = !request_.HasMask() && reader_.Picks() && request_.target.depth >= 8;
        return picks && HasTargetsPixels() ? Way::kPickRows : Way::kSpans;
    }
    const bool keepsPixels = HasTargetsPixels();
    if (request_.HasMask()) {
        const bool selects = keepsPixels && HasBitMask() && request_.target.depth >= 8;
        return selects ? Way::kSelectRows : Way::kSpans;
    }
    if (keepsPixels) {
        return Way::kMoveRows;
    }
    const bool widens = request_.source.depth == 16 && request_.target.depth == 32;
    return widens && request_.tint.IsNone() ? Way::kWidenRows : Way::kSpans;
}

Rect Copier::Copy(const Rect& box)
{
    Rect reachable = reader_.Reachable(box);
    if (maskReader_) {
        reachable = maskReader_->Reachable(reachable);
    }
    if (IsEmptyRect(reachable)) {
        return {};
    }
    if (way_ == Way::kSpans) {
        CopySpans(reachable);
    } else if (way_ == Way::kPickRows) {
        PickRows(reachable);
    } else if (way_ == Way::kAverageRows) {
        AverageRows(reachable);
    } else {
        MoveRows(reachable);
    }
    return reachable;
}

// Downwards or upwards, so that a row is read before it is overwritten; rows without a gap between
// them are one.
void Copier::MoveRows(const Rect& box) const
{
    const PixelView& source = request_.source;
    const PixelView& target = request_.target;
    const int width = WidthOf(box);
    const int height = box.bottom - box.top;
    const bool isOneRow = way_ != Way::kSelectRows && SInt64{width} * height <= kMostPixelsInARow &&
                          width * source.depth == source.rowBytes * 8 &&
                          width * target.depth == target.rowBytes * 8;
    if (isOneRow) {
        MoveRow(box.top, box.left, width * height);
        return;
    }
    const bool upwards = request_.from.top < request_.to.top;
    for (int i = 0; i < height; ++i) {
        MoveRow(upwards ? box.bottom - 1 - i : box.top + i, box.left, width);
    }
}

void Copier::MoveRow(int v, int h, int count) const
{
    const PixelView& target = request_.target;
    const int depth = target.depth;
    const int fromColumn = reader_.Column(h);
    const int toColumn = target.Column(h);
    const UInt8* const from = reader_.Row(v);
    UInt8* const to = target.Row(v);
    if (way_ == Way::kMoveRows) {
        CopyRow(from, fromColumn, to, toColumn, depth, count);
    } else if (way_ == Way::kWidenRows) {
        Widen16To32(from + ptrdiff_t{fromColumn} * 2, to + ptrdiff_t{toColumn} * 4, count);
    } else {
        CopyMaskedPixels(from + ptrdiff_t{fromColumn} * (depth / 8),
                         to + ptrdiff_t{toColumn} * (depth / 8), depth, count, maskReader_->Row(v),
                         maskReader_->Column(h));
    }
}

// A row of the source that shows up again is taken from the target, where it is ready.
void Copier::PickRows(const Rect& box)
{
    reader_.Prepare(box);
    const PixelView& target = request_.target;
    const ptrdiff_t bytes = target.depth / 8;
    const ptrdiff_t start = target.Column(box.left) * bytes;
    for (int v = box.top; v < box.bottom; ++v) {
        UInt8* const to = target.Row(v) + start;
        if (v > box.top && reader_.PickedRow(v) == reader_.PickedRow(v - 1)) {
            std::memcpy(to, to - target.rowBytes, static_cast<size_t>(WidthOf(box) * bytes));
        } else {
            reader_.PickRow(v, to);
        }
    }
}

void Copier::AverageRows(const Rect& box)
{
    reader_.Prepare(box);
    const PixelView& target = request_.target;
    for (int v = box.top; v < box.bottom; ++v) {
        reader_.AverageRow(v, target.Row(v) + ptrdiff_t{target.Column(box.left)} * 4);
    }
}

void Copier::CopySpans(const Rect& box)
{
    reader_.Prepare(box);
    if (maskReader_) {
        maskReader_->Prepare(box);
    }
    for (int v = box.top; v < box.bottom; ++v) {
        for (int h = box.left; h < box.right; h += kSpan) {
            CopySpan(v, h, std::min(kSpan, box.right - h));
        }
    }
}

void Copier::CopySpan(int v, int h, int count)
{
    if (maskReader_ && HasBitMask()) {
        CopyThroughBits(v, h, count);
        return;
    }
    std::array<Color, kSpan> buffer;
    const Color* const colors = reader_.Read(v, h, count, buffer.data());
    if (maskReader_) {
        BlendSpan(colors, v, h, count);
    } else {
        Store(request_.target.Row(v), request_.target.Column(h), count, colors, v, h);
    }
}

// What the mask hides at both ends is not even read.
void Copier::CopyThroughBits(int v, int h, int count)
{
    const UInt8* const mask = maskReader_->Row(v);
    const int maskColumn = maskReader_->Column(h);
    const MaskPart part = PartWithSetBits(mask, maskColumn, count);
    if (part.count == 0) {
        return;
    }
    h += part.column - maskColumn;
    std::array<Color, kSpan> buffer;
    const Color* const colors = reader_.Read(v, h, part.count, buffer.data());
    SelectSpan(colors, v, h, part.count, mask, part.column);
}

// Makes the pixels apart, so that what the mask does not let through is not touched.
void Copier::SelectSpan(const Color* colors, int v, int h, int count, const UInt8* mask,
                        int maskColumn)
{
    const PixelView& target = request_.target;
    const int column = target.Column(h);
    const int columnInGroup = column % 8;
    std::array<UInt8, (kSpan + 8) * sizeof(Color)> pixels;
    Store(pixels.data(), columnInGroup, count, colors, v, h);
    UInt8* const group = target.Row(v) + ptrdiff_t{column - columnInGroup} * target.depth / 8;
    CopyMaskedRow(pixels.data(), group, target.depth, columnInGroup, count, mask, maskColumn);
}

void Copier::BlendSpan(const Color* colors, int v, int h, int count)
{
    const PixelView& target = request_.target;
    UInt8* const row = target.Row(v);
    const int column = target.Column(h);
    std::array<Color, kSpan> maskBuffer;
    std::array<Color, kSpan> under;
    std::array<Color, kSpan> blended;
    const Color* const mask = maskReader_->Read(v, h, count, maskBuffer.data());
    std::copy(colors, colors + count, blended.begin());
    if (!target.IsIndexed()) {
        FetchWholeSpan(row, target.depth, column, count, under.data());
        Blend(mask, under.data(), count, blended.data());
        Store(row, column, count, blended.data(), v, h);
        return;
    }
    // An entry that a table has twice must not become the other one.
    std::array<UInt8, kSpan / 8> letThrough;
    FetchSpan(row, target.depth, column, count, &PaletteOf(target.colors, target.depth),
              under.data());
    Blend(mask, under.data(), count, blended.data());
    MaskOfNonWhite(mask, count, letThrough.data());
    SelectSpan(blended.data(), v, h, count, letThrough.data(), 0);
}

void Copier::Blend(const Color* mask, const Color* under, int count, Color* colors) const
{
    (isWeighted_ ? AddUnder : BlendColors)(mask, under, count, colors);
}

void Copier::Store(UInt8* row, int column, int count, const Color* colors, int v, int h) const
{
    const int depth = request_.target.depth;
    if (dithers_) {
        StoreDitheredSpan(row, depth, column, count, colors, search_, v, h);
    } else {
        StoreSpan(row, depth, column, count, colors, search_);
    }
}

} // namespace toolbox
