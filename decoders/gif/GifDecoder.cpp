// SPDX-License-Identifier: MIT
#include "decoders/gif/GifDecoder.h"

#include "decoders/common/CommentText.h"
#include "decoders/common/IndexedFrame.h"

#include <string>

namespace
{

constexpr size_t kMaxExtensionBytes = 4096;
constexpr UInt8 kControlExtension = 0xF9;
constexpr UInt8 kCommentExtension = 0xFE;
constexpr UInt8 kApplicationExtension = 0xFF;
constexpr UInt8 kHasColors = 0x80;
constexpr UInt8 kIsInterlaced = 0x40;

// Browsers take delays that nobody could keep, and so nobody meant, for a tenth of a second.
constexpr UInt16 kShortestDelay = 2;
constexpr UInt16 kDelayInstead = 10;

TDisposalMethod DisposalOf(UInt8 flags)
{
    constexpr int kAlsoPrevious = 4; // by an early description of the format
    const int mode = flags >> 2 & 7;
    if (mode == kAlsoPrevious)
        return kDisposalRestorePrevious;
    return static_cast<TDisposalMethod>(mode <= kDisposalRestorePrevious ? mode : 0);
}

} // namespace

SInt32 GifDecoder::Picture::RowAt(SInt32 n) const
{
    struct Pass {
        SInt32 first;
        SInt32 step;
    };
    for (const Pass pass : {Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}}) {
        const SInt32 rows = (place.height - pass.first + pass.step - 1) / pass.step;
        if (isInterlaced && n < rows)
            return pass.first + n * pass.step;
        n -= isInterlaced ? rows : 0;
    }
    return n;
}

void GifDecoder::Decode()
{
    ReadHeader();
    try {
        ReadRecords();
    } catch (...) {
        Finish();
        throw;
    }
    Finish();
    const bool hasFrames = canvas_.FrameCount() > 0;
    if (!hasFrames && bytes_.RanOut())
        throw OSErr{kDataNotAvailableErr};
    if (!hasFrames || lacksRows_)
        throw OSErr{kVornErrRenderFailed};
}

void GifDecoder::ReadHeader()
{
    UInt8 signature[6];
    bytes_.ReadAll(signature, sizeof signature);
    if (!std::equal(signature, signature + 3, kSignatures[0])) // whatever the version
        throw OSErr{kVornErrRenderFailed};
    const UInt16 width = bytes_.NextWord();
    const UInt16 height = bytes_.NextWord();
    const UInt8 flags = bytes_.NextByte();
    const UInt8 background = bytes_.NextByte();
    bytes_.NextByte(); // the shape of pixels
    if ((flags & kHasColors) != 0) {
        globalColors_ = ReadPalette(flags).Release();
        SetImageColorTable(&image_, globalColors_);
        if (background < 2 << (flags & 7))
            background_ = (*globalColors_)->ctTable[background].rgb;
    }
    canvas_.SetSize(width, height);
}

// Black and white where the file has no colours, as the format recommends.
Palette GifDecoder::ReadPalette(UInt8 flags)
{
    Palette palette;
    palette.Set(1, {0xFFFF, 0xFFFF, 0xFFFF});
    const int count = (flags & kHasColors) != 0 ? 2 << (flags & 7) : 0;
    for (int i = 0; i < count; ++i) {
        UInt8 color[3];
        bytes_.ReadAll(color, sizeof color);
        palette.Set(i, Palette::ColorOf(color[0], color[1], color[2]));
    }
    return palette;
}

// Many files lack a trailer: data that end between records are as good.
void GifDecoder::ReadRecords()
{
    UInt8 kind = 0;
    while (bytes_.Read(&kind, 1) == 1 && kind != ';') {
        hasParts_ = true;
        if (kind == ',')
            ReadImage();
        else if (kind == '!')
            ReadExtension();
        else
            throw OSErr{kVornErrRenderFailed};
    }
}

std::span<const UInt8> GifDecoder::NextPart()
{
    const size_t size = bytes_.NextByte();
    bytes_.ReadAll(part_.data(), size);
    hasParts_ = size != 0;
    return {part_.data(), size};
}

