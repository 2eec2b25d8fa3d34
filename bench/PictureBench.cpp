// SPDX-License-Identifier: MIT
//
// From a decoder's picture to a port's pixels, beside the fastest conversion that libswscale has.
#include "toolbox/quickdraw/Port.h"
#include "toolbox/quicktime/PictureConverter.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace
{

using toolbox::LibAVPtr;

LibAVPtr<AVFrame> MakePicture(int width, int height)
{
    LibAVPtr<AVFrame> picture(av_frame_alloc());
    picture->width = width;
    picture->height = height;
    picture->format = AV_PIX_FMT_YUV420P;
    av_frame_get_buffer(picture.get(), 0);
    for (int plane = 0; plane < 3; ++plane) {
        const int rows = plane == 0 ? height : height / 2;
        const int bytes = rows * picture->linesize[plane];
        for (int i = 0; i < bytes; ++i) {
            picture->data[plane][i] = static_cast<uint8_t>(i * 7 + plane);
        }
    }
    return picture;
}

void CountPixels(benchmark::State& state, int width, int height)
{
    state.counters["pixels"] =
        benchmark::Counter(width * height, benchmark::Counter::kIsIterationInvariantRate);
}

// Drawn at `percent` of its size.
void DrawPicture(benchmark::State& state, int percent)
{
    const int width = static_cast<int>(state.range(0));
    const int height = static_cast<int>(state.range(1));
    const auto picture = MakePicture(width, height);
    const Rect place = {0, 0, static_cast<SInt16>(height * percent / 100),
                        static_cast<SInt16>(width * percent / 100)};
    CGrafPtr port = nullptr;
    CreateWindowPort(&place, &port);
    toolbox::PictureConverter converter;
    for (auto _ : state) {
        converter.Draw(*picture, *port, place, nullptr);
    }
    CountPixels(state, width, height);
    DisposeWindowPort(port);
}

void BM_DrawPicture(benchmark::State& state)
{
    DrawPicture(state, 100);
}
BENCHMARK(BM_DrawPicture)->Args({352, 240})->Args({720, 480})->Args({1920, 1080});

void BM_DrawPictureAtHalfSize(benchmark::State& state)
{
    DrawPicture(state, 50);
}
BENCHMARK(BM_DrawPictureAtHalfSize)->Args({720, 480});

void BM_ConvertWithSwscaleAlone(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const int height = static_cast<int>(state.range(1));
    const auto picture = MakePicture(width, height);
    const LibAVPtr<SwsContext> scaler(sws_getContext(width, height, AV_PIX_FMT_YUV420P, width,
                                                     height, AV_PIX_FMT_BGRA, SWS_BICUBIC, nullptr,
                                                     nullptr, nullptr));
    std::vector<uint8_t> pixels(static_cast<size_t>(width * height) * 4 + 64);
    uint8_t* const rows[] = {pixels.data()};
    const int rowBytes[] = {width * 4};
    for (auto _ : state) {
        sws_scale(scaler.get(), picture->data, picture->linesize, 0, height, rows, rowBytes);
    }
    CountPixels(state, width, height);
}
BENCHMARK(BM_ConvertWithSwscaleAlone)->Args({352, 240})->Args({720, 480})->Args({1920, 1080});

} // namespace
