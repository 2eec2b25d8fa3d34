// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/BareFrames.h"

#include <array>

namespace toolbox
{
namespace
{

bool ReadAll(const BareFrames::Reader& read, UInt8* to, SInt64 offset, SInt32 count)
{
    while (count > 0) {
        const SInt32 got = read(to, offset, count);
        if (got <= 0) {
            return false;
        }
        to += got;
        offset += got;
        count -= got;
    }
    return true;
}

} // namespace

bool BareFrames::ReadNext(AVPacket& packet, const Reader& read)
{
    std::array<UInt8, kMpegAudioHeaderSize> head{};
    for (; ReadAll(read, head.data(), offset_, kMpegAudioHeaderSize); ++offset_) {
        const auto header = ParseMpegAudioHeader(head.data());
        if (!header) {
            continue;
        }
        const auto size = static_cast<SInt32>(header->size);
        av_packet_unref(&packet);
        if (av_new_packet(&packet, size) < 0 || !ReadAll(read, packet.data, offset_, size)) {
            return false;
        }
        packet.pos = offset_;
        packet.flags |= AV_PKT_FLAG_KEY;
        offset_ += size;
        return true;
    }
    return false;
}

} // namespace toolbox
