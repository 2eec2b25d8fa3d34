// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/Timeline.h"

#include "toolbox/quicktime/MpegAudioHeader.h"

#include <algorithm>
#include <utility>

namespace toolbox
{
namespace
{

// Stamps of one recording stay within these of what is expected.
constexpr Nanoseconds kFurthestBack = 1 * kSecond;
constexpr Nanoseconds kFurthestAhead = 10 * kSecond;

bool IsJump(Nanoseconds stamp, Nanoseconds expected)
{
    return stamp < expected - kFurthestBack || stamp > expected + kFurthestAhead;
}

SInt64 ToNanoseconds(SInt64 stamp, AVRational timeBase)
{
    return stamp == AV_NOPTS_VALUE ? stamp : av_rescale_q(stamp, timeBase, kNanosecondBase);
}

// libavformat does not know how long the first frames of sound last; their headers tell.
Nanoseconds DurationOf(const AVPacket& packet, const AVStream& stream)
{
    const AVCodecID codec = stream.codecpar->codec_id;
    const bool isMpegAudio =
        codec == AV_CODEC_ID_MP1 || codec == AV_CODEC_ID_MP2 || codec == AV_CODEC_ID_MP3;
    if (isMpegAudio && packet.size >= static_cast<int>(kMpegAudioHeaderSize)) {
        if (const auto header = ParseMpegAudioHeader(packet.data)) {
            return av_rescale(header->samples, kSecond, header->sampleRate);
        }
    }
    return std::max<Nanoseconds>(0,
                                 av_rescale_q(packet.duration, stream.time_base, kNanosecondBase));
}

SInt64 Shifted(SInt64 stamp, Nanoseconds by)
{
    return stamp == AV_NOPTS_VALUE ? stamp : stamp + by;
}

} // namespace

void Timeline::Place(AVPacket& packet, const AVStream& of)
{
    auto [found, isNew] = streams_.try_emplace(packet.stream_index);
    StreamTime& stream = found->second;
    if (isNew) {
        stream.offset = startOffset_;
    }
    packet.pts = ToNanoseconds(packet.pts, of.time_base);
    packet.dts = ToNanoseconds(packet.dts, of.time_base);
    packet.duration = DurationOf(packet, of);
    packet.time_base = kNanosecondBase;
    if (clock_ != Clock::kStamps) {
        Count(stream, packet, packet.duration);
        return;
    }
    const SInt64 stamp = packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
    if (stamp != AV_NOPTS_VALUE) {
        Follow(stream, packet, stamp, packet.duration);
    } else if (stream.next != kNoTime) {
        stream.next += packet.duration;
        Note(stream.next - packet.duration, stream.next);
    }
}

// What came before the first known duration lasted as long as that, each.
void Timeline::Count(StreamTime& stream, AVPacket& packet, Nanoseconds duration)
{
    if (stream.next == kNoTime) {
        stream.next = start_;
    }
    if (duration == 0) {
        ++stream.unknownDurations;
    } else {
        stream.next += std::exchange(stream.unknownDurations, 0) * duration;
    }
    packet.dts = stream.next;
    packet.pts = clock_ == Clock::kSound ? packet.dts : AV_NOPTS_VALUE;
    stream.next += duration;
    Note(packet.dts, stream.next);
}

void Timeline::Follow(StreamTime& stream, AVPacket& packet, Nanoseconds stamp, Nanoseconds duration)
{
    if (stream.next != kNoTime && IsJump(stamp + stream.offset, stream.next)) {
        Mend(stream, stamp);
    }
    const Nanoseconds offset = stream.offset;
    stream.next = stamp + offset + duration;
    packet.pts = Shifted(packet.pts, offset);
    packet.dts = Shifted(packet.dts, offset);
    const Nanoseconds shown = packet.pts != AV_NOPTS_VALUE ? packet.pts : stamp + offset;
    Note(shown, shown + duration);
}

// The other streams of the same recording jump together: what mended one of them mends this one
// in step with it, if it fits.
void Timeline::Mend(StreamTime& stream, Nanoseconds stamp)
{
    for (const auto& [index, other] : streams_) {
        if (other.offset != stream.offset && !IsJump(stamp + other.offset, stream.next)) {
            stream.offset = other.offset;
            return;
        }
    }
    stream.offset = stream.next - stamp;
}

void Timeline::Note(Nanoseconds start, Nanoseconds end)
{
    first_ = first_ == kNoTime ? start : std::min(first_, start);
    end_ = std::max(end_, end);
}

Nanoseconds Timeline::OffsetOf(int stream) const
{
    const auto found = streams_.find(stream);
    return found != streams_.end() ? found->second.offset : startOffset_;
}

} // namespace toolbox
