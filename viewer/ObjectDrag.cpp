// SPDX-License-Identifier: MIT
#include "viewer/ObjectDrag.h"

#include "toolbox/Errors.h"
#include "toolbox/drag/Drag.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/quickdraw/QDOffscreen.h"
#include "viewer/Console.h"
#include "viewer/OutputFile.h"
#include "viewer/PngWriter.h"

#include <array>
#include <stdexcept>

namespace viewer
{
namespace
{

constexpr DragItemRef kItem = 1;
constexpr FlavorType kPicture = FOUR_CHARS('P', 'I', 'C', 'T');
// What a file has in front of the picture itself.
constexpr size_t kPictureFileHeader = 512;

struct HandleDisposer {
    using pointer = Handle;
    void operator()(Handle handle) const { DisposeHandle(handle); }
};
using OwnedHandle = std::unique_ptr<Handle, HandleDisposer>;

struct WorldDisposer {
    using pointer = GWorldPtr;
    void operator()(GWorldPtr world) const { DisposeGWorld(world); }
};
using OwnedWorld = std::unique_ptr<GWorldPtr, WorldDisposer>;

const BitMap* MapOf(CGrafPtr port)
{
    return reinterpret_cast<const BitMap*>(*GetGWorldPixMap(port));
}

void Check(OSErr error, const char* what)
{
    if (error != noErr) {
        throw std::runtime_error(what + (": " + DescribeError(error)));
    }
}

// An object on its way, from the moment when it is picked up until it is let go.
class Drag
{
public:
    Drag(EmbeddedObject& object, CGrafPtr port) : object_(object)
    {
        SetPort(port); // the image's place is told in its coordinates
        if (NewDrag(&drag_) == noErr) {
            error_ = object_.Plugin().PrepareDrag(object_.Area(), drag_, kItem);
        }
    }
    ~Drag()
    {
        object_.Plugin().CleanUpDrag();
        DisposeDrag(drag_);
    }
    Drag(const Drag&) = delete;
    Drag& operator=(const Drag&) = delete;

    OSErr Error() const { return error_; }
    bool HasPicture() const
    {
        UInt16 count = 0;
        CountDragItemFlavors(drag_, kItem, &count); // none of an item that was not added
        for (UInt16 i = 1; i <= count; ++i) {
            FlavorType type = 0;
            if (GetFlavorType(drag_, kItem, i, &type) == noErr && type == kPicture) {
                return true;
            }
        }
        return false;
    }
    // Null if the object has none after all.
    OwnedHandle Picture() const
    {
        Size size = 0;
        Check(GetFlavorDataSize(drag_, kItem, kPicture, &size), "it gives no picture");
        return size == 0 ? PromisedPicture() : AddedPicture(size);
    }
    // Null if there is none.
    CGrafPtr Image() const
    {
        CGrafPtr image = nullptr;
        Point offset{};
        DragImageFlags flags = 0;
        Check(GetDragImage(drag_, &image, &offset, &flags), "it gives no drag image");
        return image;
    }

private:
    OwnedHandle PromisedPicture() const
    {
        OSType type = 0;
        Handle data = nullptr;
        Check(object_.Plugin().GetData(type, data), "it gives no picture");
        OwnedHandle picture(data);
        return type == kPicture ? std::move(picture) : nullptr;
    }
    OwnedHandle AddedPicture(Size size) const
    {
        OwnedHandle picture(NewHandle(size));
        Check(picture == nullptr ? MemError() : OSErr{noErr}, "its picture cannot be taken");
        HLock(picture.get());
        Check(GetFlavorData(drag_, kItem, kPicture, *picture.get(), &size, 0),
              "it gives no picture");
        return picture;
    }

    EmbeddedObject& object_;
    DragRef drag_ = nullptr;
    OSErr error_ = memFullErr;
};

void WritePicture(const OwnedHandle& picture, const std::string& path)
{
    constexpr std::array<char, kPictureFileHeader> kHeader{};
    OutputFile file(path, "the picture");
    file.Write(kHeader.data(), kHeader.size());
    HLock(picture.get());
    file.Write(*picture.get(), static_cast<size_t>(GetHandleSize(picture.get())));
    file.Commit();
}

// The image has any depth, and a PNG file here has 24 bits a pixel.
void WriteImage(CGrafPtr image, const std::string& path)
{
    Rect bounds{};
    GetPortBounds(image, &bounds);
    GWorldPtr world = nullptr;
    Check(NewGWorld(&world, 32, &bounds, nullptr, nullptr, 0), "its drag image cannot be taken");
    const OwnedWorld deep(world);
    CGrafPtr former = nullptr;
    GetPort(&former);
    SetPort(world);
    ForeColor(blackColor);
    BackColor(whiteColor);
    CopyBits(MapOf(image), MapOf(world), &bounds, &bounds, srcCopy, nullptr);
    SetPort(former);
    WritePng(world, path, "the drag image");
}

void Drop(const Drag& drag, const DragRequest& request)
{
    const OwnedHandle picture = drag.Picture();
    if (picture == nullptr) {
        throw std::runtime_error("it has no picture to give");
    }
    WritePicture(picture, request.path);
    if (request.imagePath.empty()) {
        return;
    }
    if (drag.Image() == nullptr) {
        throw std::runtime_error("it has no drag image");
    }
    WriteImage(drag.Image(), request.imagePath);
}

// False if the object cannot be dragged; `tells` decides whether the user learns why.
bool TryToDrag(EmbeddedObject& object, CGrafPtr port, const DragRequest& request, bool tells,
               bool& succeeded)
{
    const Drag drag(object, port);
    if (drag.Error() != noErr || !drag.HasPicture()) {
        if (tells) {
            Console::Tell(object.Name(),
                          "it cannot be dragged" + (drag.Error() == noErr
                                                        ? std::string()
                                                        : ": " + DescribeError(drag.Error())));
        }
        return false;
    }
    try {
        Drop(drag, request);
        succeeded = true;
    } catch (const OutputFailure& problem) {
        Console::Tell("", problem.what());
    } catch (const std::runtime_error& problem) {
        Console::Tell(object.Name(), problem.what());
    }
    return true;
}

} // namespace

bool DragOut(Page& page, const DragRequest& request)
{
    bool succeeded = false;
    if (request.object) {
        TryToDrag(*page.Objects().at(*request.object - 1), page.Port(), request, true, succeeded);
        return succeeded;
    }
    for (const auto& object : page.Objects()) {
        if (TryToDrag(*object, page.Port(), request, false, succeeded)) {
            return succeeded;
        }
    }
    Console::Tell("", "no object of the page can be dragged");
    return false;
}

} // namespace viewer
