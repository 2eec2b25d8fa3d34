// SPDX-License-Identifier: MIT
#include "tests/decoders/GifTest.h"

#include "src/image/PixelWriting.h"

#include <algorithm>

namespace test
{
namespace
{

UInt32 ColorAt(GWorldPtr world, SInt32 v, SInt32 h)
{
    const PixMapHandle map = GetGWorldPixMap(world);
    const auto* const bytes = reinterpret_cast<const UInt8*>(GetPixBaseAddr(map));
    const CTabHandle table = (*map)->pmTable;
    const UInt8 index = bytes[v * GetPixRowBytes(map) + h];
    if (index > (*table)->ctSize)
        return kBlack;
    const RGBColor& color = (*table)->ctTable[index].rgb;
    return UInt32{color.red} >> 8 << 16 | UInt32{color.green} >> 8 << 8 | UInt32{color.blue} >> 8;
}

bool IsSet(GWorldPtr mask, SInt32 v, SInt32 h)
{
    const PixMapHandle map = GetGWorldPixMap(mask);
    const auto* const bytes = reinterpret_cast<const UInt8*>(GetPixBaseAddr(map));
    return (bytes[v * GetPixRowBytes(map) + h / 8] & 0x80 >> h % 8) != 0;
}

} // namespace

GifTest::~GifTest()
{
    VornPluginFreeObject(object_);
    CloseWindow();
}

void GifTest::CloseWindow()
{
    SetPort(nullptr);
    DisposeWindowPort(window_);
    window_ = nullptr;
}

void GifTest::NewObject()
{
    VornPluginFreeObject(object_);
    object_ = nullptr;
    constexpr OSType kUnknown = FOUR_CHARS('?', '?', '?', '?');
    if (VornPluginMakeNewObject(bundle_.Get(), &host_.Calls(), kUnknown, kUnknown, "image.gif",
                                "image/gif", &object_) != 0)
        throw std::runtime_error("no object");
}

OSErr GifTest::Decode(const std::string& file, SInt32 chunk)
{
    const auto size = static_cast<SInt32>(file.size());
    if (chunk == 0)
        return DecodeArriving(file, {size});
    return DecodeArriving(
        file, std::vector<SInt32>(static_cast<size_t>((size + chunk - 1) / chunk), chunk));
}

OSErr GifTest::DecodeArriving(const std::string& file, const std::vector<SInt32>& arrivals)
{
    NewObject();
    host_.object.assign(file.begin(), file.end());
    host_.arrivals.assign(arrivals.begin(), arrivals.end());
    host_.arrived = 0;
    host_.told.clear();
    return VornPluginDecodeObject(object_);
}

FrameContents GifTest::Frame(SInt16 index)
{
    const VornImagePlugin::TFrame* const frame = Image().frames[index];
    Rect bounds{};
    frame->GetBounds(bounds);
    FrameContents contents = {bounds.right,
                              bounds.bottom,
                              frame->displayPosition.h,
                              frame->displayPosition.v,
                              frame->delayTicks,
                              frame->disposalMethod,
                              frame->userInput != 0,
                              {}};
    for (SInt32 v = 0; v < bounds.bottom; ++v) {
        for (SInt32 h = 0; h < bounds.right; ++h) {
            const bool isOpaque = frame->maskGWorld == nullptr || IsSet(frame->maskGWorld, v, h);
            contents.pixels.push_back(isOpaque ? ColorAt(frame->gworld, v, h) : kNoColor);
        }
    }
    return contents;
}

std::vector<FrameContents> GifTest::Frames()
{
    std::vector<FrameContents> frames;
    for (SInt16 index = 0; index < FrameCount(); ++index)
        frames.push_back(Frame(index));
    return frames;
}

std::string GifTest::Comment()
{
    char text[257] = {};
    VornPluginGetObjectComment(object_, text, 256);
    return text;
}

void GifTest::OpenWindow()
{
    CloseWindow();
    if (CreateWindowPort(&Image().displayRect, &window_) != 0)
        throw std::runtime_error("no window");
    SetPort(window_);
}

void GifTest::Display()
{
    const Rect rect = Image().displayRect;
    VornPluginDisplayObject(object_, &rect, 0);
}

void GifTest::IdleOnce()
{
    clock_.GoToTick(std::max(Image().nextFrameTime, UInt32{1}));
    const Rect rect = Image().displayRect;
    VornPluginIdleObject(object_, &rect, 0);
}

Pixels GifTest::WindowPixels() const
{
    Rect bounds{};
    GetPortBounds(window_, &bounds);
    SInt32 rowBytes = 0;
    const UInt8* const bytes = GetPortPixels(window_, &rowBytes);
    Pixels pixels;
    for (SInt32 v = 0; v < bounds.bottom; ++v) {
        for (SInt32 h = 0; h < bounds.right; ++h) {
            const UInt8* const pixel = bytes + v * rowBytes + h * 4;
            pixels.push_back(UInt32{pixel[1]} << 16 | UInt32{pixel[2]} << 8 | pixel[3]);
        }
    }
    return pixels;
}

} // namespace test
