// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/VideoTrack.h"

#include <cstring>
#include <iterator>
#include <new>
#include <numeric>
#include <utility>

namespace toolbox
{
namespace
{

constexpr Nanoseconds kUsualDuration = kSecond / 25;
// A key picture that is not recognised so long after its place has been overlooked: the next
// picture that can be decoded alone stands in for it.
constexpr SInt64 kPicturesOverdue = 2;
// What the pictures behind the next one may take.
constexpr size_t kMostBytesAhead = size_t{1} << 19;

// A sequence header followed by an extension start code is MPEG-2 (ISO 13818-2 6.2.2); libavformat
// calls both kinds MPEG-2 until it has looked further than we let it.
AVCodecID CodecOf(const AVStream& stream, const AVPacket& first)
{
    const AVCodecID id = stream.codecpar->codec_id;
    if (id != AV_CODEC_ID_MPEG1VIDEO && id != AV_CODEC_ID_MPEG2VIDEO) {
        return id;
    }
    bool inSequenceHeader = false;
    for (int i = 0; i + 3 < first.size; ++i) {
        const UInt8* const p = first.data + i;
        if (p[0] == 0 && p[1] == 0 && p[2] == 1) {
            if (inSequenceHeader) {
                return p[3] == 0xB5 ? AV_CODEC_ID_MPEG2VIDEO : AV_CODEC_ID_MPEG1VIDEO;
            }
            inSequenceHeader = p[3] == 0xB3;
        }
    }
    return id;
}

// Puts bytes in front of those of a packet. Throws std::bad_alloc.
void Prepend(const std::vector<UInt8>& bytes, AVPacket& packet)
{
    const auto count = static_cast<int>(bytes.size());
    const int before = packet.size;
    if (av_grow_packet(&packet, count) < 0) {
        throw std::bad_alloc();
    }
    std::memmove(packet.data + count, packet.data, static_cast<size_t>(before));
    std::memcpy(packet.data, bytes.data(), bytes.size());
}

size_t BytesOf(const AVFrame& frame)
{
    return std::accumulate(std::begin(frame.buf), std::end(frame.buf), size_t{0},
                           [](size_t sum, const AVBufferRef* buffer) {
                               return sum + (buffer != nullptr ? buffer->size : 0);
                           });
}

// The only picture of a packet, from a decoder of its own that is told at once that no more come.
LibAVPtr<AVFrame> DecodeAlone(const AVCodecContext& like, const AVPacket& packet)
{
    LibAVPtr<AVFrame> frame;
    AVCodecParameters* parameters = avcodec_parameters_alloc();
    if (parameters != nullptr && avcodec_parameters_from_context(parameters, &like) >= 0) {
        const LibAVPtr<AVCodecContext> decoder = TrackDecoder::Open(like.codec_id, *parameters);
        frame = NewFrame();
        const bool isDone = decoder && avcodec_send_packet(decoder.get(), &packet) >= 0 &&
                            avcodec_send_packet(decoder.get(), nullptr) >= 0 &&
                            avcodec_receive_frame(decoder.get(), frame.get()) >= 0;
        if (!isDone) {
            frame.reset();
        }
    }
    avcodec_parameters_free(&parameters);
    return frame;
}

} // namespace

std::unique_ptr<VideoTrack> VideoTrack::Create(const AVStream& stream, const AVPacket& first,
                                               bool hasClock, Nanoseconds start)
{
    LibAVPtr<AVCodecContext> decoder = TrackDecoder::Open(CodecOf(stream, first), *stream.codecpar);
    if (!decoder) {
        return nullptr;
    }
    return std::unique_ptr<VideoTrack>(new VideoTrack(std::move(decoder), hasClock, start));
}

VideoTrack::VideoTrack(LibAVPtr<AVCodecContext> decoder, bool hasClock, Nanoseconds start)
    : decoder_(std::move(decoder)), hasClock_(hasClock), nextStart_(start)
{
}

void VideoTrack::Add(AVPacket& packet)
{
    if (taking_ != Taking::kAll && IsPassedOver(packet)) {
        return;
    }
    const bool isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
    if (isKey && !current_.frame && !hasPictures_) {
        firstKey_.reset(av_packet_clone(&packet));
    }
    decoder_.Add(packet);
}

// The pictures right behind the key one that are shown before it need the group before as well.
bool VideoTrack::IsPassedOver(AVPacket& packet)
{
    const PictureCoding coding = CodingOf(packet, decoder_.Context().codec_id);
    if (taking_ == Taking::kFromKey) {
        if (coding == PictureCoding::kIntra && IsKeyLookedFor(packet)) {
            BeginWith(packet);
            return false;
        }
        picturesSeen_ += coding == PictureCoding::kNone ? 0 : 1;
        return true;
    }
    if (coding == PictureCoding::kBidirectional) {
        return true;
    }
    taking_ = Taking::kAll;
    return false;
}

bool VideoTrack::IsKeyLookedFor(const AVPacket& packet)
{
    const SInt64 expected = key_.picture.number - key_.from.pictures;
    return PacketMark(packet) == key_.picture.mark || picturesSeen_ > expected + kPicturesOverdue;
}

void VideoTrack::BeginWith(AVPacket& packet)
{
    if (PacketMark(packet) == key_.picture.mark) {
        packet.pts = key_.time;
    }
    if (key_.picture.header) {
        Prepend(*key_.picture.header, packet);
    }
    taking_ = Taking::kFromNextReference;
}

VideoTrack::Step VideoTrack::DecodeNext()
{
    return DecodeInto(next_);
}

VideoTrack::Step VideoTrack::DecodeAhead()
{
    Picture picture;
    const Step step = DecodeInto(picture);
    if (step == Step::kFrame) {
        ahead_.push_back(std::move(picture));
    }
    return step;
}

bool VideoTrack::HasRoomAhead() const
{
    return next_.frame && (ahead_.size() + 1) * BytesOf(*next_.frame) <= kMostBytesAhead;
}

VideoTrack::Step VideoTrack::DecodeInto(Picture& picture)
{
    LibAVPtr<AVFrame> frame = NewFrame();
    const Step step = decoder_.Decode(*frame);
    if (step == Step::kFrame) {
        picture = Picture{std::move(frame)};
        Time(picture);
    }
    return step;
}

// A stamp that would take time back, or none, is replaced by the end of the picture before.
void VideoTrack::Time(Picture& picture)
{
    const Nanoseconds duration = DurationOf(*picture.frame);
    const SInt64 stamp = picture.frame->best_effort_timestamp;
    const bool isUsable = hasClock_ && stamp != AV_NOPTS_VALUE &&
                          (!hasPictures_ || stamp > nextStart_ - duration / 2);
    picture.start = isUsable ? stamp : nextStart_;
    picture.end = picture.start + duration;
    nextStart_ = picture.end;
    hasPictures_ = true;
}

Nanoseconds VideoTrack::DurationOf(const AVFrame& frame) const
{
    const AVRational rate = decoder_.Context().framerate;
    if (rate.num > 0 && rate.den > 0) {
        const SInt64 fields = 2 + frame.repeat_pict;
        return av_rescale(kSecond * fields, rate.den, SInt64{rate.num} * 2);
    }
    return frame.pkt_duration > 0 ? frame.pkt_duration : kUsualDuration;
}

bool VideoTrack::TakeNext()
{
    const bool isSamePicture = std::exchange(isFirstOnTheSide_, false);
    const bool wasShown = !current_.frame || current_.isShown || isSamePicture;
    next_.isShown = isSamePicture && current_.isShown;
    current_ = std::exchange(next_, Picture{});
    if (!ahead_.empty()) {
        next_ = std::move(ahead_.front());
        ahead_.pop_front();
    }
    return wasShown;
}

bool VideoTrack::ShowFirst()
{
    if (current_.frame || !firstKey_) {
        return current_.frame != nullptr;
    }
    const LibAVPtr<AVPacket> packet = std::move(firstKey_);
    current_.frame = DecodeAlone(decoder_.Context(), *packet);
    if (!current_.frame) {
        return false;
    }
    const SInt64 stamp = current_.frame->best_effort_timestamp;
    current_.start = hasClock_ && stamp != AV_NOPTS_VALUE ? stamp : nextStart_;
    current_.end = current_.start + DurationOf(*current_.frame);
    isFirstOnTheSide_ = true;
    return true;
}

void VideoTrack::Flush(const KeySample& key)
{
    decoder_.Flush();
    next_ = Picture{};
    ahead_.clear();
    isFirstOnTheSide_ = false;
    hasPictures_ = false;
    nextStart_ = key.time;
    key_ = key;
    taking_ = key.isBeginning ? Taking::kAll : Taking::kFromKey;
    picturesSeen_ = 0;
}

} // namespace toolbox
