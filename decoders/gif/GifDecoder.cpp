// SPDX-License-Identifier: MIT
#include "decoders/gif/GifDecoder.h"

#include "decoders/common/CommentText.h"
#include "decoders/common/IndexedFrame.h"
#include "decoders/common/StillFrame.h"
#include "toolbox/memory/Memory.h"

#include <memory>
#include <optional>
#include <vector>

namespace
{

constexpr UInt16 kDepth = 8;
constexpr UInt16 kMaskDepth = 1;
constexpr SInt32 kMaxFrames = 0x7FFF;
constexpr size_t kMaxExtensionBytes = 4096;
constexpr GraphicsControlBlock kNoControl = {DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};

// What the library may want for a row: 12 bits a pixel, and the whole of the part they end in.
constexpr size_t kMostBytesPerPixel = 2;
constexpr size_t kMostBytesAhead = 512;

// Browsers take delays that nobody could keep, and so nobody meant, for a tenth of a second.
constexpr int kShortestDelay = 2;
constexpr int kDelayInstead = 10;

using ColorsOwner = std::unique_ptr<ColorTable*, void (*)(CTabHandle)>;

RGBColor ColorOf(const GifColorType& color)
{
    return {static_cast<UInt16>(color.Red * 0x101), static_cast<UInt16>(color.Green * 0x101),
            static_cast<UInt16>(color.Blue * 0x101)};
}

// Black and white where the file has no colours, as the format recommends.
ColorsOwner MakeColors(const ColorMapObject* map)
{
    ColorsOwner colors(StillFrame::NewColors(),
                       [](CTabHandle table) { DisposeHandle(reinterpret_cast<Handle>(table)); });
    ColorSpec* const entries = (*colors)->ctTable;
    entries[1].rgb = {0xFFFF, 0xFFFF, 0xFFFF};
    for (int i = 0; map != nullptr && i < map->ColorCount; ++i)
        entries[i].rgb = ColorOf(map->Colors[i]);
    return colors;
}

// The row that comes n-th in the file.
SInt32 RowInOrder(SInt32 n, const GifImageDesc& head)
{
    struct Pass {
        SInt32 first;
        SInt32 step;
    };
    for (const Pass pass : {Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}}) {
        const SInt32 rows = (head.Height - pass.first + pass.step - 1) / pass.step;
        if (head.Interlace && n < rows)
            return pass.first + n * pass.step;
        n -= head.Interlace ? rows : 0;
    }
    return n;
}

TDisposalMethod DisposalOf(int mode)
{
    constexpr int kAlsoPrevious = 4; // by an early description of the format
    if (mode == kAlsoPrevious)
        return kDisposalRestorePrevious;
    return static_cast<TDisposalMethod>(mode <= kDisposalRestorePrevious ? mode : 0);
}

} // namespace

GifDecoder::GifDecoder(VornPlugin& image)
    : image_(image), reader_(image), file_(*reader_.File()), newRows_(image), control_(kNoControl)
{
}

void GifDecoder::Run()
{
    if (file_.SColorMap != nullptr) {
        globalColors_ = MakeColors(file_.SColorMap).release();
        SetImageColorTable(&image_, globalColors_);
    }
    try {
        ReadRecords();
    } catch (...) {
        Finish();
        throw;
    }
    Finish();
    if (frameCount_ == 0 && reader_.RanOut())
        throw OSErr{kDataNotAvailableErr};
    if (frameCount_ == 0 || lacksRows_)
        throw OSErr{kVornErrRenderFailed};
}

void GifDecoder::ReadRecords()
{
    SetCanvas(file_.SWidth, file_.SHeight);
    for (;;) {
        const GifRecordType type = reader_.NextRecord();
        if (type == IMAGE_DESC_RECORD_TYPE)
            ReadImage();
        else if (type == EXTENSION_RECORD_TYPE)
            ReadExtension();
        else
            return;
    }
}

