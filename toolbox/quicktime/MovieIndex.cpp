// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MovieIndex.h"

#include <algorithm>
#include <utility>

namespace toolbox
{
namespace
{

// Sound can begin anywhere; a place every quarter of a second is enough to find one quickly.
constexpr Nanoseconds kSoundKeyDistance = kSecond / 4;
// Layer III frames need the bytes of up to nine frames before them.
constexpr Nanoseconds kSoundRunUp = kSecond / 2;
// Sound that has been away for this long is not looked for by reading from its end on.
constexpr Nanoseconds kLostSound = 3 * kSecond;
constexpr int kSkipSamplesSize = 10; // libavcodec's side data: u32 start, u32 end, two reasons

UInt32 LittleEndian32(const UInt8* p)
{
    return FOUR_CHARS(p[3], p[2], p[1], p[0]);
}

Nanoseconds TimeOf(const AVPacket& packet)
{
    return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

// The last of `places` whose time is not behind `time`; null if all are.
template <class Place>
const Place* LastUpTo(const std::vector<Place>& places, Nanoseconds time)
{
    const auto after = std::upper_bound(
        places.begin(), places.end(), time,
        [](Nanoseconds wanted, const Place& place) { return wanted < place.time; });
    return after == places.begin() ? nullptr : &*(after - 1);
}

} // namespace

Timeline TimelineFor(StreamKind kind, const ReadPlace& begin)
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
        if (isComplete_) {
            TakeNewKey();
        }
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
    int& chosen = type == AVMEDIA_TYPE_VIDEO ? pictureStream_ : soundStream_;
    if (chosen < 0) {
        chosen = packet.stream_index;
    }
    if (packet.stream_index == pictureStream_) {
        NotePicture(packet, stream.codecpar->codec_id);
    } else if (packet.stream_index == soundStream_) {
        NoteSound(packet);
    }
}

void MovieIndex::NotePicture(const AVPacket& packet, AVCodecID codec)
{
    const PictureCoding coding = CodingOf(packet, codec);
    if (coding == PictureCoding::kNone) {
        return;
    }
    if (coding == PictureCoding::kBidirectional) {
        NoteLeading(packet);
    } else {
        group_ = Group::kBehindLeading;
        TakeNewKey();
    }
    if (coding == PictureCoding::kIntra) {
        NoteKey(packet, codec);
    }
    if (packet.pos >= 0) {
        lastPicture_ = PlaceOf(packet, TimeOf(packet));
    }
    ++pictures_;
}

// Decoding begins with the first picture anyhow. For others reading begins with the picture
// before, so that the demultiplexer is in step when the key comes.
void MovieIndex::NoteKey(const AVPacket& packet, AVCodecID codec)
{
    const auto header = SequenceHeaderOf(packet, codec);
    if (!header.empty() &&
        (!header_ || !std::equal(header.begin(), header.end(), header_->begin(), header_->end()))) {
        header_ = std::make_shared<const std::vector<UInt8>>(header.begin(), header.end());
    }
    if (!std::exchange(hasFirstKey_, true)) {
        group_ = BeginsClosedGroup(packet, codec) ? Group::kBehindLeading : Group::kFirstOpen;
        return;
    }
    const bool hasTime = !HasStamps() || packet.pts != AV_NOPTS_VALUE;
    if (lastPicture_ && hasTime) {
        const Nanoseconds time = HasStamps() ? packet.pts : packet.dts - neverShown_;
        newKey_ = KeySample{
            time, *lastPicture_,
            KeyPicture{PacketMark(packet), pictures_, header.empty() ? header_ : nullptr}, false};
    }
}

// A picture shown before the key one that it comes behind: counted times are in coding order.
void MovieIndex::NoteLeading(const AVPacket& packet)
{
    if (HasStamps()) {
        return;
    }
    if (group_ == Group::kFirstOpen) {
        neverShown_ += packet.duration;
    } else if (newKey_) {
        newKey_->time += packet.duration;
    }
}

void MovieIndex::TakeNewKey()
{
    if (newKey_) {
        keys_.push_back(*newKey_);
        newKey_.reset();
    }
}

void MovieIndex::NoteSound(const AVPacket& packet)
{
    const Nanoseconds time = TimeOf(packet);
    const bool isFarEnough = sounds_.empty() || time >= sounds_.back().time + kSoundKeyDistance;
    if (packet.pos >= 0 && time != AV_NOPTS_VALUE && isFarEnough) {
        sounds_.push_back(PlaceOf(packet, time));
    }
}

ReadPlace MovieIndex::PlaceOf(const AVPacket& packet, Nanoseconds time) const
{
    return {stream_.Start().start + packet.pos, time, timeline_.OffsetOf(packet.stream_index),
            pictures_};
}

bool MovieIndex::HasStamps() const
{
    const StreamKind kind = stream_.Start().kind;
    return kind == StreamKind::kProgramStream || kind == StreamKind::kTransportStream;
}

void MovieIndex::NoteTrimmedSound(const AVPacket& packet, int sampleRate)
{
    size_t size = 0;
    const UInt8* const data = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (data != nullptr && size >= kSkipSamplesSize && sampleRate > 0) {
        const Nanoseconds padding = av_rescale(LittleEndian32(data + 4), kSecond, sampleRate);
        trimmed_ += av_rescale(LittleEndian32(data), kSecond, sampleRate) + padding;
        padding_ += padding;
    }
}

Nanoseconds MovieIndex::End() const
{
    const Nanoseconds end = timeline_.End();
    return end == kNoTime ? kNoTime : std::max(timeline_.First(), end - trimmed_);
}

Nanoseconds MovieIndex::StartOfPadding() const
{
    return padding_ > 0 ? timeline_.End() - padding_ : INT64_MAX;
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

KeySample MovieIndex::FindKey(Nanoseconds time) const
{
    const ReadPlace* const sound = LastUpTo(sounds_, time - kSoundRunUp);
    if (!hasFirstKey_) {
        return sound != nullptr ? KeySample{sound->time, *sound, {}, true} : KeySample{};
    }
    const KeySample* const found = LastUpTo(keys_, time);
    if (found == nullptr) {
        return {};
    }
    KeySample key = *found;
    if (stream_.Start().kind == StreamKind::kTransportStream) {
        key.from = {}; // what its streams are may be told at the beginning only
    } else if (sound != nullptr && sound->time > time - kLostSound &&
               sound->position < key.from.position) {
        key.from = *sound;
    }
    return key;
}

} // namespace toolbox
