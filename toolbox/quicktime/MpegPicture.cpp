// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MpegPicture.h"

#include <cstddef>

namespace toolbox
{
namespace
{

constexpr UInt8 kPictureCode = 0x00;
constexpr UInt8 kSequenceCode = 0xB3;
constexpr UInt8 kGroupCode = 0xB8;
constexpr size_t kStartCodeSize = 4;
constexpr UInt8 kClosedGroupBit = 0x40;

using Bytes = std::span<const UInt8>;

Bytes BytesOf(const AVPacket& packet)
{
    return {packet.data, static_cast<size_t>(packet.size)};
}

// From the first start code on for which `isWanted` holds; empty if there is none.
template <class IsWanted>
Bytes From(Bytes bytes, IsWanted isWanted)
{
    for (size_t at = 0; at + kStartCodeSize <= bytes.size(); ++at) {
        const UInt8* const p = bytes.data() + at;
        if (p[0] == 0 && p[1] == 0 && p[2] == 1 && isWanted(p[3])) {
            return bytes.subspan(at);
        }
    }
    return {};
}

Bytes FromCode(Bytes bytes, UInt8 wanted)
{
    return From(bytes, [wanted](UInt8 code) { return code == wanted; });
}

} // namespace

bool IsMpegVideo(AVCodecID codec)
{
    return codec == AV_CODEC_ID_MPEG1VIDEO || codec == AV_CODEC_ID_MPEG2VIDEO;
}

PictureCoding CodingOf(const AVPacket& packet, AVCodecID codec)
{
    if (!IsMpegVideo(codec)) {
        const bool isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
        return isKey ? PictureCoding::kIntra : PictureCoding::kPredicted;
    }
    const Bytes picture = FromCode(BytesOf(packet), kPictureCode);
    if (picture.size() < kStartCodeSize + 2) {
        return PictureCoding::kNone;
    }
    switch ((picture[kStartCodeSize + 1] >> 3) & 7) { // behind ten bits of temporal reference
    case 1:
        return PictureCoding::kIntra;
    case 3:
        return PictureCoding::kBidirectional;
    default:
        return PictureCoding::kPredicted;
    }
}

std::span<const UInt8> SequenceHeaderOf(const AVPacket& packet, AVCodecID codec)
{
    if (!IsMpegVideo(codec)) {
        return {};
    }
    const Bytes header = FromCode(BytesOf(packet), kSequenceCode);
    const Bytes behind =
        From(header, [](UInt8 code) { return code == kPictureCode || code == kGroupCode; });
    return header.first(header.size() - behind.size());
}

bool BeginsClosedGroup(const AVPacket& packet, AVCodecID codec)
{
    if (!IsMpegVideo(codec)) {
        return false;
    }
    const Bytes group = FromCode(BytesOf(packet), kGroupCode);
    // Behind 25 bits of time code.
    return group.size() >= kStartCodeSize + 4 && (group[kStartCodeSize + 3] & kClosedGroupBit) != 0;
}

} // namespace toolbox
