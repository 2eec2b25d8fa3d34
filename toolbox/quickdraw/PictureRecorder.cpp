// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PictureRecorder.h"

#include "toolbox/memory/Memory.h"
#include "toolbox/quickdraw/PictureRecords.h"
#include "toolbox/quickdraw/PictureRows.h"
#include "toolbox/quickdraw/Port.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>

namespace toolbox
{
namespace
{

using Header = std::array<UInt8, kPictureHeaderSize>;

Header MakeHeader(Size size, const Rect& frame)
{
    Header header{};
    const std::array<SInt16, kPictureHeaderSize / 2> numbers = {
        static_cast<SInt16>(static_cast<UInt16>(size)), frame.top, frame.left, frame.bottom,
        frame.right};
    for (size_t i = 0; i < numbers.size(); ++i) {
        const auto number = static_cast<UInt16>(numbers[i]);
        header[2 * i] = static_cast<UInt8>(number >> 8);
        header[2 * i + 1] = static_cast<UInt8>(number);
    }
    return header;
}

void WriteHeader(Handle handle, const Header& header)
{
    std::memcpy(*handle, header.data(), header.size());
}

bool Equal(const RGBColor& a, const RGBColor& b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

Rect Intersection(const Rect& a, const Rect& b)
{
    return {std::max(a.top, b.top), std::max(a.left, b.left), std::min(a.bottom, b.bottom),
            std::min(a.right, b.right)};
}

// Where a coordinate between two others comes to lie when those move.
SInt16 MapCoordinate(int value, int from, int fromEnd, int to, int toEnd)
{
    const double share = static_cast<double>(value - from) / (fromEnd - from);
    return static_cast<SInt16>(std::lround(to + share * (toEnd - to)));
}

// Where `part` of `from` is drawn when `from` is drawn at `to`.
Rect PlaceOfPart(const Rect& part, const Rect& from, const Rect& to)
{
    return {MapCoordinate(part.top, from.top, from.bottom, to.top, to.bottom),
            MapCoordinate(part.left, from.left, from.right, to.left, to.right),
            MapCoordinate(part.bottom, from.top, from.bottom, to.top, to.bottom),
            MapCoordinate(part.right, from.left, from.right, to.left, to.right)};
}

} // namespace

std::unique_ptr<PictureRecorder> PictureRecorder::Begin(const Rect& frame)
{
    Handle const handle = NewHandle(static_cast<Size>(kPictureHeaderSize));
    if (handle == nullptr) {
        return nullptr;
    }
    WriteHeader(handle, MakeHeader(static_cast<Size>(kPictureHeaderSize), {}));
    std::unique_ptr<PictureRecorder> recorder(new (std::nothrow) PictureRecorder(handle, frame));
    if (recorder == nullptr) {
        DisposeHandle(handle);
    }
    return recorder;
}

PictureRecorder::PictureRecorder(Handle handle, const Rect& frame) : bytes_(handle), frame_(frame)
{
    AddVersion(bytes_, frame);
}

void PictureRecorder::ClipTo(const pixman_region32_t& clip)
{
    MacRegion inFrame;
    SetArea(inFrame.area, frame_);
    // The function takes what it does not change as changeable.
    pixman_region32_intersect(&inFrame.area, &inFrame.area, const_cast<pixman_region32_t*>(&clip));
    if (hasClip_ && pixman_region32_equal(&inFrame.area, &clip_.area) != 0) {
        return;
    }
    hasClip_ = true;
    pixman_region32_copy(&clip_.area, &inFrame.area);
    AddClip(bytes_, clip_.area);
}

void PictureRecorder::TintWith(const RGBColor& foreground, const RGBColor& background)
{
    if (Equal(foreground, foreground_) && Equal(background, background_)) {
        return;
    }
    foreground_ = foreground;
    background_ = background;
    AddColors(bytes_, foreground, background);
}

// Side by side in several records where there are more columns than one can tell of.
void PictureRecorder::AddCopy(const PixMap& source, const Rect& from, const Rect& to, SInt16 mode,
                              RgnHandle maskRgn)
{
    const PixMap map = source; // as it is now, wherever it moves
    const Rect whole = Intersection(from, map.bounds);
    if (IsEmptyRect(whole) || IsEmptyRect(to)) {
        return;
    }
    const int most = PictureRows::MostColumns(map.pixelSize);
    for (int left = whole.left; left < whole.right; left += most) {
        const Rect part = {whole.top, static_cast<SInt16>(left), whole.bottom,
                           static_cast<SInt16>(std::min<int>(left + most, whole.right))};
        const Rect place = PlaceOfPart(part, from, to);
        if (!IsEmptyRect(place)) {
            AddPart(map, part, place, mode, maskRgn);
        }
    }
}

void PictureRecorder::AddPart(const PixMap& map, const Rect& part, const Rect& place, SInt16 mode,
                              RgnHandle maskRgn)
{
    const std::unique_ptr<PictureRows> rows(new (std::nothrow) PictureRows(map, part));
    if (rows == nullptr) {
        bytes_.RunOut();
        return;
    }
    AddPixels(bytes_, map, part, place, mode, maskRgn, *rows);
}

void PictureRecorder::Finish()
{
    AddEnd(bytes_);
    bytes_.Trim();
    Handle const handle = bytes_.TheHandle();
    if (!bytes_.RanOut()) {
        WriteHeader(handle, MakeHeader(GetHandleSize(handle), frame_));
        return;
    }
    SetHandleSize(handle, static_cast<Size>(kPictureHeaderSize)); // if not, it is merely too big
}

bool IsRecording(const CGrafPort* port)
{
    return port != nullptr && port->recorder != nullptr;
}

void RecordCopy(CGrafPort& port, const PixMap& source, const Rect& from, const Rect& to,
                SInt16 mode, RgnHandle maskRgn)
{
    if (port.recorder != nullptr) {
        port.recorder->ClipTo(port.clip.area);
        port.recorder->TintWith(port.foreground, port.background);
        port.recorder->AddCopy(source, from, to, mode, maskRgn);
    }
}

} // namespace toolbox
