// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/VideoTrack.h"

#include <utility>

namespace toolbox
{
namespace
{

constexpr Nanoseconds kUsualDuration = kSecond / 25;

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
    const bool isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
    if (isKey && !current_.frame && !hasPictures_) {
        firstKey_.reset(av_packet_clone(&packet));
    }
    decoder_.Add(packet);
}

VideoTrack::Step VideoTrack::DecodeNext()
{
    LibAVPtr<AVFrame> frame = NewFrame();
    const Step step = decoder_.Decode(*frame);
    if (step == Step::kFrame) {
        next_ = Picture{std::move(frame)};
        Time(next_);
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

void VideoTrack::Flush(Nanoseconds start)
{
    decoder_.Flush();
    next_ = Picture{};
    isFirstOnTheSide_ = false;
    hasPictures_ = false;
    nextStart_ = start;
}

} // namespace toolbox
