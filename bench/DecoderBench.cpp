// SPDX-License-Identifier: MIT
//
// bench_decoders PLUGINS RUNS
//
// Whole images through the PNG and the JPEG bundle, handed out in pieces of 4096 bytes, beside
// libpng and libjpeg-turbo decoding the same file from memory into a fresh buffer of the same
// depth. Both in turn; prints medians, also of the ratio. Exit status 1 if a ratio is above its
// gate.
#include "bench/ImageBundle.h"
#include "bench/Medians.h"
#include "bench/ProcessorTime.h"

#include <malloc.h>
#include <png.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <jpeglib.h>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

namespace
{

using Bytes = std::vector<UInt8>;

constexpr UInt32 kWidth = 1920;
constexpr UInt32 kHeight = 1080;

// Soft hills with the noise of a camera, so that a file has the size of a photograph's.
Bytes Samples(int components)
{
    std::minstd_rand random(1);
    Bytes samples;
    for (UInt32 y = 0; y < kHeight; ++y) {
        for (UInt32 x = 0; x < kWidth; ++x) {
            for (int i = 0; i < components; ++i) {
                const double hill = 128 + 100 * std::sin(x / 97.0 + i) * std::cos(y / 71.0 - i);
                samples.push_back(static_cast<UInt8>(hill + static_cast<double>(random() % 24)));
            }
        }
    }
    return samples;
}

struct PngKind {
    const char* name;
    int type;
    int components;
    bool isInterlaced;
};

void AppendBytes(png_structp png, png_bytep bytes, size_t count)
{
    auto& file = *static_cast<Bytes*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}

void TakeBytes(png_structp png, png_bytep bytes, size_t count)
{
    auto& rest = *static_cast<const UInt8**>(png_get_io_ptr(png));
    std::memcpy(bytes, rest, count);
    rest += count;
}

Bytes MakePng(const PngKind& kind)
{
    Bytes samples = Samples(kind.components);
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, AppendBytes, [](png_structp) {});
    png_set_IHDR(png, info, kWidth, kHeight, 8, kind.type, kind.isInterlaced ? 1 : 0, 0, 0);
    std::vector<png_color> palette(256);
    for (size_t i = 0; i < palette.size(); ++i)
        palette[i].red = static_cast<png_byte>(i);
    if (kind.type == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(png, info, palette.data(), 256);
    png_write_info(png, info);
    std::vector<png_bytep> rows;
    for (UInt32 y = 0; y < kHeight; ++y)
        rows.push_back(samples.data() + size_t{y} * kWidth * static_cast<size_t>(kind.components));
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

void DecodePng(const Bytes& bytes)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    const UInt8* rest = bytes.data();
    png_set_read_fn(png, &rest, TakeBytes);
    png_read_info(png, info);
    if (png_get_color_type(png, info) == PNG_COLOR_TYPE_RGB)
        png_set_filler(png, 0xFF, PNG_FILLER_BEFORE);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const size_t rowBytes = png_get_rowbytes(png, info);
    const std::unique_ptr<UInt8[]> pixels(new UInt8[rowBytes * kHeight]);
    std::vector<png_bytep> rows;
    for (UInt32 y = 0; y < kHeight; ++y)
        rows.push_back(pixels.get() + y * rowBytes);
    png_read_image(png, rows.data());
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
}

struct JpegKind {
    const char* name;
    int components;
    int sampling;
    bool isProgressive;
};

Bytes MakeJpeg(const JpegKind& kind)
{
    Bytes samples = Samples(kind.components);
    jpeg_compress_struct encoder{};
    jpeg_error_mgr errors{};
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    UInt8* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = kWidth;
    encoder.image_height = kHeight;
    encoder.input_components = kind.components;
    encoder.in_color_space = kind.components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, 90, TRUE);
    encoder.comp_info[0].h_samp_factor = encoder.comp_info[0].v_samp_factor = kind.sampling;
    if (kind.isProgressive)
        jpeg_simple_progression(&encoder);
    jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < kHeight) {
        JSAMPROW row = samples.data() + size_t{encoder.next_scanline} * kWidth *
                                            static_cast<size_t>(kind.components);
        jpeg_write_scanlines(&encoder, &row, 1);
    }
    jpeg_finish_compress(&encoder);
    Bytes file(bytes, bytes + size);
    std::free(bytes);
    jpeg_destroy_compress(&encoder);
    return file;
}

