// SPDX-License-Identifier: MIT
#include "tests/support/HostedImage.h"

#include "toolbox/Errors.h"
#include "toolbox/quickdraw/QDOffscreen.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

namespace test
{

namespace
{

int DepthOf(GWorldPtr world)
{
    return world != nullptr ? (*GetGWorldPixMap(world))->pixelSize : 0;
}

// The port of a window, current for its lifetime and all of one colour at first.
class Page
{
public:
    Page(SInt32 width, SInt32 height, UInt32 paper)
    {
        const Rect bounds = {0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)};
        if (CreateWindowPort(&bounds, &port_) != noErr)
            throw std::runtime_error("no port");
        GetPort(&former_);
        SetPort(port_);
        const RGBColor color = {static_cast<UInt16>((paper >> 16 & 0xFF) * 0x0101),
                                static_cast<UInt16>((paper >> 8 & 0xFF) * 0x0101),
                                static_cast<UInt16>((paper & 0xFF) * 0x0101)};
        RGBBackColor(&color);
        EraseRect(&bounds);
        BackColor(whiteColor);
    }
    ~Page()
    {
        SetPort(former_);
        DisposeWindowPort(port_);
    }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    Picture Contents(SInt32 width, SInt32 height) const
    {
        SInt32 rowBytes = 0;
        const UInt8* const pixels = GetPortPixels(port_, &rowBytes);
        Picture picture = {width, height, {}};
        picture.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
        UInt32* next = picture.pixels.data();
        for (SInt32 row = 0; row < height; ++row) {
            const UInt8* pixel = pixels + ptrdiff_t{row} * rowBytes;
            for (SInt32 column = 0; column < width; ++column, pixel += 4)
                *next++ = static_cast<UInt32>(pixel[1]) << 16 | static_cast<UInt32>(pixel[2]) << 8 |
                          pixel[3];
        }
        return picture;
    }

private:
    CGrafPtr port_ = nullptr;
    CGrafPtr former_ = nullptr;
};

} // namespace

int Difference(const Picture& a, const Picture& b)
{
    if (a.width != b.width || a.height != b.height)
        return 256;
    int largest = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        for (int shift = 0; shift < 24; shift += 8) {
            const int difference = static_cast<int>(a.pixels[i] >> shift & 0xFF) -
                                   static_cast<int>(b.pixels[i] >> shift & 0xFF);
            largest = std::max(largest, std::abs(difference));
        }
    }
    return largest;
}

ImageBundle::ImageBundle(const std::string& name) : BuiltBundle(name)
{
    Resolve("GetFrameGWorld", getFrameGWorld);
    Resolve("GetFrameMaskGWorld", getFrameMaskGWorld);
    Resolve("GetImageCurFrame", getCurrentFrame);
}

HostedImage::HostedImage(const ImageBundle& ownBundle, std::vector<UInt8> bytes)
    : bundle_(ownBundle)
{
    host.arrivals = {static_cast<SInt32>(bytes.size())};
    host.object = std::move(bytes);
    const OSErr made =
        bundle_.makeNewObject(bundle_.bundle, &host.Calls(), 0, 0, "image", "image/x", &object_);
    if (made != noErr)
        throw std::runtime_error("no object");
}

HostedImage::~HostedImage()
{
    bundle_.freeObject(object_);
}

void HostedImage::ArriveInPieces(SInt32 size)
{
    host.arrivals.assign(host.object.size() / static_cast<size_t>(size) + 1, size);
}

Picture HostedImage::Display(SInt32 width, SInt32 height, UInt32 paper, bool partial)
{
    const Page page(width, height, paper);
    const Rect area = {0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)};
    bundle_.setDisplayFlags(object_, partial ? UInt32{kVornDisplayPartialRedraw} : 0);
    if (bundle_.displayObject(object_, &area, 0) != noErr)
        throw std::runtime_error("not displayed");
    return page.Contents(width, height);
}

std::string HostedImage::Comment() const
{
    std::array<char, 257> text{};
    bundle_.getComment(object_, text.data(), 256);
    return text.data();
}

int HostedImage::Depth() const
{
    return bundle_.getCurrentFrame(object_) < 0 ? 0 : DepthOf(bundle_.getFrameGWorld(object_, 0));
}

int HostedImage::MaskDepth() const
{
    return bundle_.getCurrentFrame(object_) < 0 ? 0
                                                : DepthOf(bundle_.getFrameMaskGWorld(object_, 0));
}

bool HostedImage::WasTold(const std::string& text) const
{
    return std::any_of(host.told.begin(), host.told.end(), [&text](const std::string& told) {
        return told.compare(0, text.size(), text) == 0;
    });
}

} // namespace test
