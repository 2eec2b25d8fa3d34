// SPDX-License-Identifier: MIT
#include "tests/toolbox/PictureReader.h"

#include "toolbox/memory/Memory.h"

#include <stdexcept>

namespace test
{
namespace
{

void Expect(bool condition, const char* what)
{
    if (!condition) {
        throw std::runtime_error(what);
    }
}

class Reader
{
public:
    explicit Reader(const Bytes& bytes) : bytes_(bytes) {}

    bool AtEnd() const { return place_ == bytes_.size(); }

    UInt32 Number(size_t size)
    {
        UInt32 number = 0;
        for (const UInt8 byte : Take(size)) {
            number = number << 8 | byte;
        }
        return number;
    }
    UInt8 Byte() { return static_cast<UInt8>(Number(1)); }
    UInt16 Word() { return static_cast<UInt16>(Number(2)); }
    SInt16 Signed() { return static_cast<SInt16>(Word()); }
    UInt32 Long() { return Number(4); }
    Rect TheRect()
    {
        const SInt16 top = Signed();
        const SInt16 left = Signed();
        const SInt16 bottom = Signed();
        return {top, left, bottom, Signed()};
    }
    RGBColor Color()
    {
        const UInt16 red = Word();
        const UInt16 green = Word();
        return {red, green, Word()};
    }
    std::vector<SInt16> Region()
    {
        std::vector<SInt16> words = {Signed()};
        Expect(words[0] >= 10 && words[0] % 2 == 0, "a region of that size");
        while (words.size() * 2 < static_cast<size_t>(words[0])) {
            words.push_back(Signed());
        }
        return words;
    }
    Bytes Take(size_t count)
    {
        Expect(bytes_.size() - place_ >= count, "cut short");
        const auto first = bytes_.begin() + static_cast<ptrdiff_t>(place_);
        place_ += count;
        return {first, first + static_cast<ptrdiff_t>(count)};
    }
    void ToEvenPlace()
    {
        if (place_ % 2 != 0) {
            Expect(Byte() == 0, "a byte between records");
        }
    }

private:
    const Bytes& bytes_;
    size_t place_ = 0;
};

std::vector<UInt32> ReadColorTable(Reader& in)
{
    in.Long(); // seed
    Expect(in.Word() == 0, "flags of a colour table");
    std::vector<UInt32> colors(in.Word() + 1U);
    for (size_t i = 0; i < colors.size(); ++i) {
        const UInt16 index = in.Word();
        const RGBColor color = in.Color();
        colors.at(index) =
            static_cast<UInt32>((color.red >> 8) << 16 | (color.green >> 8) << 8 | color.blue >> 8);
    }
    return colors;
}

UInt32 ColorOf16Bits(const UInt8* bytes)
{
    const UInt32 pixel = static_cast<UInt32>(bytes[0] << 8 | bytes[1]);
    const auto eightBits = [](UInt32 five) { return five << 3 | five >> 2; };
    return eightBits(pixel >> 10 & 31) << 16 | eightBits(pixel >> 5 & 31) << 8 |
           eightBits(pixel & 31);
}

UInt32 IndexAt(const Bytes& row, int depth, int x)
{
    const int bit = x * depth;
    const int byte = row.at(static_cast<size_t>(bit / 8));
    return static_cast<UInt32>(byte >> (8 - depth - bit % 8) & ((1 << depth) - 1));
}

UInt32 ColorOf32Bits(const Bytes& row, int packType, size_t x)
{
    if (packType == 1) {
        return static_cast<UInt32>(row.at(4 * x + 1) << 16 | row.at(4 * x + 2) << 8 |
                                   row.at(4 * x + 3));
    }
    const size_t width = row.size() / 3;
    return static_cast<UInt32>(row.at(x) << 16 | row.at(width + x) << 8 | row.at(2 * width + x));
}

void AddRow(PictureCopy& copy, const Bytes& row, const std::vector<UInt32>& colors)
{
    const int width = copy.bounds.right - copy.bounds.left;
    for (int x = 0; x < width; ++x) {
        const auto column = static_cast<size_t>(x);
        if (copy.depth == 32) {
            copy.pixels.push_back(ColorOf32Bits(row, copy.packType, column));
        } else if (copy.depth == 16) {
            copy.pixels.push_back(ColorOf16Bits(&row.at(2 * column)));
        } else {
            copy.pixels.push_back(colors.at(IndexAt(row, copy.depth, x)));
        }
    }
}

Bytes ReadRow(Reader& in, const PictureCopy& copy)
{
    const auto rowBytes = static_cast<size_t>(copy.rowBytes);
    if (copy.rowBytes < 8) {
        return in.Take(rowBytes);
    }
    const Bytes packed = in.Take(copy.rowBytes > 250 ? in.Word() : in.Byte());
    Bytes row = Unpack(packed, copy.packType == 3 ? 2 : 1);
    Expect(row.size() == (copy.packType == 4 ? rowBytes / 4 * 3 : rowBytes), "a row's length");
    return row;
}

PictureCopy ReadCopy(Reader& in, bool direct, bool masked)
{
    PictureCopy copy;
    if (direct) {
        Expect(in.Long() == 0xFF, "the address of direct pixels");
    }
    copy.rowBytes = in.Word();
    Expect((copy.rowBytes & 0x8000) != 0, "a bit map");
    copy.rowBytes &= 0x3FFF;
    copy.bounds = in.TheRect();
    copy.version = in.Word();
    copy.packType = in.Word();
    in.Long(); // packed size
    Expect(in.Long() == 72 << 16 && in.Long() == 72 << 16, "a resolution");
    Expect(in.Word() == (direct ? 16 : 0), "a pixel type");
    copy.depth = in.Word();
    Expect(in.Word() == (direct ? 3 : 1), "a number of components");
    Expect(in.Word() == (direct ? (copy.depth == 16 ? 5 : 8) : copy.depth), "a component's size");
    in.Take(12);
    const std::vector<UInt32> colors = direct ? std::vector<UInt32>{} : ReadColorTable(in);
    copy.from = in.TheRect();
    copy.to = in.TheRect();
    copy.mode = in.Signed();
    if (masked) {
        copy.mask = in.Region();
    }
    for (int row = copy.bounds.top; row < copy.bounds.bottom; ++row) {
        AddRow(copy, ReadRow(in, copy), colors);
    }
    return copy;
}

} // namespace

Bytes Unpack(const Bytes& packed, size_t unit)
{
    Bytes unpacked;
    Reader in(packed);
    while (!in.AtEnd()) {
        const auto flag = static_cast<SInt8>(in.Byte());
        Expect(flag != -128, "a flag of -128");
        if (flag >= 0) {
            const Bytes units = in.Take((static_cast<size_t>(flag) + 1) * unit);
            unpacked.insert(unpacked.end(), units.begin(), units.end());
            continue;
        }
        const Bytes repeated = in.Take(unit);
        for (int i = 0; i < 1 - flag; ++i) {
            unpacked.insert(unpacked.end(), repeated.begin(), repeated.end());
        }
    }
    return unpacked;
}

Bytes BytesOf(PicHandle picture)
{
    auto* const handle = reinterpret_cast<Handle>(picture);
    const auto* const first = reinterpret_cast<const UInt8*>(*handle);
    return {first, first + GetHandleSize(handle)};
}

PictureParts ReadPicture(const Bytes& bytes)
{
    Reader in(bytes);
    PictureParts parts;
    parts.size = in.Word();
    parts.frame = in.TheRect();
    Expect(in.Long() == 0x001102FF, "the version");
    Expect(in.Long() == 0x0C00FFFE && in.Word() == 0, "the header");
    Expect(in.Long() == 72 << 16 && in.Long() == 72 << 16, "the picture's resolution");
    parts.sourceRect = in.TheRect();
    in.Long();
    for (;;) {
        in.ToEvenPlace();
        switch (const UInt16 operation = in.Word()) {
        case 0x0001:
            parts.clips.push_back(in.Region());
            break;
        case 0x001A:
            parts.foregrounds.push_back(in.Color());
            break;
        case 0x001B:
            parts.backgrounds.push_back(in.Color());
            break;
        case 0x0098:
        case 0x0099:
        case 0x009A:
        case 0x009B:
            Expect(!parts.clips.empty(), "pixels before any clip region");
            parts.copies.push_back(ReadCopy(in, operation >= 0x009A, (operation & 1) != 0));
            break;
        case 0x00FF:
            Expect(in.AtEnd(), "more after the end");
            return parts;
        default:
            throw std::runtime_error("an unknown record");
        }
    }
}

} // namespace test
