// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/TrackDecoder.h"

#include <algorithm>
#include <new>
#include <utility>

namespace toolbox
{

LibAVPtr<AVFrame> NewFrame()
{
    LibAVPtr<AVFrame> frame(av_frame_alloc());
    if (!frame) {
        throw std::bad_alloc();
    }
    return frame;
}

LibAVPtr<AVCodecContext> TrackDecoder::Open(AVCodecID codec, const AVCodecParameters& parameters)
{
    const AVCodec* const found = avcodec_find_decoder(codec);
    if (found == nullptr) {
        return nullptr;
    }
    LibAVPtr<AVCodecContext> decoder(avcodec_alloc_context3(found));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), &parameters) < 0) {
        return nullptr;
    }
    decoder->codec_id = codec;
    decoder->thread_count = 1;
    decoder->pkt_timebase = kNanosecondBase;
    if (avcodec_open2(decoder.get(), found, nullptr) < 0) {
        return nullptr;
    }
    return decoder;
}

void TrackDecoder::Add(AVPacket& packet)
{
    LibAVPtr<AVPacket> own(av_packet_alloc());
    if (!own) {
        throw std::bad_alloc();
    }
    const SInt64 start = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (start != AV_NOPTS_VALUE) {
        endOfPackets_ = std::max(endOfPackets_, start + packet.duration);
    }
    av_packet_move_ref(own.get(), &packet);
    packets_.push_back(std::move(own));
}

TrackDecoder::Step TrackDecoder::Decode(AVFrame& frame)
{
    for (;;) {
        const int err = avcodec_receive_frame(decoder_.get(), &frame);
        if (err >= 0) {
            return Step::kFrame;
        }
        if (err == AVERROR_EOF || (isDraining_ && err != AVERROR(EAGAIN))) {
            isEnded_ = true;
            return Step::kEnded;
        }
        if (!Feed()) {
            return Step::kNeedsPacket;
        }
    }
}

// False when the decoder wants a packet and there is none.
bool TrackDecoder::Feed()
{
    if (packets_.empty()) {
        if (!dataEnded_) {
            return false;
        }
        avcodec_send_packet(decoder_.get(), nullptr);
        isDraining_ = true;
        return true;
    }
    const LibAVPtr<AVPacket> packet = std::move(packets_.front());
    packets_.pop_front();
    avcodec_send_packet(decoder_.get(), packet.get());
    return true;
}

void TrackDecoder::Flush()
{
    packets_.clear();
    avcodec_flush_buffers(decoder_.get());
    dataEnded_ = isDraining_ = isEnded_ = false;
    endOfPackets_ = kNoTime;
}

} // namespace toolbox
