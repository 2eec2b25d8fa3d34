// SPDX-License-Identifier: MIT
//
// The codec libraries' C headers, and owners for what they allocate.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/mathematics.h>
#include <libavutil/pixdesc.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include "toolbox/Types.h"

#include <memory>

namespace toolbox
{

struct LibAVDeleter {
    void operator()(AVFormatContext* it) const { avformat_close_input(&it); }
    void operator()(AVCodecContext* it) const { avcodec_free_context(&it); }
    void operator()(AVFrame* it) const { av_frame_free(&it); }
    void operator()(AVPacket* it) const { av_packet_free(&it); }
    void operator()(SwrContext* it) const { swr_free(&it); }
    void operator()(SwsContext* it) const { sws_freeContext(it); }
};
template <class T>
using LibAVPtr = std::unique_ptr<T, LibAVDeleter>;

// Movie times are nanoseconds in 64 bits: fine enough for every sample rate, wide enough for 292
// years.
using Nanoseconds = SInt64;
constexpr Nanoseconds kNoTime = INT64_MIN;
constexpr Nanoseconds kSecond = 1'000'000'000;
constexpr AVRational kNanosecondBase{1, 1'000'000'000};

} // namespace toolbox
