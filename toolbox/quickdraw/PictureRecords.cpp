// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PictureRecords.h"

#include "toolbox/quickdraw/Palette.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace toolbox
{
namespace
{

enum Operation : UInt16 {
    kOpClip = 0x0001,
    kOpVersion = 0x0011,
    kOpForeground = 0x001A,
    kOpBackground = 0x001B,
    kOpPackBitsRect = 0x0098,
    kOpPackBitsRgn = 0x0099,
    kOpDirectBitsRect = 0x009A,
    kOpDirectBitsRgn = 0x009B,
    kOpEndPic = 0x00FF,
    kOpHeader = 0x0C00,
};

constexpr UInt16 kVersion2 = 0x02FF;
constexpr UInt16 kExtendedVersion2 = 0xFFFE;
constexpr UInt32 k72PixelsAnInch = 72 << 16;
constexpr UInt16 kPixMapFlag = 0x8000;        // in the row bytes
constexpr UInt32 kBaseOfDirectPixels = 0xFF;  // stands where an address stood in memory
constexpr UInt16 kTableInIndexOrder = 0x8000; // in a colour table's flags: values mean nothing
constexpr SInt16 kDirectPixels = 16;          // the pixel type
constexpr SInt32 kRectRegionSize = 10;        // its own two bytes and the bounds
constexpr SInt32 kMostRegionSize = 0x7FFF;
constexpr SInt16 kEndOfLine = 0x7FFF;
constexpr SInt16 kMostIndex = 255;

// Toggles, one line after another: its v, their h, the end mark.
class RegionLines
{
public:
    explicit RegionLines(const pixman_region32_t& region)
    {
        int count = 0;
        // The function takes what it does not change as changeable.
        const pixman_box32_t* const boxes =
            pixman_region32_rectangles(const_cast<pixman_region32_t*>(&region), &count);
        for (int i = 0; i < count;) {
            const pixman_box32_t& first = boxes[i];
            Edges edges;
            for (; i < count && boxes[i].y1 == first.y1; ++i) {
                edges.insert(edges.end(), {boxes[i].x1, boxes[i].x2});
            }
            if (first.y1 != bottom_) {
                ChangeTo({}, bottom_);
            }
            ChangeTo(edges, first.y1);
            bottom_ = first.y2;
        }
        ChangeTo({}, bottom_);
        words_.push_back(kEndOfLine);
    }

    const std::vector<SInt16>& Words() const { return words_; }

private:
    using Edges = std::vector<int>;

    void ChangeTo(const Edges& edges, int v)
    {
        Edges changes;
        std::set_symmetric_difference(above_.begin(), above_.end(), edges.begin(), edges.end(),
                                      std::back_inserter(changes));
        above_ = edges;
        if (changes.empty()) {
            return;
        }
        words_.push_back(static_cast<SInt16>(v));
        for (const int h : changes) {
            words_.push_back(static_cast<SInt16>(h));
        }
        words_.push_back(kEndOfLine);
    }

    Edges above_;
    int bottom_ = 0;
    std::vector<SInt16> words_;
};

void AddColor(PictureBytes& bytes, const RGBColor& color)
{
    bytes.Add16(color.red);
    bytes.Add16(color.green);
    bytes.Add16(color.blue);
}

void AddDefaultColorTable(PictureBytes& bytes, int depth)
{
    constexpr UInt32 kWiden = 0x0101; // eight bits to sixteen
    const Palette& palette = PaletteOf(nullptr, depth);
    bytes.Add32(static_cast<UInt32>(palette.seed));
    bytes.Add16(UInt16{0});
    bytes.Add16(static_cast<UInt16>(palette.count - 1));
    for (int i = 0; i < palette.count; ++i) {
        const Color color = palette.colors[static_cast<size_t>(i)];
        bytes.Add16(static_cast<UInt16>(i));
        for (const int shift : {16, 8, 0}) {
            bytes.Add16(static_cast<UInt16>((color >> shift & 0xFF) * kWiden));
        }
    }
}

// The table may move while bytes are added.
void AddColorTable(PictureBytes& bytes, CTabHandle table)
{
    const bool inOrder = ((*table)->ctFlags & kTableInIndexOrder) != 0;
    const SInt16 last = std::min((*table)->ctSize, kMostIndex);
    bytes.Add32(static_cast<UInt32>((*table)->ctSeed));
    bytes.Add16(UInt16{0});
    bytes.Add16(last);
    for (SInt16 i = 0; i <= last; ++i) {
        const ColorSpec* const entries = (*table)->ctTable;
        const ColorSpec entry = entries[i];
        bytes.Add16(inOrder ? i : entry.value);
        AddColor(bytes, entry.rgb);
    }
}

UInt32 Resolution(Fixed resolution)
{
    return resolution > 0 ? static_cast<UInt32>(resolution) : k72PixelsAnInch;
}

// The record of a map as it stands in a picture: of `part` only, and without an address.
void AddPixMap(PictureBytes& bytes, const PixMap& map, const Rect& part, const PictureRows& rows)
{
    if (rows.AreDirect()) {
        bytes.Add32(kBaseOfDirectPixels);
    }
    const int componentBits = map.pixelSize == 16 ? 5 : 8;
    bytes.Add16(static_cast<UInt16>(rows.RowBytes() | kPixMapFlag));
    bytes.AddRect(part);
    bytes.Add16(UInt16{0}); // version
    bytes.Add16(static_cast<SInt16>(rows.Packing()));
    bytes.Add32(0); // size packed: not told
    bytes.Add32(Resolution(map.hRes));
    bytes.Add32(Resolution(map.vRes));
    bytes.Add16(rows.AreDirect() ? kDirectPixels : SInt16{0});
    bytes.Add16(map.pixelSize);
    bytes.Add16(static_cast<SInt16>(rows.AreDirect() ? 3 : 1));
    bytes.Add16(static_cast<SInt16>(rows.AreDirect() ? componentBits : map.pixelSize));
    bytes.Add32(0); // bytes to the next plane
    bytes.Add32(0); // colour table, which follows
    bytes.Add32(0); // reserved
    if (rows.AreDirect()) {
        return;
    }
    if (map.pmTable == nullptr || (*map.pmTable)->ctSize < 0) {
        AddDefaultColorTable(bytes, map.pixelSize);
    } else {
        AddColorTable(bytes, map.pmTable);
    }
}

} // namespace

void AddVersion(PictureBytes& bytes, const Rect& frame)
{
    bytes.Add16(kOpVersion);
    bytes.Add16(kVersion2);
    bytes.Add16(kOpHeader);
    bytes.Add16(kExtendedVersion2);
    bytes.Add16(UInt16{0});
    bytes.Add32(k72PixelsAnInch);
    bytes.Add32(k72PixelsAnInch);
    bytes.AddRect(frame);
    bytes.Add32(0);
}

void AddClip(PictureBytes& bytes, const pixman_region32_t& clip)
{
    bytes.Add16(kOpClip);
    AddRegion(bytes, clip);
}

void AddColors(PictureBytes& bytes, const RGBColor& foreground, const RGBColor& background)
{
    bytes.Add16(kOpForeground);
    AddColor(bytes, foreground);
    bytes.Add16(kOpBackground);
    AddColor(bytes, background);
}

void AddPixels(PictureBytes& bytes, const PixMap& map, const Rect& part, const Rect& to,
               SInt16 mode, RgnHandle maskRgn, PictureRows& rows)
{
    const bool masked = maskRgn != nullptr;
    if (rows.AreDirect()) {
        bytes.Add16(masked ? kOpDirectBitsRgn : kOpDirectBitsRect);
    } else {
        bytes.Add16(masked ? kOpPackBitsRgn : kOpPackBitsRect);
    }
    AddPixMap(bytes, map, part, rows);
    bytes.AddRect(part);
    bytes.AddRect(to);
    bytes.Add16(mode);
    if (masked) {
        AddRegion(bytes, (*maskRgn)->area);
    }
    rows.AddTo(bytes);
    bytes.AlignToWord();
}

void AddEnd(PictureBytes& bytes)
{
    bytes.Add16(kOpEndPic);
}

void AddRegion(PictureBytes& bytes, const pixman_region32_t& region)
{
    auto* const area = const_cast<pixman_region32_t*>(&region);
    const Rect bounds = RectFromBox(*pixman_region32_extents(area));
    if (pixman_region32_n_rects(area) <= 1) {
        bytes.Add16(static_cast<SInt16>(kRectRegionSize));
        bytes.AddRect(bounds);
        return;
    }
    const RegionLines lines(region);
    const size_t size = kRectRegionSize + 2 * lines.Words().size();
    if (size > static_cast<size_t>(kMostRegionSize)) {
        bytes.RunOut();
        return;
    }
    bytes.Add16(static_cast<UInt16>(size));
    bytes.AddRect(bounds);
    for (const SInt16 word : lines.Words()) {
        bytes.Add16(word);
    }
}

} // namespace toolbox
