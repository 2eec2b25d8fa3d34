// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/PictureConverter.h"

#include "toolbox/CpuVersions.h"
#include "toolbox/quickdraw/Drawing.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace toolbox
{
namespace
{

// A place may be as large as coordinates go, of which a port shows a corner: no picture is scaled
// to more than this, or its own size.
constexpr int kLargestSide = 4096;
constexpr int kBytesPerPixel = 4;
// Rows converted before their bytes are put in order: few enough to be still in the cache then.
constexpr int kBandRows = 16;
// libswscale's vector code writes whole groups of pixels, past a row's end if the width is no
// multiple of this.
constexpr int kPixelGroup = 16;

int WidthOf(const Rect& rect)
{
    return rect.right - rect.left;
}
int HeightOf(const Rect& rect)
{
    return rect.bottom - rect.top;
}

bool IsSame(const Rect& a, const Rect& b)
{
    return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}

// How wide a picture is made for a place. libswscale has vector code for even widths only, and the
// other takes eight times as long: where a picture is scaled at all, an odd place gets a column
// less than was made.
int ConvertedWidth(int own, int place)
{
    const int width = std::min(place, std::max(own, kLargestSide));
    return width == own ? width : width + width % 2;
}

// libavcodec writes the stream's number into some fields, whether there is such an enumerator or
// not.
template <class Enumeration>
int NumberIn(const Enumeration& field)
{
    int number = 0;
    static_assert(sizeof field == sizeof number);
    std::memcpy(&number, &field, sizeof number);
    return number;
}

// libswscale's fast converters write B, G, R, A; a port's pixels are x, R, G, B, with x zero.
VORN_CPU_VERSIONS void PutBytesInOrder(UInt8* row, int width)
{
    constexpr UInt32 kColors =
        std::endian::native == std::endian::little ? 0xFFFFFF00U : 0x00FFFFFFU;
    for (ptrdiff_t x = 0; x < width; ++x) {
        UInt32 pixel = 0;
        std::memcpy(&pixel, row + x * kBytesPerPixel, sizeof pixel);
        pixel = __builtin_bswap32(pixel) & kColors;
        std::memcpy(row + x * kBytesPerPixel, &pixel, sizeof pixel);
    }
}

} // namespace

void PictureConverter::Draw(const AVFrame& picture, CGrafPort& port, const Rect& place,
                            RgnHandle clip)
{
    const std::vector<Rect> visible = VisibleRects(port, place, clip);
    if (visible.empty() || !Prepare(picture, place)) {
        return;
    }
    if (visible.size() == 1 && IsSame(visible[0], place) && WidthOf(place) % kPixelGroup == 0 &&
        IsMadeFor(place)) {
        SInt32 rowBytes = 0;
        GetPortPixels(&port, &rowBytes);
        Convert(picture, PixelAddress(port, place.top, place.left), rowBytes);
    } else {
        DrawThroughScratch(picture, port, place, visible);
    }
    for (const Rect& rect : visible) {
        AddToDirtyRegion(port, rect);
    }
}

bool PictureConverter::Prepare(const AVFrame& picture, const Rect& place)
{
    const Geometry wanted = {picture.width,
                             picture.height,
                             picture.format,
                             NumberIn(picture.colorspace),
                             NumberIn(picture.color_range),
                             ConvertedWidth(picture.width, WidthOf(place)),
                             std::min(HeightOf(place), std::max(picture.height, kLargestSide))};
    if (scaler_ && wanted == geometry_) {
        return true;
    }
    geometry_ = wanted;
    const bool isScaled = IsScaled();
    scaler_.reset(sws_getContext(wanted.width, wanted.height,
                                 static_cast<AVPixelFormat>(wanted.format), wanted.toWidth,
                                 wanted.toHeight, AV_PIX_FMT_BGRA,
                                 isScaled ? SWS_BILINEAR : SWS_BICUBIC, nullptr, nullptr, nullptr));
    if (!scaler_) {
        return false;
    }
    const int* const matrix = sws_getCoefficients(
        wanted.colorspace == AVCOL_SPC_UNSPECIFIED ? SWS_CS_DEFAULT : wanted.colorspace);
    sws_setColorspaceDetails(scaler_.get(), matrix, wanted.range == AVCOL_RANGE_JPEG ? 1 : 0,
                             matrix, 1, 0, 1 << 16, 1 << 16);
    return true;
}

void PictureConverter::Convert(const AVFrame& picture, UInt8* pixels, SInt32 rowBytes)
{
    UInt8* const destination[4] = {pixels, nullptr, nullptr, nullptr};
    const int strides[4] = {rowBytes, 0, 0, 0};
    // libswscale's scalers leave rows out, or worse, where a picture comes to them in bands.
    const int bandRows = IsScaled() ? geometry_.height : kBandRows;
    const int shift =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format))->log2_chroma_h;
    int done = 0;
    for (int row = 0; row < geometry_.height; row += bandRows) {
        const UInt8* source[4] = {picture.data[0] + ptrdiff_t{row} * picture.linesize[0]};
        for (int plane = 1; plane < 4 && picture.data[plane] != nullptr; ++plane) {
            source[plane] = picture.data[plane] + ptrdiff_t{row >> shift} * picture.linesize[plane];
        }
        const int made =
            sws_scale(scaler_.get(), source, picture.linesize, row,
                      std::min(bandRows, geometry_.height - row), destination, strides);
        for (const int end = done + std::max(0, made); done < end; ++done) {
            PutBytesInOrder(pixels + ptrdiff_t{done} * rowBytes, geometry_.toWidth);
        }
    }
}

