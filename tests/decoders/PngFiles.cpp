// SPDX-License-Identifier: MIT
#include "tests/decoders/PngFiles.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <stdexcept>
#include <zlib.h>

namespace test
{

namespace
{

void Fail(png_structp, png_const_charp text)
{
    throw std::runtime_error(text);
}

void Ignore(png_structp, png_const_charp) {}

void Append(png_structp png, png_bytep bytes, size_t count)
{
    auto& file = *static_cast<Bytes*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}

struct Input {
    const Bytes& file;
    size_t place = 0;
};

void Take(png_structp png, png_bytep bytes, size_t count)
{
    auto& input = *static_cast<Input*>(png_get_io_ptr(png));
    if (input.file.size() - input.place < count)
        throw std::runtime_error("the file ends");
    std::memcpy(bytes, input.file.data() + input.place, count);
    input.place += count;
}

class Writer
{
public:
    Writer()
        : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore)),
          info(png_create_info_struct(png))
    {
    }
    ~Writer() { png_destroy_write_struct(&png, &info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    png_structp png;
    png_infop info;
};

class Reader
{
public:
    Reader()
        : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore)),
          info(png_create_info_struct(png))
    {
    }
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    png_structp png;
    png_infop info;
};

void SetColors(Writer& writer, const PngSpec& spec)
{
    std::array<png_color, 256> palette{};
    std::array<png_byte, 256> alpha{};
    const int count = std::min(1 << spec.bitDepth, 256);
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<size_t>(i);
        palette[at] = {static_cast<png_byte>(i * 0x51), static_cast<png_byte>(255 - i * 9),
                       static_cast<png_byte>(i * i)};
        alpha[at] = static_cast<png_byte>(i * 0x11);
    }
    if (spec.colorType == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(writer.png, writer.info, palette.data(), count);
    png_color_16 key{};
    key.gray = key.red = key.green = key.blue = 1;
    if (spec.hasTransparency)
        png_set_tRNS(writer.png, writer.info, alpha.data(), count, &key);
}

void SetTexts(Writer& writer, const PngSpec& spec)
{
    std::vector<png_text> texts;
    for (const auto& [key, text] : spec.texts) {
        png_text one{};
        one.compression = spec.textKind;
        one.key = const_cast<char*>(key.c_str());
        one.text = const_cast<char*>(text.c_str());
        one.text_length = text.size();
        texts.push_back(one);
    }
    if (!texts.empty())
        png_set_text(writer.png, writer.info, texts.data(), static_cast<int>(texts.size()));
}

void WriteRows(Writer& writer, const PngSpec& spec)
{
    std::minstd_rand random(spec.width);
    const size_t rowBytes = png_get_rowbytes(writer.png, writer.info);
    std::vector<Bytes> rows(spec.height, Bytes(rowBytes));
    std::vector<png_bytep> pointers;
    for (Bytes& row : rows) {
        for (UInt8& byte : row)
            byte = static_cast<UInt8>(random() % 16 * 0x11);
        // Now and then a sample that is the transparent colour.
        for (size_t at = 0; at + 6 <= row.size(); at += 48)
            std::memcpy(row.data() + at, spec.bitDepth == 16 ? "\0\1\0\1\0\1" : "\1\1\1\1\1\1", 6);
        pointers.push_back(row.data());
    }
    png_write_image(writer.png, pointers.data());
}

} // namespace

Bytes WritePng(const PngSpec& spec)
{
    Bytes file;
    Writer writer;
    png_set_write_fn(writer.png, &file, Append, [](png_structp) {});
    png_set_IHDR(writer.png, writer.info, spec.width, spec.height, spec.bitDepth, spec.colorType,
                 spec.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    SetColors(writer, spec);
    SetTexts(writer, spec);
    png_set_compression_buffer_size(writer.png, 512); // several IDAT chunks
    png_write_info(writer.png, writer.info);
    if (spec.filling > 0) {
        const Bytes filling(spec.filling, 0x5A);
        png_write_chunk(writer.png, reinterpret_cast<png_const_bytep>("fiLl"), filling.data(),
                        filling.size());
    }
    WriteRows(writer, spec);
    png_write_end(writer.png, nullptr);
    return file;
}

Picture ReadPng(const Bytes& file)
{
    Reader reader;
    Input input = {file};
    png_set_read_fn(reader.png, &input, Take);
    png_read_info(reader.png, reader.info);
    if (UInt64{png_get_image_width(reader.png, reader.info)} *
            png_get_image_height(reader.png, reader.info) >
        UInt64{512} << 18)
        throw std::runtime_error("too large");
    png_set_expand(reader.png);
    png_set_scale_16(reader.png);
    png_set_gray_to_rgb(reader.png);
    png_set_add_alpha(reader.png, 0xFF, PNG_FILLER_AFTER);
    png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    const UInt32 width = png_get_image_width(reader.png, reader.info);
    const UInt32 height = png_get_image_height(reader.png, reader.info);
    std::vector<Bytes> rows(height, Bytes(size_t{width} * 4));
    std::vector<png_bytep> pointers;
    for (Bytes& row : rows)
        pointers.push_back(row.data());
    png_read_image(reader.png, pointers.data());
    Picture picture = {static_cast<SInt32>(width), static_cast<SInt32>(height), {}};
    for (const Bytes& row : rows) {
        for (size_t at = 0; at < row.size(); at += 4) {
            const UInt32 alpha = row[at + 3];
            UInt32 pixel = 0;
            for (size_t i = 0; i < 3; ++i)
                pixel = pixel << 8 | (row[at + i] * alpha + 255 * (255 - alpha) + 127) / 255;
            picture.pixels.push_back(pixel);
        }
    }
    return picture;
}

size_t FindChunk(const Bytes& file, const std::string& type, int count)
{
    auto found = file.begin() - 1;
    for (int i = 0; i < count; ++i) {
        found = std::search(found + 1, file.end(), type.begin(), type.end());
        if (found == file.end())
            throw std::runtime_error("no chunk " + type);
    }
    return static_cast<size_t>(found - file.begin()) - 4;
}

void FixCheckSum(Bytes& file, size_t chunk)
{
    size_t length = 0;
    for (size_t i = 0; i < 4; ++i)
        length = length << 8 | file[chunk + i];
    const auto sum = crc32(0, file.data() + chunk + 4, static_cast<uInt>(length + 4));
    for (size_t i = 0; i < 4; ++i)
        file[chunk + 8 + length + i] = static_cast<UInt8>(sum >> (24 - 8 * i));
}

} // namespace test
