// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MovieIndex.h"

#include <algorithm>

namespace toolbox
{
namespace
{

// Sound can begin anywhere; a place every quarter of a second is enough to find one quickly.
constexpr Nanoseconds kSoundKeyDistance = kSecond / 4;
// Layer III frames need the bytes of up to nine frames before them.
constexpr Nanoseconds kSoundRunUp = kSecond / 2;
constexpr int kSkipSamplesSize = 10; // libavcodec's side data: u32 start, u32 end, two reasons

UInt32 LittleEndian32(const UInt8* p)
{
    return FOUR_CHARS(p[3], p[2], p[1], p[0]);
}

} // namespace

Timeline TimelineFor(StreamKind kind, const KeySample& begin)
{
    const Timeline::Clock clock = kind == StreamKind::kVideo   ? Timeline::Clock::kPictures
                                  : kind == StreamKind::kAudio ? Timeline::Clock::kSound
                                                               : Timeline::Clock::kStamps;
    Timeline timeline(clock, begin.time);
    timeline.SetOffset(begin.stampShift);
    return timeline;
}

void MovieIndex::TakeIn(SInt64 bytes)
{
    const SInt64 enough = stream_.BytesTaken() + bytes;
    while (!isComplete_) {
        const MovieStream::Step step = stream_.Advance();
        isWaiting_ = step == MovieStream::Step::kWaiting;
        isComplete_ = step == MovieStream::Step::kEnded || step == MovieStream::Step::kFailed;
        if (step != MovieStream::Step::kPacket) {
            return;
        }
        Note(stream_.Packet());
        if (stream_.BytesTaken() >= enough) {
            return;
        }
    }
}

void MovieIndex::Note(AVPacket& packet)
{
    const AVStream& stream = stream_.StreamOfPacket();
    const AVMediaType type = stream.codecpar->codec_type;
    const bool isMedia = (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO) &&
                         (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
    if (!isMedia) {
        return;
    }
    if (!hasTimeline_) {
        timeline_ = TimelineFor(stream_.Start().kind, {});
        hasTimeline_ = true;
    }
    NoteTrimmedSound(packet, stream.codecpar->sample_rate);
    timeline_.Place(packet, stream);
    if (packet.pos >= 0 && IsKey(packet, stream)) {
        const SInt64 time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
        keys_.push_back(
            {time, stream_.Start().start + packet.pos, timeline_.OffsetOf(packet.stream_index)});
    }
}

// Pictures decide where decoding can begin; sound does as long as there are none.
bool MovieIndex::IsKey(const AVPacket& packet, const AVStream& stream)
{
    const bool isPicture = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
    const SInt64 time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if ((packet.flags & AV_PKT_FLAG_KEY) == 0 || time == AV_NOPTS_VALUE) {
        return false;
    }
    if (isPicture && !keysArePictures_) {
        keys_.clear();
        keysArePictures_ = true;
        keyStream_ = packet.stream_index;
    } else if (keyStream_ < 0) {
        keyStream_ = packet.stream_index;
    }
    if (packet.stream_index != keyStream_) {
        return false;
    }
    return isPicture || keys_.empty() || time >= keys_.back().time + kSoundKeyDistance;
}

void MovieIndex::NoteTrimmedSound(const AVPacket& packet, int sampleRate)
{
    size_t size = 0;
    const UInt8* const data = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (data != nullptr && size >= kSkipSamplesSize && sampleRate > 0) {
        const SInt64 samples = SInt64{LittleEndian32(data)} + LittleEndian32(data + 4);
        trimmed_ += av_rescale(samples, kSecond, sampleRate);
    }
}

Nanoseconds MovieIndex::End() const
{
    const Nanoseconds end = timeline_.End();
    return end == kNoTime ? kNoTime : std::max(timeline_.First(), end - trimmed_);
}

Nanoseconds MovieIndex::AnnouncedLength(SInt32 fileSize) const
{
    const Nanoseconds announced = stream_.AnnouncedDuration();
    if (announced != kNoTime) {
        return announced;
    }
    const SInt64 taken = stream_.BytesTaken();
    if (End() == kNoTime || fileSize <= taken || taken <= 0) {
        return kNoTime;
    }
    return av_rescale(End() - Start(), fileSize, taken);
}

const KeySample* MovieIndex::FindKey(Nanoseconds time) const
{
    const Nanoseconds latest = keysArePictures_ ? time : time - kSoundRunUp;
    const auto after = std::upper_bound(
        keys_.begin(), keys_.end(), latest,
        [](Nanoseconds wanted, const KeySample& key) { return wanted < key.time; });
    if (keys_.empty()) {
        return nullptr;
    }
    return after == keys_.begin() ? &keys_.front() : &*(after - 1);
}

} // namespace toolbox
