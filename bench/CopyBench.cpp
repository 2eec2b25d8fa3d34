// SPDX-License-Identifier: MIT
//
// Copying between pixel maps, beside libraries that do the same: libyuv for widening 16 bits to 32
// (where it is installed), pixman for one-bit masks and for scaling.
#include "toolbox/quickdraw/QDOffscreen.h"

#include <benchmark/benchmark.h>
#include <pixman.h>

#ifdef VORN_HAVE_LIBYUV
#include <libyuv.h>
#endif

#include <memory>

namespace
{

struct DisposeWorld {
    void operator()(CGrafPort* world) const { DisposeGWorld(world); }
};
struct UnrefImage {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using Image = std::unique_ptr<pixman_image_t, UnrefImage>;

struct World {
    Rect bounds;
    std::unique_ptr<CGrafPort, DisposeWorld> port;

    World(int depth, int64_t width, int64_t height)
        : bounds{0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)}
    {
        GWorldPtr made = nullptr;
        NewGWorld(&made, static_cast<SInt16>(depth), &bounds, nullptr, nullptr, 0);
        port.reset(made);
        UInt32 noise = 1;
        const auto size = static_cast<ptrdiff_t>(RowBytes()) * height;
        for (ptrdiff_t i = 0; i < size; ++i) {
            noise = noise * 1664525 + 1013904223;
            Bytes()[i] = static_cast<UInt8>(noise >> 24);
        }
    }
    const BitMap* Bits() const
    {
        return reinterpret_cast<const BitMap*>(*GetGWorldPixMap(port.get()));
    }
    UInt8* Bytes() const
    {
        return reinterpret_cast<UInt8*>(GetPixBaseAddr(GetGWorldPixMap(port.get())));
    }
    int RowBytes() const { return GetPixRowBytes(GetGWorldPixMap(port.get())); }
    Image PixmanImage(pixman_format_code_t format) const
    {
        return Image(pixman_image_create_bits(format, bounds.right, bounds.bottom,
                                              reinterpret_cast<uint32_t*>(Bytes()), RowBytes()));
    }
};

void CountPixels(benchmark::State& state, const Rect& rect)
{
    state.counters["pixels"] = benchmark::Counter(static_cast<double>(rect.right) * rect.bottom,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Args({32, 32})->Args({320, 240})->Args({1280, 720});
}

void Copy(benchmark::State& state, int fromDepth, int toDepth, SInt16 mode)
{
    const World from(fromDepth, state.range(0), state.range(1));
    const World to(toDepth, state.range(0), state.range(1));
    for (auto _ : state) {
        CopyBits(from.Bits(), to.Bits(), &from.bounds, &to.bounds, mode, nullptr);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK_CAPTURE(Copy, 16to32, 16, 32, srcCopy)->Apply(Sizes);
BENCHMARK_CAPTURE(Copy, 16to16, 16, 16, srcCopy)->Apply(Sizes);
BENCHMARK_CAPTURE(Copy, 32to16, 32, 16, srcCopy)->Apply(Sizes);
BENCHMARK_CAPTURE(Copy, 32to16dithered, 32, 16, ditherCopy)->Apply(Sizes);
BENCHMARK_CAPTURE(Copy, 8to16, 8, 16, ditherCopy)->Apply(Sizes);
BENCHMARK_CAPTURE(Copy, 8to32, 8, 32, ditherCopy)->Apply(Sizes);
BENCHMARK_CAPTURE(Copy, 32to8, 32, 8, srcCopy)->Apply(Sizes);

#ifdef VORN_HAVE_LIBYUV
void LibyuvWiden(benchmark::State& state)
{
    const World from(16, state.range(0), state.range(1));
    const World to(32, state.range(0), state.range(1));
    for (auto _ : state) {
        libyuv::ARGB1555ToARGB(from.Bytes(), from.RowBytes(), to.Bytes(), to.RowBytes(),
                               to.bounds.right, to.bounds.bottom);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK(LibyuvWiden)->Apply(Sizes);
#endif

// The mask's bits are noise: no run of them is worth a shortcut.
void CopyThroughBits(benchmark::State& state, int depth)
{
    const World from(depth, state.range(0), state.range(1));
    const World mask(1, state.range(0), state.range(1));
    const World to(depth, state.range(0), state.range(1));
    for (auto _ : state) {
        CopyMask(from.Bits(), mask.Bits(), to.Bits(), &from.bounds, &mask.bounds, &to.bounds);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK_CAPTURE(CopyThroughBits, 32, 32)->Apply(Sizes);
BENCHMARK_CAPTURE(CopyThroughBits, 16, 16)->Apply(Sizes);

void CopyIndicesThroughBits(benchmark::State& state)
{
    const World from(8, state.range(0), state.range(1));
    const World mask(1, state.range(0), state.range(1));
    const World to(16, state.range(0), state.range(1));
    for (auto _ : state) {
        CopyMask(from.Bits(), mask.Bits(), to.Bits(), &from.bounds, &mask.bounds, &to.bounds);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK(CopyIndicesThroughBits)->Apply(Sizes);

void PixmanThroughBits(benchmark::State& state, int depth, pixman_format_code_t format)
{
    const World from(depth, state.range(0), state.range(1));
    const World mask(1, state.range(0), state.range(1));
    const World to(depth, state.range(0), state.range(1));
    const Image fromImage = from.PixmanImage(format);
    const Image maskImage = mask.PixmanImage(PIXMAN_a1);
    const Image toImage = to.PixmanImage(format);
    for (auto _ : state) {
        pixman_image_composite32(PIXMAN_OP_OVER, fromImage.get(), maskImage.get(), toImage.get(), 0,
                                 0, 0, 0, 0, 0, to.bounds.right, to.bounds.bottom);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK_CAPTURE(PixmanThroughBits, 32, 32, PIXMAN_x8r8g8b8)->Apply(Sizes);
BENCHMARK_CAPTURE(PixmanThroughBits, 16, 16, PIXMAN_x1r5g5b5)->Apply(Sizes);

void CopyThroughGreys(benchmark::State& state, int depth)
{
    const World from(depth, state.range(0), state.range(1));
    const World mask(depth, state.range(0), state.range(1));
    const World to(depth, state.range(0), state.range(1));
    for (auto _ : state) {
        CopyDeepMask(from.Bits(), mask.Bits(), to.Bits(), &from.bounds, &mask.bounds, &to.bounds,
                     ditherCopy, nullptr);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK_CAPTURE(CopyThroughGreys, 32, 32)->Apply(Sizes);
BENCHMARK_CAPTURE(CopyThroughGreys, 16, 16)->Apply(Sizes);

// A component for each component, as deep masks have it.
void PixmanThroughGreys(benchmark::State& state)
{
    const World from(32, state.range(0), state.range(1));
    const World mask(32, state.range(0), state.range(1));
    const World to(32, state.range(0), state.range(1));
    const Image fromImage = from.PixmanImage(PIXMAN_x8r8g8b8);
    const Image maskImage = mask.PixmanImage(PIXMAN_a8r8g8b8);
    pixman_image_set_component_alpha(maskImage.get(), 1);
    const Image toImage = to.PixmanImage(PIXMAN_x8r8g8b8);
    for (auto _ : state) {
        pixman_image_composite32(PIXMAN_OP_OVER, fromImage.get(), maskImage.get(), toImage.get(), 0,
                                 0, 0, 0, 0, 0, to.bounds.right, to.bounds.bottom);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK(PixmanThroughGreys)->Apply(Sizes);

// From one width to another, of pictures that are 4 to 3.
void Shrinking(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"from", "to"})->Args({640, 64})->Args({640, 160})->Args({640, 320});
    benchmark->Args({640, 467})->Args({1024, 640});
}

void Enlarging(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"from", "to"})->Args({640, 832})->Args({640, 1280})->Args({640, 1920});
}

World WorldOfWidth(int depth, int64_t width)
{
    return {depth, width, width * 3 / 4};
}

void Scale(benchmark::State& state, int fromDepth, int toDepth)
{
    const World from = WorldOfWidth(fromDepth, state.range(0));
    const World to = WorldOfWidth(toDepth, state.range(1));
    for (auto _ : state) {
        CopyBits(from.Bits(), to.Bits(), &from.bounds, &to.bounds, ditherCopy, nullptr);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK_CAPTURE(Scale, 32, 32, 32)->Apply(Shrinking)->Apply(Enlarging);
BENCHMARK_CAPTURE(Scale, 16, 16, 16)->Apply(Shrinking)->Apply(Enlarging);
BENCHMARK_CAPTURE(Scale, 16to32, 16, 32)->Apply(Shrinking)->Apply(Enlarging);
BENCHMARK_CAPTURE(Scale, 8to32, 8, 32)->Apply(Shrinking)->Apply(Enlarging);

// Box filters: averaging of areas.
void SetBoxFilter(pixman_image_t* image, double factor)
{
    int count = 0;
    pixman_fixed_t* const weights = pixman_filter_create_separable_convolution(
        &count, pixman_double_to_fixed(factor), pixman_double_to_fixed(factor),
        PIXMAN_KERNEL_IMPULSE, PIXMAN_KERNEL_IMPULSE, PIXMAN_KERNEL_BOX, PIXMAN_KERNEL_BOX, 4, 4);
    pixman_image_set_filter(image, PIXMAN_FILTER_SEPARABLE_CONVOLUTION, weights, count);
    free(weights);
}

void ScaleWithPixman(benchmark::State& state, pixman_filter_t filter, int depth = 32,
                     pixman_format_code_t format = PIXMAN_x8r8g8b8)
{
    const World from = WorldOfWidth(depth, state.range(0));
    const World to = WorldOfWidth(depth, state.range(1));
    const Image fromImage = from.PixmanImage(format);
    const Image toImage = to.PixmanImage(format);
    const double factor = static_cast<double>(state.range(0)) / static_cast<double>(state.range(1));
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform, pixman_double_to_fixed(factor),
                                pixman_double_to_fixed(factor));
    pixman_image_set_transform(fromImage.get(), &transform);
    if (filter == PIXMAN_FILTER_SEPARABLE_CONVOLUTION) {
        SetBoxFilter(fromImage.get(), factor);
    } else {
        pixman_image_set_filter(fromImage.get(), filter, nullptr, 0);
    }
    for (auto _ : state) {
        pixman_image_composite32(PIXMAN_OP_SRC, fromImage.get(), nullptr, toImage.get(), 0, 0, 0, 0,
                                 0, 0, to.bounds.right, to.bounds.bottom);
    }
    CountPixels(state, to.bounds);
}
BENCHMARK_CAPTURE(ScaleWithPixman, average, PIXMAN_FILTER_SEPARABLE_CONVOLUTION)->Apply(Shrinking);
BENCHMARK_CAPTURE(ScaleWithPixman, bilinear, PIXMAN_FILTER_BILINEAR)->Apply(Shrinking);
BENCHMARK_CAPTURE(ScaleWithPixman, nearest, PIXMAN_FILTER_NEAREST)
    ->Args({1024, 640})
    ->Apply(Enlarging);
BENCHMARK_CAPTURE(ScaleWithPixman, bilinear16, PIXMAN_FILTER_BILINEAR, 16, PIXMAN_x1r5g5b5)
    ->Apply(Shrinking);
BENCHMARK_CAPTURE(ScaleWithPixman, nearest16, PIXMAN_FILTER_NEAREST, 16, PIXMAN_x1r5g5b5)
    ->Args({1024, 640})
    ->Apply(Enlarging);

void MakeAndDisposeOfWorld(benchmark::State& state)
{
    const Rect bounds = {0, 0, static_cast<SInt16>(state.range(1)),
                         static_cast<SInt16>(state.range(0))};
    for (auto _ : state) {
        GWorldPtr world = nullptr;
        NewGWorld(&world, 32, &bounds, nullptr, nullptr, 0);
        DisposeGWorld(world);
    }
    CountPixels(state, bounds);
}
BENCHMARK(MakeAndDisposeOfWorld)->Apply(Sizes);

} // namespace
