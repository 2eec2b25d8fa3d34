// SPDX-License-Identifier: MIT
//
// Rows of decoded samples into pixel memory, beside what libyuv, libswscale and pixman have for the
// same rows (a libyuv conversion in several steps goes row by row, through the cache) and memcpy.
#include "src/image/PixelWriting.h"

#include <benchmark/benchmark.h>
#include <pixman.h>

#include <cstring>
#include <numeric>
#include <type_traits>
#include <vector>

extern "C" {
#include <libswscale/swscale.h>
}

#ifdef VORN_HAVE_LIBYUV
#include <libyuv.h>
#endif

namespace
{

constexpr SInt16 kWidth = 2048;
constexpr SInt16 kRows = 8;
constexpr Rect kBounds = {0, 0, kRows, kWidth};

std::vector<UInt8> MakeBytes(int bytesPerPixel)
{
    // Some bytes behind the last, which libraries read and write with whole registers.
    std::vector<UInt8> bytes(size_t{kWidth} * kRows * static_cast<size_t>(bytesPerPixel) + 64);
    std::iota(bytes.begin(), bytes.end(), UInt8{0});
    return bytes;
}

// A picture's samples, the pixels made of them and their mask.
struct Picture {
    explicit Picture(int sampleBytes, int pixelBytes)
        : sampleRow(kWidth * sampleBytes), pixelRow(kWidth * pixelBytes),
          samples(MakeBytes(sampleBytes)), pixels(MakeBytes(pixelBytes)),
          mask(MakeBytes(pixelBytes))
    {
    }
    UInt8* Samples(int row) { return samples.data() + ptrdiff_t{row} * sampleRow; }
    UInt8* Pixels(int row) { return pixels.data() + ptrdiff_t{row} * pixelRow; }
    UInt8* Mask(int row) { return mask.data() + ptrdiff_t{row} * pixelRow; }
    PixelWriteState State(std::vector<UInt8>& memory, int depth) const
    {
        return {static_cast<UInt8>(depth),
                1,
                static_cast<UInt16>(pixelRow),
                memory.data(),
                0,
                0,
                kBounds};
    }

