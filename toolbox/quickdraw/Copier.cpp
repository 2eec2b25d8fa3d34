// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Copier.h"

#include "toolbox/quickdraw/Clipping.h"
#include "toolbox/quickdraw/MaskedStore.h"
#include "toolbox/quickdraw/PixelSpans.h"
#include "toolbox/quickdraw/RowCopy.h"
#include "toolbox/quickdraw/Tinting.h"

#include <algorithm>

namespace toolbox
{
namespace
{

constexpr Tint kNoTint;

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
        return Way::kSpans;
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
    } else {
        MoveRows(reachable);
    }
    return reachable;
}

// Downwards or upwards, so that a row is read before it is overwritten.
void Copier::MoveRows(const Rect& box) const
{
    const PixelView& target = request_.target;
    const bool upwards = request_.from.top < request_.to.top;
    const int fromColumn = reader_.Column(box.left);
    const int toColumn = target.Column(box.left);
    const int bytes = target.depth / 8;
    for (int i = 0; i < box.bottom - box.top; ++i) {
        const int v = upwards ? box.bottom - 1 - i : box.top + i;
        const UInt8* const from = reader_.Row(v);
        UInt8* const to = target.Row(v);
        if (way_ == Way::kMoveRows) {
            CopyRow(from, fromColumn, to, toColumn, target.depth, WidthOf(box));
        } else if (way_ == Way::kWidenRows) {
            Widen16To32(from + ptrdiff_t{fromColumn} * 2, to + ptrdiff_t{toColumn} * 4,
                        WidthOf(box));
        } else {
            CopyMaskedPixels(from + ptrdiff_t{fromColumn} * bytes, to + ptrdiff_t{toColumn} * bytes,
                             target.depth, WidthOf(box), maskReader_->Row(v),
                             maskReader_->Column(box.left));
        }
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
    std::array<Color, kSpan> colors;
    reader_.Read(v, h, count, colors.data());
    if (maskReader_) {
        SelectSpan(colors.data(), v, h, count);
    } else {
        Store(request_.target.Row(v), request_.target.Column(h), count, colors.data(), v, h);
    }
}

// What the mask does not let through at all keeps its pixels to the bit, whatever the target's
// pixels can express.
void Copier::SelectSpan(const Color* colors, int v, int h, int count)
{
    const PixelView& target = request_.target;
    const int column = target.Column(h);
    const int columnInGroup = column % 8;
    UInt8* const group = target.Row(v) + ptrdiff_t{column - columnInGroup} * target.depth / 8;
    std::array<UInt8, (kSpan + 8) * sizeof(Color)> pixels;
    if (HasBitMask()) {
        Store(pixels.data(), columnInGroup, count, colors, v, h);
        CopyMaskedRow(pixels.data(), group, target.depth, columnInGroup, count, maskReader_->Row(v),
                      maskReader_->Column(h));
        return;
    }
    std::array<Color, kSpan> mask;
    std::array<Color, kSpan> under;
    std::array<Color, kSpan> blended;
    std::array<UInt8, kSpan / 8> opaque;
    maskReader_->Read(v, h, count, mask.data());
    const Palette* const palette =
        target.IsIndexed() ? &PaletteOf(target.colors, target.depth) : nullptr;
    FetchSpan(target.Row(v), target.depth, column, count, palette, under.data());
    std::copy(colors, colors + count, blended.begin());
    BlendColors(mask.data(), under.data(), count, blended.data());
    Store(pixels.data(), columnInGroup, count, blended.data(), v, h);
    MaskOfNonWhite(mask.data(), count, opaque.data());
    CopyMaskedRow(pixels.data(), group, target.depth, columnInGroup, count, opaque.data(), 0);
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
