// SPDX-License-Identifier: MIT
//
// What is called of the codec libraries, as pointers with the types of their headers.
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

// Each call with its library. Headers' functions that are inline call others: none of them is used.
#define VORN_LIBAV_CALLS(CALL)                                                                     \
    CALL(kAVUtil, av_channel_layout_default)                                                       \
    CALL(kAVUtil, av_frame_alloc)                                                                  \
    CALL(kAVUtil, av_frame_free)                                                                   \
    CALL(kAVUtil, av_free)                                                                         \
    CALL(kAVUtil, av_freep)                                                                        \
    CALL(kAVUtil, av_log_set_level)                                                                \
    CALL(kAVUtil, av_malloc)                                                                       \
    CALL(kAVUtil, av_pix_fmt_desc_get)                                                             \
    CALL(kAVUtil, av_rescale)                                                                      \
    CALL(kAVUtil, av_rescale_q)                                                                    \
    CALL(kAVUtil, av_rescale_rnd)                                                                  \
    CALL(kSWResample, swr_alloc_set_opts2)                                                         \
    CALL(kSWResample, swr_convert)                                                                 \
    CALL(kSWResample, swr_free)                                                                    \
    CALL(kSWResample, swr_get_out_samples)                                                         \
    CALL(kSWResample, swr_init)                                                                    \
    CALL(kSWScale, sws_freeContext)                                                                \
    CALL(kSWScale, sws_getCoefficients)                                                            \
    CALL(kSWScale, sws_getContext)                                                                 \
    CALL(kSWScale, sws_scale)                                                                      \
    CALL(kSWScale, sws_setColorspaceDetails)                                                       \
    CALL(kAVCodec, av_grow_packet)                                                                 \
    CALL(kAVCodec, av_new_packet)                                                                  \
    CALL(kAVCodec, av_packet_alloc)                                                                \
    CALL(kAVCodec, av_packet_clone)                                                                \
    CALL(kAVCodec, av_packet_free)                                                                 \
    CALL(kAVCodec, av_packet_get_side_data)                                                        \
    CALL(kAVCodec, av_packet_move_ref)                                                             \
    CALL(kAVCodec, av_packet_unref)                                                                \
    CALL(kAVCodec, avcodec_alloc_context3)                                                         \
    CALL(kAVCodec, avcodec_find_decoder)                                                           \
    CALL(kAVCodec, avcodec_flush_buffers)                                                          \
    CALL(kAVCodec, avcodec_free_context)                                                           \
    CALL(kAVCodec, avcodec_open2)                                                                  \
    CALL(kAVCodec, avcodec_parameters_alloc)                                                       \
    CALL(kAVCodec, avcodec_parameters_free)                                                        \
    CALL(kAVCodec, avcodec_parameters_from_context)                                                \
    CALL(kAVCodec, avcodec_parameters_to_context)                                                  \
    CALL(kAVCodec, avcodec_receive_frame)                                                          \
    CALL(kAVCodec, avcodec_send_packet)                                                            \
    CALL(kAVFormat, av_find_input_format)                                                          \
    CALL(kAVFormat, av_read_frame)                                                                 \
    CALL(kAVFormat, avformat_alloc_context)                                                        \
    CALL(kAVFormat, avformat_close_input)                                                          \
    CALL(kAVFormat, avformat_new_stream)                                                           \
    CALL(kAVFormat, avformat_open_input)                                                           \
    CALL(kAVFormat, avio_alloc_context)                                                            \
    CALL(kAVFormat, avio_context_free)

namespace toolbox
{

// In the order of loading: each needs only those before it.
enum LibAVLibrary { kAVUtil, kSWResample, kSWScale, kAVCodec, kAVFormat, kLibAVLibraries };

struct LibAVCalls {
#define VORN_LIBAV_POINTER(library, name) decltype(&::name) name = nullptr;
    VORN_LIBAV_CALLS(VORN_LIBAV_POINTER)
#undef VORN_LIBAV_POINTER
};

} // namespace toolbox
