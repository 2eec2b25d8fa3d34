// SPDX-License-Identifier: MIT
#include "tests/sweep/ImageScenarios.h"

#include "src/datahandler/DataHandlerRegistration.h"
#include "tests/decoders/GifBuilder.h"
#include "tests/decoders/PngFiles.h"
#include "tests/support/ManualClock.h"
#include "tests/support/TestBundle.h"
#include "toolbox/drag/Drag.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/quickdraw/Pictures.h"
#include "toolbox/quickdraw/QDOffscreen.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sweep
{
namespace
{

using test::GifBuilder;
using test::ImageBundle;

const ImageBundle& GifBundle()
{
    static const auto& bundle = *new ImageBundle("VornGIF");
    return bundle;
}

const ImageBundle& PngBundle()
{
    static const auto& bundle = *new ImageBundle("VornPNG");
    return bundle;
}

std::vector<UInt8> BytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

test::GifImage Plain(UInt16 width, UInt16 height, char index, UInt16 left = 0, UInt16 top = 0)
{
    return {left, top, width, height, std::string(size_t{width} * height, index)};
}

const test::GifColorList kColors = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};

// A host with a white page and one object at its top left.
class ImageScenario : public Scenario
{
public:
    ImageScenario(const ImageBundle& bundle, std::vector<UInt8> bytes, SInt32 arrival = 0)
        : bundle_(bundle)
    {
        CreateWindowPort(&kPage, &port_);
        SetPort(port_);
        const auto size = static_cast<SInt32>(bytes.size());
        host_.arrivals.assign(arrival == 0 ? 1 : static_cast<size_t>(size / arrival + 1),
                              arrival == 0 ? size : arrival);
        host_.object = std::move(bytes);
    }
    ~ImageScenario() override
    {
        bundle_.freeObject(object_);
        SetPort(nullptr);
        DisposeWindowPort(port_);
    }

    void Run() override
    {
        Tell("make", bundle_.makeNewObject(bundle_.bundle, &host_.Calls(), 0, 0, "image", "image/x",
                                           &object_));
        if (object_ == nullptr) {
            return;
        }
        Decode();
        Use();
        Tell("page", std::to_string(std::hash<std::string>{}(PagePixels())));
        bundle_.freeObject(object_);
        object_ = nullptr;
    }

protected:
    virtual void Use() = 0;
    VornPlugin* Object() const { return object_; }
    test::ArrivalHost& Host() { return host_; }
    void Display(UInt32 flags = 0)
    {
        bundle_.setDisplayFlags(object_, flags);
        TellFirstError("display", bundle_.displayObject(object_, &area_, 0));
    }
    // The host's own clip is the whole page; what comes of it is the object's affair.
    static constexpr Rect kPage = {0, 0, 260, 310};
    const ImageBundle& bundle_;
    Rect area_ = {0, 0, 250, 300};

private:
    void Decode()
    {
        Tell("decode", bundle_.decodeObject(object_));
        for (const std::string& told : host_.told) {
            if (told.starts_with("renderingDone ")) {
                Tell("told", told.substr(told.find(' ') + 1));
            }
        }
    }
    std::string PagePixels() const
    {
        SInt32 rowBytes = 0;
        const UInt8* const pixels = GetPortPixels(port_, &rowBytes);
        return {reinterpret_cast<const char*>(pixels),
                static_cast<size_t>(rowBytes) * static_cast<size_t>(kPage.bottom)};
    }

    test::ArrivalHost host_;
    CGrafPtr port_ = nullptr;
    VornPlugin* object_ = nullptr;
};

class StillScenario : public ImageScenario
{
public:
    StillScenario() : ImageScenario(PngBundle(), File(), 400)
    {
        Host().onGetData = [this] {
            if (Object() != nullptr && Host().told.size() > 1) {
                Display(kVornDisplayPartialRedraw);
            }
        };
    }

private:
    static std::vector<UInt8> File()
    {
        test::PngSpec spec;
        spec.colorType = PNG_COLOR_TYPE_RGB_ALPHA;
        return test::WritePng(spec);
    }
    void Use() override
    {
        area_ = {0, 0, 29, 37};
        Display();
    }
};

class AnimatedScenario : public ImageScenario
{
public:
    AnimatedScenario() : ImageScenario(GifBundle(), File()) {}

private:
    static std::vector<UInt8> File()
    {
        GifBuilder gif(12, 10, kColors, 2);
        gif.Repeats(1).Comment("swept").Image(Plain(12, 10, 1));
        for (int disposal = 0; disposal < 4; ++disposal) {
            gif.Control({disposal, 5, -1, false}).Image(Plain(4, 4, 2, 1, 1));
            gif.Control({disposal, 5, 3, disposal == 1}).Image(Plain(4, 4, 3, 3, 3));
        }
        return BytesOf(gif.Bytes());
    }
    void Use() override
    {
        area_ = {0, 0, 10, 12};
        Display();
        for (UInt32 tick = 1; tick < 40; ++tick) {
            clock_.GoToTick(tick * 3);
            TellFirstError("idle", bundle_.idleObject(Object(), &area_, 0));
            const EventRecord event{};
            clicks_ += bundle_.handleObjectClick(Object(), &area_, &event) != 0 ? 1 : 0;
        }
        Tell("clicks", clicks_);
        Display();
    }

    test::ManualClock clock_;
    int clicks_ = 0;
};

// Its second picture ends too early, and gets a mask that hides what is missing.
class DamagedScenario : public ImageScenario
{
public:
    DamagedScenario() : ImageScenario(GifBundle(), File()) {}

private:
    static std::vector<UInt8> File()
    {
        test::GifImage half = Plain(4, 4, 2, 1, 1);
        half.indices.resize(8);
        return BytesOf(GifBuilder(12, 10, kColors).Image(Plain(12, 10, 1)).Image(half).Bytes());
    }
    void Use() override
    {
        area_ = {0, 0, 10, 12};
        Display();
        for (UInt32 tick = 1; tick < 20; tick += 6) {
            clock_.GoToTick(tick);
            TellFirstError("idle", bundle_.idleObject(Object(), &area_, 0));
        }
    }

    test::ManualClock clock_;
};

class DragScenario : public ImageScenario
{
public:
    DragScenario()
        : ImageScenario(GifBundle(),
                        BytesOf(GifBuilder(300, 250, kColors).Image(Plain(300, 250, 1)).Bytes()))
    {
        NewDrag(&drag_);
    }
    ~DragScenario() override
    {
        DisposeHandle(picture_);
        DisposeDrag(drag_);
    }

private:
    static constexpr DragItemRef kItem = 7;

    void Use() override
    {
        unsigned char hasImage = 0;
        Tell("drag", bundle_.prepareDrag(Object(), drag_, kItem, &area_, &hasImage));
        Tell("image", hasImage != 0 ? "told" : "none");
        UInt32 type = 0;
        Tell("data", bundle_.getObjectData(Object(), &type, &picture_));
        Tell("cleanup", bundle_.cleanupDrag(Object()));
        Tell("picture", PictureText());
    }

    // A picture for which memory ran out has an empty frame.
    std::string PictureText() const
    {
        if (picture_ == nullptr) {
            return "none";
        }
        const Picture& picture = **reinterpret_cast<PicHandle>(picture_);
        const bool isEmpty = std::all_of(std::begin(picture.picFrame), std::end(picture.picFrame),
                                         [](UInt8 byte) { return byte == 0; });
        return isEmpty ? "empty" : "whole";
    }

    DragRef drag_ = nullptr;
    Handle picture_ = nullptr;
};

class TypeCheckScenario : public Scenario
{
public:
    TypeCheckScenario() : png_(test::WritePng({}))
    {
        gDataHandlerComponent = nullptr; // every run registers its own
    }

    void Run() override
    {
        Tell("type", VornPluginCanHandleData(MovieBundle(), "", 0, "video/mpeg", "x"));
        Tell("extension", VornPluginCanHandleData(MovieBundle(), "", 0, "x/y", "a.mpg"));
        Tell("other", VornPluginCanHandleData(MovieBundle(), "", 0, "x/y", "a.txt"));
        Tell("gif", GifBundle().CanHandle({}, "image/gif", ""));
        Tell("png", PngBundle().CanHandle(png_, "x/y", "a.txt"));
    }

private:
    static CFBundleRef MovieBundle()
    {
        static const CFBundleRef bundle = test::OpenBundle(VORN_PLUGINS "/VornMovie.plugin");
        return bundle;
    }

    const std::vector<UInt8> png_;
};

} // namespace

std::unique_ptr<Scenario> StillImage()
{
    return std::make_unique<StillScenario>();
}

std::unique_ptr<Scenario> AnimatedImage()
{
    return std::make_unique<AnimatedScenario>();
}

std::unique_ptr<Scenario> DamagedImage()
{
    return std::make_unique<DamagedScenario>();
}

std::unique_ptr<Scenario> DraggedImage()
{
    return std::make_unique<DragScenario>();
}

std::unique_ptr<Scenario> TypeCheck()
{
    return std::make_unique<TypeCheckScenario>();
}

} // namespace sweep