void DecodeJpeg(const Bytes& bytes)
{
    jpeg_decompress_struct decoder{};
    jpeg_error_mgr errors{};
    decoder.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decoder);
    jpeg_mem_src(&decoder, bytes.data(), bytes.size());
    jpeg_read_header(&decoder, TRUE);
    if (decoder.out_color_space == JCS_RGB)
        decoder.out_color_space = JCS_EXT_XRGB;
    jpeg_start_decompress(&decoder);
    const size_t rowBytes =
        size_t{decoder.output_width} * static_cast<size_t>(decoder.output_components);
    const std::unique_ptr<UInt8[]> pixels(new UInt8[rowBytes * kHeight]);
    std::vector<JSAMPROW> rows;
    for (UInt32 y = 0; y < kHeight; ++y)
        rows.push_back(pixels.get() + y * rowBytes);
    while (decoder.output_scanline < kHeight)
        jpeg_read_scanlines(&decoder, rows.data() + decoder.output_scanline,
                            kHeight - decoder.output_scanline);
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
}

// `gate` 0: none.
bool Compare(const char* name, const ImageBundle& bundle, const Bytes& file,
             void (*library)(const Bytes&), int runs, double gate)
{
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    for (int run = 0; run < runs; ++run) {
        theirs.push_back(1e3 * ProcessorSeconds([&] { library(file); }));
        ours.push_back(1e3 * ProcessorSeconds([&] { bundle.Decode(file); }));
        ratios.push_back(ours.back() / theirs.back());
    }
    const double ratio = MedianOf(ratios);
    std::printf("%-24s %5.2f MB  bundle %7.2f ms   library %7.2f ms   ratio %5.3f", name,
                static_cast<double>(file.size()) / 1e6, MedianOf(ours), MedianOf(theirs), ratio);
    if (gate > 0)
        std::printf("   gate <= %.2f  %s", gate, ratio <= gate ? "ok" : "MISSED");
    std::printf("\n");
    return gate <= 0 || ratio <= gate;
}

// `isGated`: the ratios must hold.
bool CompareAll(const std::string& plugins, int runs, bool isGated)
{
    const double pngGate = isGated ? 1.05 : 0;
    const double jpegGate = isGated ? 1.1 : 0;
    const ImageBundle png(plugins, "VornPNG");
    const ImageBundle jpeg(plugins, "VornJPEG");
    bool holds = true;
    for (const PngKind& kind : {PngKind{"PNG RGB", PNG_COLOR_TYPE_RGB, 3, false},
                                {"PNG palette", PNG_COLOR_TYPE_PALETTE, 1, false},
                                {"PNG grey", PNG_COLOR_TYPE_GRAY, 1, false},
                                {"PNG RGB and alpha", PNG_COLOR_TYPE_RGB_ALPHA, 4, false},
                                {"PNG RGB interlaced", PNG_COLOR_TYPE_RGB, 3, true}})
        holds = Compare(kind.name, png, MakePng(kind), DecodePng, runs, pngGate) && holds;
    for (const JpegKind& kind : {JpegKind{"JPEG 4:2:0", 3, 2, false},
                                 {"JPEG 4:4:4", 3, 1, false},
                                 {"JPEG grey", 1, 1, false}})
        holds = Compare(kind.name, jpeg, MakeJpeg(kind), DecodeJpeg, runs, jpegGate) && holds;
    Compare("JPEG progressive", jpeg, MakeJpeg({"", 3, 2, true}), DecodeJpeg, runs, 0);
    return holds;
}

bool Run(const std::string& plugins, int runs)
{
    std::printf("The library's buffer is memory that it has just given back (no gate):\n");
    CompareAll(plugins, runs, false);
    std::printf("The library's buffer is new memory every time; the toolbox keeps its own:\n");
    mallopt(M_MMAP_THRESHOLD, 1 << 17);
    return CompareAll(plugins, runs, true);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3 || std::atoi(argv[2]) < 1) {
        std::fprintf(stderr, "usage: bench_decoders PLUGINS RUNS\n");
        return 2;
    }
    try {
        return Run(argv[1], std::atoi(argv[2])) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_decoders: %s\n", failure.what());
        return 2;
    }
}
