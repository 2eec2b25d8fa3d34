// SPDX-License-Identifier: MIT
#include "tests/viewer/ImageFiles.h"

#include "tests/decoders/GifBuilder.h"

#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <png.h>

namespace
{

constexpr size_t kComponents = 3;

std::vector<UInt8> Noise(int width, int height)
{
    std::vector<UInt8> rgb(static_cast<size_t>(width) * static_cast<size_t>(height) * kComponents);
    UInt32 state = 1;
    for (UInt8& byte : rgb) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<UInt8>(state >> 24);
    }
    return rgb;
}

} // namespace

PagePicture ReadPagePicture(const std::string& png)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, png.data(), png.size()) == 0) {
        return {};
    }
    image.format = PNG_FORMAT_RGB;
    std::vector<UInt8> rgb(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr);
    PagePicture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    for (size_t i = 0; i < rgb.size(); i += kComponents) {
        picture.pixels.push_back(UInt32{rgb[i]} << 16 | UInt32{rgb[i + 1]} << 8 | rgb[i + 2]);
    }
    return picture;
}

std::string MakePng(int width, int height)
{
    const std::vector<UInt8> rgb = Noise(width, height);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = 0;
    png_image_write_to_memory(&image, nullptr, &size, 0, rgb.data(), 0, nullptr);
    std::string file(size, '\0');
    png_image_write_to_memory(&image, file.data(), &size, 0, rgb.data(), 0, nullptr);
    return file;
}

std::string MakeJpeg(int width, int height)
{
    std::vector<UInt8> rgb = Noise(width, height);
    jpeg_compress_struct compress{};
    jpeg_error_mgr errors{};
    compress.err = jpeg_std_error(&errors);
    jpeg_create_compress(&compress);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&compress, &bytes, &size);
    compress.image_width = static_cast<JDIMENSION>(width);
    compress.image_height = static_cast<JDIMENSION>(height);
    compress.input_components = kComponents;
    compress.in_color_space = JCS_RGB;
    jpeg_set_defaults(&compress);
    jpeg_start_compress(&compress, TRUE);
    while (compress.next_scanline < compress.image_height) {
        JSAMPROW row =
            &rgb[size_t{compress.next_scanline} * static_cast<size_t>(width) * kComponents];
        jpeg_write_scanlines(&compress, &row, 1);
    }
    jpeg_finish_compress(&compress);
    jpeg_destroy_compress(&compress);
    std::string file(reinterpret_cast<char*>(bytes), size);
    std::free(bytes);
    return file;
}

std::string MakeGif(UInt16 width, UInt16 height)
{
    constexpr UInt32 kColors = 16;
    test::GifColorList colors;
    for (UInt32 i = 0; i < kColors; ++i) {
        colors.push_back(i * 0x0A0B0C);
    }
    std::string indices;
    for (const UInt8 byte : Noise(width, height)) {
        indices.push_back(static_cast<char>(byte % kColors));
    }
    indices.resize(size_t{width} * height);
    test::GifBuilder gif(width, height, colors);
    return gif.Image({0, 0, width, height, indices}).Bytes();
}

std::string MakeAnimation(UInt16 width, UInt16 height, const std::vector<UInt32>& colors, int delay,
                          bool userInput, size_t filling)
{
    test::GifColorList table = colors;
    table.resize(16);
    test::GifBuilder gif(width, height, table);
    gif.Repeats(0);
    for (size_t i = 0; i < colors.size(); ++i) {
        gif.Control({1, delay, -1, userInput});
        gif.Image({0, 0, width, height, std::string(size_t{width} * height, static_cast<char>(i))});
        gif.Comment(std::string(filling, 'x'));
    }
    return gif.Bytes();
}
