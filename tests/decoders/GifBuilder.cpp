// SPDX-License-Identifier: MIT
#include "tests/decoders/GifBuilder.h"

#include <map>

namespace test
{
namespace
{

constexpr UInt32 kCodeSize = 8;
constexpr UInt32 kClear = 1U << kCodeSize;
constexpr UInt32 kEnd = kClear + 1;
constexpr UInt32 kMaxCode = 4095;

// Codes of growing width, lowest bits first.
class CodeWriter
{
public:
    void Add(UInt32 code, UInt32 width)
    {
        bits_ |= code << count_;
        for (count_ += width; count_ >= 8; count_ -= 8) {
            bytes_ += static_cast<char>(bits_ & 0xFF);
            bits_ >>= 8;
        }
    }
    std::string Finish()
    {
        if (count_ > 0)
            bytes_ += static_cast<char>(bits_ & 0xFF);
        return bytes_;
    }

private:
    std::string bytes_;
    UInt32 bits_ = 0;
    UInt32 count_ = 0;
};

std::string Compress(const std::string& indices)
{
    CodeWriter writer;
    std::map<std::string, UInt32> codes;
    UInt32 next = kEnd + 1;
    UInt32 width = kCodeSize + 1;
    const auto codeOf = [&](const std::string& run) {
        return run.size() == 1 ? static_cast<UInt8>(run[0]) : codes.at(run);
    };
    writer.Add(kClear, width);
    std::string run;
    for (const char index : indices) {
        const std::string longer = run + index;
        if (longer.size() == 1 || codes.count(longer) != 0) {
            run = longer;
            continue;
        }
        writer.Add(codeOf(run), width);
        codes[longer] = next++;
        if (next - 1 == 1U << width)
            ++width;
        if (next > kMaxCode) {
            writer.Add(kClear, width);
            codes.clear();
            next = kEnd + 1;
            width = kCodeSize + 1;
        }
        run = std::string(1, index);
    }
    if (!run.empty())
        writer.Add(codeOf(run), width);
    writer.Add(kEnd, next == 1U << width ? width + 1 : width);
    return writer.Finish();
}

std::string InFileOrder(const GifImage& image)
{
    struct Pass {
        UInt32 first;
        UInt32 step;
    };
    if (!image.isInterlaced)
        return image.indices;
    std::string rows;
    for (const Pass pass : {Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}}) {
        for (UInt32 row = pass.first; row < image.height; row += pass.step)
            rows += image.indices.substr(size_t{row} * image.width, image.width);
    }
    return rows;
}

// The exponent in a table's size, minus 1.
int SizeBits(const GifColorList& colors)
{
    int bits = 0;
    while ((2U << bits) < colors.size())
        ++bits;
    return bits;
}

} // namespace

GifBuilder::GifBuilder(UInt16 width, UInt16 height, const GifColorList& colors, UInt8 background)
    : bytes_("GIF89a")
{
    AddWord(width);
    AddWord(height);
    bytes_ += static_cast<char>(colors.empty() ? 0 : 0x80 | SizeBits(colors));
    bytes_ += static_cast<char>(background);
    bytes_ += '\0';
    AddColors(colors);
}

GifBuilder& GifBuilder::Control(const GifControl& control)
{
    const int flags =
        control.disposal << 2 | (control.userInput ? 2 : 0) | (control.transparent >= 0 ? 1 : 0);
    bytes_ += {'!', '\xF9', 4, static_cast<char>(flags)};
    AddWord(static_cast<UInt16>(control.delay));
    bytes_ += static_cast<char>(control.transparent >= 0 ? control.transparent : 0);
    bytes_ += '\0';
    return *this;
}

GifBuilder& GifBuilder::Image(const GifImage& image)
{
    bytes_ += ',';
    for (const UInt16 value : {image.left, image.top, image.width, image.height})
        AddWord(value);
    bytes_ += static_cast<char>((image.colors.empty() ? 0 : 0x80 | SizeBits(image.colors)) |
                                (image.isInterlaced ? 0x40 : 0));
    AddColors(image.colors);
    bytes_ += static_cast<char>(kCodeSize);
    AddParts(Compress(InFileOrder(image)), 255);
    return *this;
}

GifBuilder& GifBuilder::Comment(const std::string& text, size_t partSize)
{
    bytes_ += "!\xFE";
    AddParts(text, partSize);
    return *this;
}

GifBuilder& GifBuilder::Repeats(UInt16 count, const std::string& application)
{
    bytes_ += "!\xFF\x0B" + application + "\x03\x01";
    AddWord(count);
    bytes_ += '\0';
    return *this;
}

GifBuilder& GifBuilder::Raw(const std::string& bytes)
{
    bytes_ += bytes;
    return *this;
}

void GifBuilder::AddWord(UInt16 value)
{
    bytes_ += static_cast<char>(value & 0xFF);
    bytes_ += static_cast<char>(value >> 8);
}

void GifBuilder::AddColors(const GifColorList& colors)
{
    if (colors.empty())
        return;
    for (size_t i = 0; i < size_t{2} << SizeBits(colors); ++i) {
        const UInt32 color = i < colors.size() ? colors[i] : 0;
        bytes_ += {static_cast<char>(color >> 16 & 0xFF), static_cast<char>(color >> 8 & 0xFF),
                   static_cast<char>(color & 0xFF)};
    }
}

void GifBuilder::AddParts(const std::string& data, size_t partSize)
{
    for (size_t at = 0; at < data.size(); at += partSize) {
        const std::string part = data.substr(at, partSize);
        bytes_ += static_cast<char>(part.size());
        bytes_ += part;
    }
    bytes_ += '\0';
}

} // namespace test