void GifDecoder::ReadExtension()
{
    const UInt8 kind = bytes_.NextByte();
    std::string bytes; // what goes on for too long is cut off
    while (hasParts_) {
        const std::span<const UInt8> part = NextPart();
        if (bytes.size() < kMaxExtensionBytes)
            bytes.append(part.begin(), part.end());
    }
    const auto byteAt = [&](size_t i) { return static_cast<UInt8>(bytes[i]); };
    const auto wordAt = [&](size_t i) {
        return static_cast<UInt16>(byteAt(i) | byteAt(i + 1) << 8);
    };
    if (kind == kControlExtension && bytes.size() >= 4) {
        const bool isTransparent = (byteAt(0) & 1) != 0;
        control_ = {byteAt(0), wordAt(1), static_cast<SInt16>(isTransparent ? byteAt(3) : -1)};
    } else if (kind == kCommentExtension && !hasComment_) {
        // An object has one comment: the first.
        SetObjectComment(&image_, CommentFromText(bytes).c_str());
        hasComment_ = true;
    } else if (kind == kApplicationExtension && bytes.size() >= 14 && byteAt(11) == 1 &&
               (bytes.starts_with("NETSCAPE2.0") || bytes.starts_with("ANIMEXTS1.0"))) {
        // The number of repeats, one less than plays, or 0 for no end of them.
        plays_ = static_cast<UInt16>(wordAt(12) == 0 ? 0 : wordAt(12) + 1);
    }
}

void GifDecoder::ReadImage()
{
    Picture picture = {};
    for (SInt32* const each :
         {&picture.place.left, &picture.place.top, &picture.place.width, &picture.place.height})
        *each = bytes_.NextWord();
    const UInt8 flags = bytes_.NextByte();
    picture.isInterlaced = (flags & kIsInterlaced) != 0;
    std::optional<Palette> ownColors;
    if ((flags & kHasColors) != 0 || globalColors_ == nullptr)
        ownColors = ReadPalette(flags);
    const int bits = bytes_.NextByte();
    if (!LzwDecoder::CanHaveBits(bits))
        throw OSErr{kVornErrRenderFailed};
    codes_.Start(bits, static_cast<size_t>(picture.place.width));
    const IndexedCanvas::Frame frame = canvas_.AddFrame(
        picture.place, ownColors ? ownColors->Get() : globalColors_, control_.transparent >= 0);
    DescribeFrame(frame.index);
    if (frame.IsEmpty())
        SetFrameDisposalMethod(&image_, frame.index, kDisposalLeaveInPlace);
    ReadRows(picture, frame);
    while (hasParts_)
        NextPart();
    control_ = {};
}

void GifDecoder::DescribeFrame(SInt16 index)
{
    const bool isTransparent = control_.transparent >= 0;
    hasTransparency_ = hasTransparency_ || isTransparent;
    SetFrameTransparency(&image_, index, isTransparent, control_.transparent);
    SetFrameDelay(&image_, index, control_.delay < kShortestDelay ? kDelayInstead : control_.delay);
    SetFrameUserInput(&image_, index, (control_.flags & 2) != 0);
    SetFrameDisposalMethod(&image_, index, DisposalOf(control_.flags));
}

void GifDecoder::ReadRows(const Picture& picture, const IndexedCanvas::Frame& place)
{
    const Rect& target = place.target;
    const SInt32 height = target.bottom - target.top;
    const auto width = static_cast<SInt16>(target.right - target.left);
    // Nothing below the canvas is needed, unless the rows come in another order.
    const SInt32 rows = picture.isInterlaced ? picture.place.height : height;
    const SInt32 needed = picture.place.width == 0 ? 0 : rows;
    IndexedFrame frame(image_, place.index, control_.transparent);
    SInt32 n = 0;
    const auto hideTheRest = [&] {
        if (n < needed && !frame.HasMask())
            frame.ShowOnly(n, [&](SInt32 i) { return picture.RowAt(i); });
    };
    try {
        for (const UInt8* row = nullptr; n < needed && (row = NextRow()) != nullptr; ++n) {
            const SInt32 v = picture.RowAt(n);
            if (v >= height)
                continue;
            const Point start = {static_cast<SInt16>(target.top + v), target.left};
            frame.WriteRow(start, width, row);
            if (place.index == 0)
                newRows_.Note(start.v);
        }
    } catch (...) {
        hideTheRest();
        throw;
    }
    newRows_.Tell();
    hideTheRest();
    lacksRows_ = lacksRows_ || n < needed;
}

const UInt8* GifDecoder::NextRow()
{
    const UInt8* row = codes_.NextRow();
    while (row == nullptr && hasParts_ && !codes_.HasEnded()) {
        if (!bytes_.HasAtHand(1 + part_.size()))
            newRows_.Tell(); // before the host lets others run
        codes_.Add(NextPart());
        row = codes_.NextRow();
    }
    return row;
}

void GifDecoder::Finish()
{
    if (canvas_.FrameCount() < 2)
        return;
    SetImageLooping(&image_, true, static_cast<SInt16>(plays_));
    // Where a frame is taken away, browsers let the page appear; here that is white, as long as
    // nobody has told the image a colour. Only where nothing is transparent can the file's own
    // colour be what its maker saw.
    if (!hasTransparency_ && background_)
        SetImageBackgroundColor(&image_, &*background_);
}
