// SPDX-License-Identifier: MIT
#include "tests/toolbox/PlainDecode.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace
{

constexpr int kBufferSize = 32768;

// This program is linked to the system's libraries, which know every format.
struct Freeing {
    void operator()(AVFormatContext* it) const { avformat_close_input(&it); }
    void operator()(AVCodecContext* it) const { avcodec_free_context(&it); }
    void operator()(AVFrame* it) const { av_frame_free(&it); }
    void operator()(AVPacket* it) const { av_packet_free(&it); }
    void operator()(SwsContext* it) const { sws_freeContext(it); }
};
template <class T>
using Owned = std::unique_ptr<T, Freeing>;

// An I/O context over bytes in memory.
struct Input {
    const std::string& bytes;
    size_t at = 0;

    static int Read(void* self, UInt8* to, int size)
    {
        auto& input = *static_cast<Input*>(self);
        const size_t count = std::min(static_cast<size_t>(size), input.bytes.size() - input.at);
        std::memcpy(to, input.bytes.data() + input.at, count);
        input.at += count;
        return count > 0 ? static_cast<int>(count) : AVERROR_EOF;
    }
    static SInt64 Seek(void* self, SInt64 offset, int whence)
    {
        auto& input = *static_cast<Input*>(self);
        if (whence == AVSEEK_SIZE) {
            return static_cast<SInt64>(input.bytes.size());
        }
        input.at = static_cast<size_t>(offset);
        return whence == SEEK_SET ? offset : AVERROR(ENOSYS);
    }
};

class Decoding
{
public:
    explicit Decoding(const std::string& bytes) : input_{bytes}, format_(avformat_alloc_context())
    {
        format_->pb = avio_alloc_context(static_cast<UInt8*>(av_malloc(kBufferSize)), kBufferSize,
                                         0, &input_, Input::Read, nullptr, Input::Seek);
        AVFormatContext* opening = format_.release();
        io_ = opening->pb;
        const int err = avformat_open_input(&opening, nullptr, nullptr, nullptr);
        format_.reset(opening);
        if (err < 0 || avformat_find_stream_info(opening, nullptr) < 0) {
            throw std::runtime_error("no movie");
        }
        stream_ = av_find_best_stream(opening, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
        const AVCodecParameters& parameters = *opening->streams[stream_]->codecpar;
        decoder_.reset(avcodec_alloc_context3(avcodec_find_decoder(parameters.codec_id)));
        avcodec_parameters_to_context(decoder_.get(), &parameters);
        decoder_->thread_count = 1;
        avcodec_open2(decoder_.get(), nullptr, nullptr);
    }
    ~Decoding()
    {
        format_.reset();
        av_freep(&io_->buffer);
        avio_context_free(&io_);
    }
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;

    PlainPictures All()
    {
        const Owned<AVPacket> packet(av_packet_alloc());
        while (av_read_frame(format_.get(), packet.get()) >= 0) {
            if (packet->stream_index == stream_) {
                avcodec_send_packet(decoder_.get(), packet.get());
                TakeFrames();
            }
            av_packet_unref(packet.get());
        }
        avcodec_send_packet(decoder_.get(), nullptr);
        TakeFrames();
        const AVStream& stream = *format_->streams[stream_];
        if (stream.start_time != AV_NOPTS_VALUE && format_->start_time != AV_NOPTS_VALUE) {
            pictures_.start = static_cast<double>(stream.start_time) * av_q2d(stream.time_base) -
                              static_cast<double>(format_->start_time) / AV_TIME_BASE;
        }
        pictures_.rate = av_q2d(decoder_->framerate);
        return std::move(pictures_);
    }

private:
    void TakeFrames()
    {
        const Owned<AVFrame> frame(av_frame_alloc());
        while (avcodec_receive_frame(decoder_.get(), frame.get()) >= 0) {
            Convert(*frame);
        }
    }
    // Pixels as a port has them, without their unused byte.
    void Convert(const AVFrame& frame)
    {
        pictures_.width = frame.width;
        pictures_.height = frame.height;
        const Owned<SwsContext> scaler(sws_getContext(
            frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width,
            frame.height, AV_PIX_FMT_BGRA, SWS_BICUBIC, nullptr, nullptr, nullptr));
        const size_t stride = static_cast<size_t>(frame.width) * 4 + 64;
        std::string bgra(stride * static_cast<size_t>(frame.height), '\0');
        UInt8* const to[4] = {reinterpret_cast<UInt8*>(bgra.data()), nullptr, nullptr, nullptr};
        const int strides[4] = {static_cast<int>(stride), 0, 0, 0};
        sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, to, strides);
        std::string pixels;
        for (int v = 0; v < frame.height; ++v) {
            for (int h = 0; h < frame.width; ++h) {
                const char* const p =
                    bgra.data() + static_cast<size_t>(v) * stride + static_cast<size_t>(h) * 4;
                pixels.append({p[2], p[1], p[0]});
            }
        }
        pictures_.pixels.push_back(std::move(pixels));
    }

    Input input_;
    Owned<AVFormatContext> format_;
    AVIOContext* io_ = nullptr;
    Owned<AVCodecContext> decoder_;
    int stream_ = -1;
    PlainPictures pictures_;
};

} // namespace

PlainPictures DecodePlainly(const std::string& bytes)
{
    return Decoding(bytes).All();
}