    int sampleRow;
    int pixelRow;
    std::vector<UInt8> samples;
    std::vector<UInt8> pixels;
    std::vector<UInt8> mask;
};

// Runs `convert(row)` for every row of the picture, or `convert()` once for all of it.
template <class Convert>
void Measure(benchmark::State& state, Picture& picture, Convert convert)
{
    for (auto _ : state) {
        if constexpr (std::is_invocable_v<Convert, SInt16>) {
            for (SInt16 row = 0; row < kRows; ++row)
                convert(row);
        } else {
            convert();
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kRows * picture.sampleRow);
}

void MeasureSwscale(benchmark::State& state, Picture& picture, AVPixelFormat from, AVPixelFormat to)
{
    SwsContext* const context = sws_getContext(kWidth, kRows, from, kWidth, kRows, to, SWS_POINT,
                                               nullptr, nullptr, nullptr);
    Measure(state, picture, [&] {
        const UInt8* const source[] = {picture.Samples(0)};
        UInt8* const target[] = {picture.Pixels(0)};
        sws_scale(context, source, &picture.sampleRow, 0, kRows, target, &picture.pixelRow);
    });
    sws_freeContext(context);
}

pixman_image_t* MakeImage(pixman_format_code_t format, UInt8* bytes, int rowBytes)
{
    return pixman_image_create_bits_no_clear(format, kWidth, kRows,
                                             reinterpret_cast<uint32_t*>(bytes), rowBytes);
}

void Copy(pixman_image_t* from, pixman_image_t* to)
{
    pixman_image_composite32(PIXMAN_OP_SRC, from, nullptr, to, 0, 0, 0, 0, 0, 0, kWidth, kRows);
}

void MeasurePixman(benchmark::State& state, Picture& picture, pixman_format_code_t from,
                   pixman_format_code_t to, const pixman_indexed_t* colors = nullptr)
{
    pixman_image_t* const source = MakeImage(from, picture.Samples(0), picture.sampleRow);
    pixman_image_t* const target = MakeImage(to, picture.Pixels(0), picture.pixelRow);
    if (colors != nullptr)
        pixman_image_set_indexed(source, colors);
    Measure(state, picture, [&] { Copy(source, target); });
    pixman_image_unref(source);
    pixman_image_unref(target);
}

// RGB to 555 ---------------------------------------------------------------------------------

void BM_RGBTo555(benchmark::State& state)
{
    Picture picture(3, 2);
    PixelWriteState pixels = picture.State(picture.pixels, 16);
    Measure(state, picture, [&](SInt16 row) {
        RGBSampleTo16bitGWorld(&pixels, picture.Samples(row), kWidth, row, 0);
    });
}
BENCHMARK(BM_RGBTo555);

void BM_RGBTo555Swscale(benchmark::State& state)
{
    Picture picture(3, 2);
    MeasureSwscale(state, picture, AV_PIX_FMT_RGB24, AV_PIX_FMT_RGB555);
}
BENCHMARK(BM_RGBTo555Swscale);

void BM_RGBTo555Pixman(benchmark::State& state)
{
    Picture picture(3, 2);
    MeasurePixman(state, picture, PIXMAN_b8g8r8, PIXMAN_x1r5g5b5);
}
BENCHMARK(BM_RGBTo555Pixman);

// RGBA to 555 and a mask; the libraries make less of the alpha, or nothing -----------------------

void BM_RGBATo555AndMask(benchmark::State& state)
{
    Picture picture(4, 2);
    PixelWriteState pixels = picture.State(picture.pixels, 16);
    PixelWriteState mask = picture.State(picture.mask, 16);
    Measure(state, picture, [&](SInt16 row) {
        RGBAlphaTo16bitGWorld(&pixels, &mask, picture.Samples(row), kWidth, row);
    });
}
BENCHMARK(BM_RGBATo555AndMask);

void BM_RGBATo555SwscaleWithoutMask(benchmark::State& state)
{
    Picture picture(4, 2);
    MeasureSwscale(state, picture, AV_PIX_FMT_RGBA, AV_PIX_FMT_RGB555);
}
BENCHMARK(BM_RGBATo555SwscaleWithoutMask);

void BM_RGBATo555PixmanWithoutMask(benchmark::State& state)
{
    Picture picture(4, 2);
    MeasurePixman(state, picture, PIXMAN_x8b8g8r8, PIXMAN_x1r5g5b5);
}
BENCHMARK(BM_RGBATo555PixmanWithoutMask);

// Grey to 555 --------------------------------------------------------------------------------

void BM_GrayTo555(benchmark::State& state)
{
    Picture picture(1, 2);
    PixelWriteState pixels = picture.State(picture.pixels, 16);
    Measure(state, picture, [&](SInt16 row) {
        GrayscaleSampleTo16bitGWorld(&pixels, picture.Samples(row), kWidth, row);
    });
}
BENCHMARK(BM_GrayTo555);

void BM_GrayTo555Swscale(benchmark::State& state)
{
    Picture picture(1, 2);
    MeasureSwscale(state, picture, AV_PIX_FMT_GRAY8, AV_PIX_FMT_RGB555);
}
BENCHMARK(BM_GrayTo555Swscale);

void BM_GrayTo555Pixman(benchmark::State& state)
{
    pixman_indexed_t grays{};
    for (uint32_t gray = 0; gray < 256; ++gray)
        grays.rgba[gray] = 0xFF000000U | gray * 0x010101U;
    Picture picture(1, 2);
    MeasurePixman(state, picture, PIXMAN_c8, PIXMAN_x1r5g5b5, &grays);
}
BENCHMARK(BM_GrayTo555Pixman);

// RGB to 32 ----------------------------------------------------------------------------------

void BM_RGBTo32(benchmark::State& state)
{
    Picture picture(3, 4);
    PixelWriteState pixels = picture.State(picture.pixels, 32);
    Measure(state, picture, [&](SInt16 row) {
        RGBSampleTo32bitGWorld(&pixels, picture.Samples(row), kWidth, row, 0);
    });
}
BENCHMARK(BM_RGBTo32);

void BM_RGBTo32Swscale(benchmark::State& state)
{
    Picture picture(3, 4);
    MeasureSwscale(state, picture, AV_PIX_FMT_RGB24, AV_PIX_FMT_ARGB);
}
BENCHMARK(BM_RGBTo32Swscale);

void BM_RGBTo32Pixman(benchmark::State& state)
{
    Picture picture(3, 4);
    MeasurePixman(state, picture, PIXMAN_b8g8r8, PIXMAN_x8r8g8b8);
}
BENCHMARK(BM_RGBTo32Pixman);

#ifdef VORN_HAVE_LIBYUV

void BM_RGBTo555Libyuv(benchmark::State& state)
{
    Picture picture(3, 2);
    std::vector<UInt8> argb(size_t{kWidth} * 4);
    Measure(state, picture, [&](SInt16 row) {
        libyuv::RAWToARGB(picture.Samples(row), 0, argb.data(), 0, kWidth, 1);
        libyuv::ARGBToARGB1555(argb.data(), 0, picture.Pixels(row), 0, kWidth, 1);
    });
}
BENCHMARK(BM_RGBTo555Libyuv);

void BM_RGBATo555AndMaskLibyuv(benchmark::State& state)
{
    Picture picture(4, 2);
    std::vector<UInt8> argb(size_t{kWidth} * 4);
    Measure(state, picture, [&](SInt16 row) {
        libyuv::ABGRToARGB(picture.Samples(row), 0, argb.data(), 0, kWidth, 1);
        libyuv::ARGBToARGB1555(argb.data(), 0, picture.Pixels(row), 0, kWidth, 1);
        libyuv::ARGBExtractAlpha(argb.data(), 0, picture.Mask(row), 0, kWidth, 1);
    });
}
BENCHMARK(BM_RGBATo555AndMaskLibyuv);

void BM_GrayTo555Libyuv(benchmark::State& state)
{
    Picture picture(1, 2);
    std::vector<UInt8> argb(size_t{kWidth} * 4);
    Measure(state, picture, [&](SInt16 row) {
        libyuv::J400ToARGB(picture.Samples(row), 0, argb.data(), 0, kWidth, 1);
        libyuv::ARGBToARGB1555(argb.data(), 0, picture.Pixels(row), 0, kWidth, 1);
    });
}
BENCHMARK(BM_GrayTo555Libyuv);

void BM_RGBTo32Libyuv(benchmark::State& state)
{
    Picture picture(3, 4);
    Measure(state, picture, [&](SInt16 row) {
        libyuv::RAWToARGB(picture.Samples(row), 0, picture.Pixels(row), 0, kWidth, 1);
    });
}
BENCHMARK(BM_RGBTo32Libyuv);

#endif

// One byte a pixel, into `depth` bits a pixel --------------------------------------------------

void BM_RowPixels(benchmark::State& state)
{
    const auto depth = static_cast<int>(state.range());
    Picture picture(1, 1);
    PixelWriteState pixels = picture.State(picture.pixels, depth);
    Measure(state, picture, [&](SInt16 row) {
        SetPixMapRowPixels(&pixels, &kBounds, {row, 0}, kWidth, picture.Samples(row));
    });
}
BENCHMARK(BM_RowPixels)->Arg(1)->Arg(2)->Arg(4)->Arg(8);

void BM_MaskRowPixels(benchmark::State& state)
{
    Picture picture(1, 1);
    PixelWriteState mask = picture.State(picture.mask, 1);
    Measure(state, picture, [&](SInt16 row) {
        SetMaskPixMapRowPixels(&mask, &kBounds, {row, 0}, kWidth, 7, picture.Samples(row));
    });
}
BENCHMARK(BM_MaskRowPixels);

void BM_RowIndices(benchmark::State& state)
{
    Picture picture(1, 1);
    PixelWriteState pixels = picture.State(picture.pixels, 8);
    Measure(state, picture, [&](SInt16 row) {
        SetPixMapRowIndices(&pixels, &kBounds, {row, 0}, kWidth, picture.Samples(row));
    });
}
BENCHMARK(BM_RowIndices);

void BM_RowMemcpy(benchmark::State& state)
{
    Picture picture(1, 1);
    Measure(state, picture,
            [&](SInt16 row) { std::memcpy(picture.Pixels(row), picture.Samples(row), kWidth); });
}
BENCHMARK(BM_RowMemcpy);

// One 32-bit value a pixel, into `depth` bits a pixel.
void BM_RowValues(benchmark::State& state)
{
    const auto depth = static_cast<int>(state.range());
    Picture picture(4, 4);
    PixelWriteState pixels = picture.State(picture.pixels, depth);
    std::vector<SInt32> values(kWidth, 3);
    Measure(state, picture, [&](SInt16 row) {
        SetPixMapRowValues(&pixels, &kBounds, {row, 0}, kWidth, values.data());
    });
}
BENCHMARK(BM_RowValues)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->Arg(16)->Arg(32);

} // namespace