void GifDecoder::ReadExtension()
{
    int function = 0;
    const std::string bytes = ReadExtensionBytes(function);
    const auto byteAt = [&](size_t i) { return static_cast<UInt8>(bytes[i]); };
    if (function == GRAPHICS_EXT_FUNC_CODE) {
        const auto* const data = reinterpret_cast<const GifByteType*>(bytes.data());
        DGifExtensionToGCB(bytes.size(), data, &control_);
    } else if (function == COMMENT_EXT_FUNC_CODE && !hasComment_) {
        // An object has one comment: the first.
        SetObjectComment(&image_, CommentFromText(bytes).c_str());
        hasComment_ = true;
    } else if (function == APPLICATION_EXT_FUNC_CODE && bytes.size() >= 14 && byteAt(11) == 1 &&
               (bytes.starts_with("NETSCAPE2.0") || bytes.starts_with("ANIMEXTS1.0"))) {
        // The number of repeats, one less than plays, or 0 for no end of them.
        const int repeats = byteAt(12) | byteAt(13) << 8;
        plays_ = static_cast<UInt16>(repeats == 0 ? 0 : repeats + 1);
    }
}

std::string GifDecoder::ReadExtensionBytes(int& function)
{
    std::string bytes;
    GifByteType* part = nullptr; // its length and the bytes, null after the last
    reader_.Check(DGifGetExtension(&file_, &function, &part));
    while (part != nullptr) {
        if (bytes.size() < kMaxExtensionBytes)
            bytes.append(reinterpret_cast<const char*>(part + 1), part[0]);
        reader_.Check(DGifGetExtensionNext(&file_, &part));
    }
    return bytes;
}

void GifDecoder::SetCanvas(SInt32 width, SInt32 height)
{
    if (width == 0 || height == 0)
        return; // the first image makes it
    if (!budget_.Allows(static_cast<UInt64>(width), static_cast<UInt64>(height), kDepth,
                        kMaskDepth))
        throw OSErr{memFullErr};
    canvas_ = {0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)};
    SetObjectDisplayRect(&image_, &canvas_);
}

void GifDecoder::ReadImage()
{
    reader_.Check(DGifGetImageHeader(&file_));
    const GifImageDesc& head = file_.Image;
    const SInt32 right = head.Left + head.Width;
    const SInt32 bottom = head.Top + head.Height;
    const bool isFirst = frameCount_ == 0;
    if (isFirst && (right > canvas_.right || bottom > canvas_.bottom))
        SetCanvas(std::max(right, file_.SWidth), std::max(bottom, file_.SHeight));
    if (canvas_.right == 0)
        throw OSErr{kVornErrRenderFailed}; // an image of nothing on a canvas of nothing
    const auto x = [&](SInt32 h) { return std::min(h, SInt32{canvas_.right}); };
    const auto y = [&](SInt32 v) { return std::min(v, SInt32{canvas_.bottom}); };
    Rect target = {static_cast<SInt16>(y(head.Top)), static_cast<SInt16>(x(head.Left)),
                   static_cast<SInt16>(y(bottom)), static_cast<SInt16>(x(right))};
    const bool isEmpty = target.right <= target.left || target.bottom <= target.top;
    if (isEmpty) {
        target = {}; // one transparent pixel: nothing is seen of it, but it takes its time
        control_.DisposalMode = DISPOSE_DO_NOT;
    }
    const Rect place = isFirst ? canvas_ : isEmpty ? Rect{0, 0, 1, 1} : target;
    const bool hasMask = isFirst || isEmpty || control_.TransparentColor != NO_TRANSPARENT_COLOR;
    const SInt16 index = AddFrame(place, hasMask);
    OffsetRect(&target, static_cast<SInt16>(-place.left), static_cast<SInt16>(-place.top));
    ReadRows(index, target);
    control_ = kNoControl;
}