void PictureConverter::DrawThroughScratch(const AVFrame& picture, CGrafPort& port,
                                          const Rect& place, const std::vector<Rect>& visible)
{
    const int paddedWidth = (geometry_.toWidth + 2 * kPixelGroup) & ~(kPixelGroup - 1);
    const SInt32 rowBytes = paddedWidth * kBytesPerPixel;
    scratch_.resize(static_cast<size_t>(rowBytes) * static_cast<size_t>(geometry_.toHeight));
    Convert(picture, scratch_.data(), rowBytes);
    for (const Rect& rect : visible) {
        if (!IsMadeFor(place)) {
            EnlargeScratch(port, place, rect, rowBytes);
            continue;
        }
        const UInt8* from = scratch_.data() + ptrdiff_t{rect.top - place.top} * rowBytes +
                            ptrdiff_t{rect.left - place.left} * kBytesPerPixel;
        for (SInt16 v = rect.top; v < rect.bottom; ++v, from += rowBytes) {
            std::memcpy(PixelAddress(port, v, rect.left), from,
                        static_cast<size_t>(WidthOf(rect)) * kBytesPerPixel);
        }
    }
}

bool PictureConverter::IsScaled() const
{
    return geometry_.width != geometry_.toWidth || geometry_.height != geometry_.toHeight;
}

// But for a last column that is not shown.
bool PictureConverter::IsMadeFor(const Rect& place) const
{
    return (geometry_.toWidth == WidthOf(place) || geometry_.toWidth == WidthOf(place) + 1) &&
           geometry_.toHeight == HeightOf(place);
}

// Only what is seen, each pixel the nearest one.
void PictureConverter::EnlargeScratch(CGrafPort& port, const Rect& place, const Rect& visible,
                                      SInt32 rowBytes)
{
    for (SInt16 v = visible.top; v < visible.bottom; ++v) {
        const SInt64 row = SInt64{v - place.top} * geometry_.toHeight / HeightOf(place);
        const UInt8* const from = scratch_.data() + row * rowBytes;
        UInt8* to = PixelAddress(port, v, visible.left);
        for (SInt16 h = visible.left; h < visible.right; ++h, to += kBytesPerPixel) {
            const SInt64 column = SInt64{h - place.left} * geometry_.toWidth / WidthOf(place);
            std::memcpy(to, from + column * kBytesPerPixel, kBytesPerPixel);
        }
    }
}

} // namespace toolbox
