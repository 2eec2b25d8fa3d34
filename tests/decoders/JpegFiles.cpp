// SPDX-License-Identifier: MIT
#include "tests/decoders/JpegFiles.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <stdexcept>

namespace test
{

namespace
{

void Fail(j_common_ptr codec)
{
    std::array<char, JMSG_LENGTH_MAX> text{};
    codec->err->format_message(codec, text.data());
    throw std::runtime_error(text.data());
}

void Count(j_common_ptr codec, int level)
{
    if (level < 0)
        ++codec->err->num_warnings;
}

jpeg_error_mgr* Errors()
{
    static jpeg_error_mgr errors;
    jpeg_std_error(&errors);
    errors.error_exit = Fail;
    errors.emit_message = Count;
    return &errors;
}

struct Encoder : jpeg_compress_struct {
    Encoder()
    {
        err = Errors();
        jpeg_create_compress(this);
    }
    ~Encoder() { jpeg_destroy_compress(this); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;
};

struct Decoder : jpeg_decompress_struct {
    Decoder()
    {
        err = Errors();
        jpeg_create_decompress(this);
    }
    ~Decoder() { jpeg_destroy_decompress(this); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
};

J_COLOR_SPACE InputSpace(J_COLOR_SPACE inFile)
{
    switch (inFile) {
    case JCS_GRAYSCALE:
        return JCS_GRAYSCALE;
    case JCS_CMYK:
    case JCS_YCCK:
        return JCS_CMYK;
    default:
        return JCS_RGB;
    }
}

void SetScans(Encoder& encoder, const JpegSpec& spec, std::vector<jpeg_scan_info>& scans)
{
    if (spec.isProgressive)
        jpeg_simple_progression(&encoder);
    if (!spec.hasScanForEach)
        return;
    for (int i = 0; i < encoder.num_components; ++i)
        scans.push_back({1, {i}, 0, 63, 0, 0});
    encoder.scan_info = scans.data();
    encoder.num_scans = static_cast<int>(scans.size());
}

void WriteRows(Encoder& encoder)
{
    std::minstd_rand random(encoder.image_width);
    const auto components = static_cast<size_t>(encoder.input_components);
    Bytes row(encoder.image_width * components);
    while (encoder.next_scanline < encoder.image_height) {
        for (size_t at = 0; at < row.size(); ++at) {
            const double x = static_cast<double>(at / components) / 9;
            const double y = static_cast<double>(encoder.next_scanline) / 7;
            const double phase = static_cast<double>(at % components);
            const double hill = 120 + 90 * std::sin(x + phase) * std::cos(y - phase);
            row[at] = static_cast<UInt8>(hill + static_cast<double>(random() % 30));
        }
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&encoder, rows, 1);
    }
}

// One pixel of a row as 0x00RRGGBB.
UInt32 ColorOf(const Decoder& decoder, const UInt8* samples)
{
    if (decoder.out_color_space == JCS_GRAYSCALE)
        return samples[0] * 0x010101U;
    UInt32 color = 0;
    for (int i = 0; i < 3; ++i) {
        const UInt32 sample = samples[i];
        const UInt32 black = samples[3];
        UInt32 light = sample;
        if (decoder.out_color_space == JCS_CMYK)
            light = decoder.saw_Adobe_marker ? sample * black / 255
                                             : (255 - sample) * (255 - black) / 255;
        color = color << 8 | light;
    }
    return color;
}

} // namespace

Bytes WriteJpeg(const JpegSpec& spec)
{
    Encoder encoder;
    UInt8* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = spec.width;
    encoder.image_height = spec.height;
    encoder.in_color_space = InputSpace(spec.colorSpace);
    encoder.input_components = encoder.in_color_space == JCS_GRAYSCALE ? 1
                               : encoder.in_color_space == JCS_CMYK    ? 4
                                                                       : 3;
    jpeg_set_defaults(&encoder);
    jpeg_set_colorspace(&encoder, spec.colorSpace);
    encoder.comp_info[0].h_samp_factor = encoder.comp_info[0].v_samp_factor = spec.sampling;
    encoder.arith_code = spec.isArithmetic;
    encoder.restart_interval = static_cast<unsigned>(spec.restartInterval);
    if (encoder.num_components == 4)
        encoder.write_Adobe_marker = spec.hasAdobeMarker;
    std::vector<jpeg_scan_info> scans;
    SetScans(encoder, spec, scans);
    jpeg_start_compress(&encoder, TRUE);
    if (!spec.comment.empty())
        jpeg_write_marker(&encoder, JPEG_COM, reinterpret_cast<const JOCTET*>(spec.comment.data()),
                          static_cast<unsigned>(spec.comment.size()));
    WriteRows(encoder);
    jpeg_finish_compress(&encoder);
    Bytes file(bytes, bytes + size);
    std::free(bytes);
    return file;
}

Picture ReadJpeg(const Bytes& file, int* warnings)
{
    Decoder decoder;
    jpeg_mem_src(&decoder, file.data(), file.size());
    jpeg_read_header(&decoder, TRUE);
    if (UInt64{decoder.image_width} * decoder.image_height > UInt64{512} << 18)
        throw std::runtime_error("too large");
    jpeg_start_decompress(&decoder);
    Picture picture = {
        static_cast<SInt32>(decoder.output_width), static_cast<SInt32>(decoder.output_height), {}};
    const auto components = static_cast<size_t>(decoder.output_components);
    Bytes row(decoder.output_width * components + 1);
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW rows[] = {row.data()};
        jpeg_read_scanlines(&decoder, rows, 1);
        for (size_t x = 0; x < decoder.output_width; ++x)
            picture.pixels.push_back(ColorOf(decoder, row.data() + x * components));
    }
    jpeg_finish_decompress(&decoder);
    if (warnings != nullptr)
        *warnings = static_cast<int>(decoder.err->num_warnings);
    return picture;
}

size_t FindMarker(const Bytes& file, UInt8 code, int count)
{
    for (size_t at = 0; at + 1 < file.size(); ++at) {
        if (file[at] == 0xFF && file[at + 1] == code && --count == 0)
            return at;
    }
    throw std::runtime_error("no such marker");
}

} // namespace test