SInt16 GifDecoder::AddFrame(const Rect& place, bool hasMask)
{
    const Rect bounds = {0, 0, static_cast<SInt16>(place.bottom - place.top),
                         static_cast<SInt16>(place.right - place.left)};
    // The mask is counted in any case: a frame that lacks rows gets one later.
    budget_.Take(static_cast<UInt64>(bounds.right), static_cast<UInt64>(bounds.bottom), kDepth,
                 kMaskDepth);
    if (frameCount_ == kMaxFrames)
        throw OSErr{memFullErr};
    std::optional<ColorsOwner> ownColors;
    if (file_.Image.ColorMap != nullptr || globalColors_ == nullptr)
        ownColors = MakeColors(file_.Image.ColorMap);
    SInt16 index = -1;
    const OSErr err =
        AddNewFrame(&image_, &bounds, kDepth, ownColors ? ownColors->get() : globalColors_,
                    hasMask ? kMaskDepth : UInt16{0}, &index);
    if (err != noErr)
        throw err;
    ++frameCount_;
    DescribeFrame(index, {place.top, place.left});
    return index;
}

void GifDecoder::DescribeFrame(SInt16 index, Point position)
{
    const auto transparent = static_cast<SInt16>(control_.TransparentColor);
    const bool isTransparent = transparent != NO_TRANSPARENT_COLOR;
    hasTransparency_ = hasTransparency_ || isTransparent;
    const int delay = control_.DelayTime < kShortestDelay ? kDelayInstead : control_.DelayTime;
    SetFrameDisplayPos(&image_, index, position);
    SetFrameTransparency(&image_, index, isTransparent, transparent);
    SetFrameDelay(&image_, index, static_cast<UInt16>(delay));
    SetFrameUserInput(&image_, index, control_.UserInputFlag);
    SetFrameDisposalMethod(&image_, index, DisposalOf(control_.DisposalMode));
}

void GifDecoder::ReadRows(SInt16 index, const Rect& target)
{
    const GifImageDesc& head = file_.Image;
    const auto rowAt = [&](SInt32 n) { return RowInOrder(n, head); };
    const SInt32 height = target.bottom - target.top;
    const auto width = static_cast<SInt16>(target.right - target.left);
    // Nothing below the canvas is needed, unless the rows come in another order.
    const SInt32 needed = head.Width == 0 ? 0 : head.Interlace ? head.Height : height;
    std::vector<UInt8> indices(static_cast<size_t>(head.Width));
    IndexedFrame frame(image_, index, static_cast<SInt16>(control_.TransparentColor));
    file_.Error = D_GIF_SUCCEEDED;
    SInt32 n = 0;
    for (; n < needed; ++n) {
        // The host cannot be told within the library, so it is before the library has to wait.
        if (!reader_.HasAtHand(kMostBytesPerPixel * indices.size() + kMostBytesAhead))
            newRows_.Tell();
        if (DGifGetLine(&file_, indices.data(), head.Width) == GIF_ERROR)
            break;
        if (rowAt(n) >= height)
            continue;
        const Point start = {static_cast<SInt16>(target.top + rowAt(n)), target.left};
        frame.WriteRow(start, width, indices.data());
        if (index == 0)
            newRows_.Note(start.v);
    }
    newRows_.Tell();
    if (n < needed) {
        if (!frame.HasMask())
            frame.ShowOnly(n, rowAt);
        // The image's own end, come too early, leaves the library at the next record's side.
        if (file_.Error != D_GIF_ERR_EOF_TOO_SOON)
            reader_.Check(GIF_ERROR);
        lacksRows_ = true;
    }
    if (needed == 0 || n < head.Height)
        SkipRows();
}

void GifDecoder::SkipRows()
{
    GifByteType* part = nullptr;
    do {
        reader_.Check(DGifGetCodeNext(&file_, &part));
    } while (part != nullptr);
}

void GifDecoder::Finish()
{
    if (frameCount_ < 2)
        return;
    SetImageLooping(&image_, true, static_cast<SInt16>(plays_));
    // Where a frame is taken away, browsers let the page appear; here that is white, as long as
    // nobody has told the image a colour. Only where nothing is transparent can the file's own
    // colour be what its maker saw.
    const ColorMapObject* const colors = file_.SColorMap;
    if (!hasTransparency_ && colors != nullptr && file_.SBackGroundColor < colors->ColorCount) {
        const RGBColor background = ColorOf(colors->Colors[file_.SBackGroundColor]);
        SetImageBackgroundColor(&image_, &background);
    }
}
