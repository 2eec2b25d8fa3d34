// SPDX-License-Identifier: MIT
#include "decoders/gif/GifDecoder.h"

#include "decoders/common/CommentText.h"
#include "decoders/common/IndexedFrame.h"
#include "decoders/common/Palette.h"

#include <optional>
#include <vector>

namespace
{

constexpr size_t kMaxExtensionBytes = 4096;
constexpr GraphicsControlBlock kNoControl = {DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};

// What the library may want for a row: 12 bits a pixel, and the whole of the part they end in.
constexpr size_t kMostBytesPerPixel = 2;
constexpr size_t kMostBytesAhead = 512;

// Browsers take delays that nobody could keep, and so nobody meant, for a tenth of a second.
constexpr int kShortestDelay = 2;
constexpr int kDelayInstead = 10;

RGBColor ColorOf(const GifColorType& color)
{
    return Palette::ColorOf(color.Red, color.Green, color.Blue);
}

// Black and white where the file has no colours, as the format recommends.
Palette PaletteOf(const ColorMapObject* map)
{
    Palette palette;
    palette.Set(1, {0xFFFF, 0xFFFF, 0xFFFF});
    for (int i = 0; map != nullptr && i < map->ColorCount; ++i)
        palette.Set(i, ColorOf(map->Colors[i]));
    return palette;
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
    : image_(image), reader_(image), file_(*reader_.File()), canvas_(image), newRows_(image),
      control_(kNoControl)
{
}

void GifDecoder::Decode()
{
    if (file_.SColorMap != nullptr) {
        globalColors_ = PaletteOf(file_.SColorMap).Release();
        SetImageColorTable(&image_, globalColors_);
    }
    try {
        ReadRecords();
    } catch (...) {
        Finish();
        throw;
    }
    Finish();
    const bool hasFrames = canvas_.FrameCount() > 0;
    if (!hasFrames && reader_.Bytes().RanOut())
        throw OSErr{kDataNotAvailableErr};
    if (!hasFrames || lacksRows_)
        throw OSErr{kVornErrRenderFailed};
}

void GifDecoder::ReadRecords()
{
    canvas_.SetSize(file_.SWidth, file_.SHeight);
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

void GifDecoder::ReadImage()
{
    reader_.Check(DGifGetImageHeader(&file_));
    const IndexedCanvas::Frame frame = AddFrame();
    if (frame.IsEmpty())
        control_.DisposalMode = DISPOSE_DO_NOT;
    DescribeFrame(frame.index);
    ReadRows(frame);
    control_ = kNoControl;
}

IndexedCanvas::Frame GifDecoder::AddFrame()
{
    const GifImageDesc& head = file_.Image;
    std::optional<Palette> ownColors;
    if (head.ColorMap != nullptr || globalColors_ == nullptr)
        ownColors = PaletteOf(head.ColorMap);
    return canvas_.AddFrame({head.Left, head.Top, head.Width, head.Height},
                            ownColors ? ownColors->Get() : globalColors_,
                            control_.TransparentColor != NO_TRANSPARENT_COLOR);
}

void GifDecoder::DescribeFrame(SInt16 index)
{
    const auto transparent = static_cast<SInt16>(control_.TransparentColor);
    const bool isTransparent = transparent != NO_TRANSPARENT_COLOR;
    hasTransparency_ = hasTransparency_ || isTransparent;
    const int delay = control_.DelayTime < kShortestDelay ? kDelayInstead : control_.DelayTime;
    SetFrameTransparency(&image_, index, isTransparent, transparent);
    SetFrameDelay(&image_, index, static_cast<UInt16>(delay));
    SetFrameUserInput(&image_, index, control_.UserInputFlag);
    SetFrameDisposalMethod(&image_, index, DisposalOf(control_.DisposalMode));
}

void GifDecoder::ReadRows(const IndexedCanvas::Frame& place)
{
    const Rect& target = place.target;
    const GifImageDesc& head = file_.Image;
    const auto rowAt = [&](SInt32 n) { return RowInOrder(n, head); };
    const SInt32 height = target.bottom - target.top;
    const auto width = static_cast<SInt16>(target.right - target.left);
    // Nothing below the canvas is needed, unless the rows come in another order.
    const SInt32 needed = head.Width == 0 ? 0 : head.Interlace ? head.Height : height;
    std::vector<UInt8> indices(static_cast<size_t>(head.Width));
    IndexedFrame frame(image_, place.index, static_cast<SInt16>(control_.TransparentColor));
    file_.Error = D_GIF_SUCCEEDED;
    SInt32 n = 0;
    for (; n < needed; ++n) {
        // The host cannot be told within the library, so it is before the library has to wait.
        if (!reader_.Bytes().HasAtHand(kMostBytesPerPixel * indices.size() + kMostBytesAhead))
            newRows_.Tell();
        if (DGifGetLine(&file_, indices.data(), head.Width) == GIF_ERROR)
            break;
        if (rowAt(n) >= height)
            continue;
        const Point start = {static_cast<SInt16>(target.top + rowAt(n)), target.left};
        frame.WriteRow(start, width, indices.data());
        if (place.index == 0)
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
    if (canvas_.FrameCount() < 2)
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
