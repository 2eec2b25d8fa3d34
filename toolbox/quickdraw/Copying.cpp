// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/Copying.h"

#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/Clipping.h"
#include "toolbox/quickdraw/Copier.h"
#include "toolbox/quickdraw/PictureRecorder.h"
#include "toolbox/quickdraw/Port.h"
#include "toolbox/quickdraw/PortRegistry.h"
#include "toolbox/quickdraw/RowCopy.h"
#include "toolbox/threads/ThreadGlobals.h"

#include <cstring>
#include <new>
#include <vector>

namespace toolbox
{
namespace
{

bool Overlap(const PixelView& a, const PixelView& b)
{
    return a.base < b.Row(b.bounds.bottom) && b.base < a.Row(a.bounds.bottom);
}

// Puts a copy of the rows that a copy reads in the place of those it may overwrite.
void MakeOwnRows(PixelView& view, const Rect& used, std::vector<UInt8>& memory)
{
    const SInt16 top = std::max(view.bounds.top, used.top);
    const SInt16 bottom = std::min(view.bounds.bottom, used.bottom);
    if (top >= bottom) {
        return; // nothing is read
    }
    memory.assign(view.Row(top), view.Row(bottom));
    view.base = memory.data();
    view.bounds.top = top;
    view.bounds.bottom = bottom;
}

// Where source and target overlap, all is read before anything is written, unless it is one
// rectangle of rows to be moved.
bool IsSafeInPlace(const CopyRequest& request, const Copier& copier, bool isOneRect)
{
    return copier.MovesRows() && isOneRect && request.source.base == request.target.base &&
           MayOverlap(request.target.depth, request.source.Column(request.from.left),
                      request.target.Column(request.to.left));
}

void CopyVisible(const CopyRequest& request, CGrafPort* port, RgnHandle region)
{
    Copier copier(request);
    ForEachVisibleRect(Intersection(request.to, request.target.bounds),
                       port == nullptr ? nullptr : &port->clip,
                       region == nullptr ? nullptr : *region, [&](const Rect& box) {
                           const Rect drawn = copier.Copy(box);
                           if (port != nullptr && port->isWindow) {
                               port->dirty.Add(drawn);
                           }
                       });
}

void CopyOverlapping(const CopyRequest& request, CGrafPort* port, RgnHandle region)
{
    const bool isOneRect = (port == nullptr || IsOneRect(port->clip.area)) &&
                           (region == nullptr || IsOneRect((*region)->area));
    if (!request.HasMask() && IsSafeInPlace(request, Copier(request), isOneRect)) {
        CopyVisible(request, port, region);
        return;
    }
    std::vector<UInt8> sourceRows;
    std::vector<UInt8> maskRows;
    CopyRequest apart = request;
    MakeOwnRows(apart.source, request.from, sourceRows);
    if (request.HasMask()) {
        MakeOwnRows(apart.mask, request.maskRect, maskRows);
    }
    CopyVisible(apart, port, region);
}

// The port that the pixels belong to has the colours and the clip.
void Draw(CopyRequest& request, CGrafPort* port, RgnHandle region)
{
    if (port != nullptr) {
        request.tint = {ColorFromRGB(port->foreground), ColorFromRGB(port->background)};
    }
    const bool overlaps = Overlap(request.source, request.target) ||
                          (request.HasMask() && Overlap(request.mask, request.target));
    try {
        (overlaps ? CopyOverlapping : CopyVisible)(request, port, region);
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch)
        // Without memory nothing more is drawn: there is nobody to tell.
    }
}

bool IsDrawable(const CopyRequest& request)
{
    return request.source.depth != 0 && request.target.depth != 0 && !IsEmptyRect(request.from) &&
           !IsEmptyRect(request.to);
}

PixMap PixMapOf(const BitMap& bits)
{
    PixMap map{};
    if (bits.rowBytes < 0) {
        std::memcpy(&map, &bits, sizeof map);
        return map;
    }
    std::memcpy(&map, &bits, sizeof bits);
    map.pixelSize = map.cmpCount = map.cmpSize = 1;
    return map;
}

void DrawMasked(const BitMap* mask, const Rect* maskRect, CopyRequest& request, RgnHandle region)
{
    request.mask = ViewOf(*mask);
    request.maskRect = *maskRect;
    if (request.mask.depth == 1) {
        request.mask.colors = nullptr; // a set bit is black whatever a table says
    }
    if (IsDrawable(request) && request.HasMask() && !IsEmptyRect(request.maskRect)) {
        Draw(request, FindPortOfPixels(request.target.base), region);
    }
}

} // namespace
} // namespace toolbox

using toolbox::Announce;
using toolbox::CopyRequest;
using toolbox::ViewOf;

void CopyBits(const BitMap* srcBits, const BitMap* dstBits, const Rect* srcRect,
              const Rect* dstRect, SInt16 mode, RgnHandle maskRgn)
{
    Announce("CopyBits");
    CopyRequest request{
        ViewOf(*srcBits), ViewOf(*dstBits), *srcRect, *dstRect, mode == ditherCopy, {}, {}, {}};
    if (!toolbox::IsDrawable(request)) {
        return;
    }
    CGrafPort* const port = toolbox::FindPortOfPixels(request.target.base);
    if (toolbox::IsRecording(port) && port == toolbox::CurrentThreadGlobals().port) {
        toolbox::RecordCopy(*port, toolbox::PixMapOf(*srcBits), *srcRect, *dstRect, mode, maskRgn);
        return;
    }
    toolbox::Draw(request, port, maskRgn);
}

void CopyMask(const BitMap* srcBits, const BitMap* maskBits, const BitMap* dstBits,
              const Rect* srcRect, const Rect* maskRect, const Rect* dstRect)
{
    Announce("CopyMask");
    CopyRequest request{ViewOf(*srcBits), ViewOf(*dstBits), *srcRect, *dstRect, false, {}, {}, {}};
    toolbox::DrawMasked(maskBits, maskRect, request, nullptr);
}

void CopyDeepMask(const BitMap* srcBits, const BitMap* maskBits, const BitMap* dstBits,
                  const Rect* srcRect, const Rect* maskRect, const Rect* dstRect, SInt16 mode,
                  RgnHandle maskRgn)
{
    Announce("CopyDeepMask");
    CopyRequest request{
        ViewOf(*srcBits), ViewOf(*dstBits), *srcRect, *dstRect, mode == ditherCopy, {}, {}, {}};
    toolbox::DrawMasked(maskBits, maskRect, request, maskRgn);
}
