// SPDX-License-Identifier: MIT
//
// The codec libraries: what is called of them, and owners for what they allocate.
#pragma once

#include "toolbox/Types.h"
#include "toolbox/quicktime/LibAVLoader.h"

#include <memory>

namespace toolbox
{

// Waits until they are loaded, once; where that has failed, nothing of theirs may be called.
inline const LibAVCalls& LibAV()
{
    return LibAVLoader::Shared().Calls();
}

struct LibAVDeleter {
    void operator()(AVFormatContext* it) const { LibAV().avformat_close_input(&it); }
    void operator()(AVCodecContext* it) const { LibAV().avcodec_free_context(&it); }
    void operator()(AVFrame* it) const { LibAV().av_frame_free(&it); }
    void operator()(AVPacket* it) const { LibAV().av_packet_free(&it); }
    void operator()(SwrContext* it) const { LibAV().swr_free(&it); }
    void operator()(SwsContext* it) const { LibAV().sws_freeContext(it); }
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
