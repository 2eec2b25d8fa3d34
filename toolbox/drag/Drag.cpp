// SPDX-License-Identifier: MIT
#include "toolbox/drag/Drag.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/quickdraw/QDOffscreen.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

using toolbox::Announce;

namespace
{

struct PtrDeleter {
    void operator()(char* block) const { DisposePtr(block); }
};

struct Flavor {
    FlavorType type = 0;
    FlavorFlags flags = 0;
    std::unique_ptr<char, PtrDeleter> data; // null: promised
    Size size = 0;
};

struct Item {
    DragItemRef reference = 0;
    std::vector<Flavor> flavors;
};

struct GWorldDeleter {
    void operator()(GWorldPtr world) const { DisposeGWorld(world); }
};
using OwnedGWorld = std::unique_ptr<CGrafPort, GWorldDeleter>;

} // namespace

struct OpaqueDragRef {
    std::vector<Item> items;
    OwnedGWorld image;
    Point imageOffset{};
    DragImageFlags imageFlags = 0;
};

namespace
{

Item* FindItem(OpaqueDragRef& drag, DragItemRef reference)
{
    const auto found = std::find_if(drag.items.begin(), drag.items.end(),
                                    [&](const Item& item) { return item.reference == reference; });
    return found == drag.items.end() ? nullptr : &*found;
}

Flavor* FindFlavor(Item& item, FlavorType type)
{
    const auto found = std::find_if(item.flavors.begin(), item.flavors.end(),
                                    [&](const Flavor& flavor) { return flavor.type == type; });
    return found == item.flavors.end() ? nullptr : &*found;
}

// What an operation that reads begins with: the announcement, and the item of the drag.
OSErr BeginOnItem(const char* operation, DragRef drag, DragItemRef reference, Item** item)
{
    if (const OSErr err = Announce(operation); err != noErr) {
        return err;
    }
    if (drag == nullptr) {
        return paramErr;
    }
    *item = FindItem(*drag, reference);
    return *item == nullptr ? badDragItemErr : noErr;
}

OSErr BeginOnFlavor(const char* operation, DragRef drag, DragItemRef reference, FlavorType type,
                    Flavor** flavor)
{
    Item* item = nullptr;
    if (const OSErr err = BeginOnItem(operation, drag, reference, &item); err != noErr) {
        return err;
    }
    *flavor = FindFlavor(*item, type);
    return *flavor == nullptr ? badDragFlavorErr : noErr;
}

OSErr BeginOnDrag(const char* operation, DragRef drag)
{
    const OSErr err = Announce(operation);
    return err == noErr && drag == nullptr ? OSErr{paramErr} : err;
}

OSErr FillFlavor(Flavor& flavor, const void* data, Size size)
{
    if (data == nullptr) {
        return noErr;
    }
    flavor.data.reset(NewPtr(size));
    if (flavor.data == nullptr) {
        return MemError();
    }
    std::memcpy(flavor.data.get(), data, static_cast<size_t>(size));
    flavor.size = size;
    return noErr;
}

// Throws std::bad_alloc, and then the drag is as it was.
void AddFlavor(OpaqueDragRef& drag, DragItemRef reference, Flavor flavor)
{
    if (Item* const item = FindItem(drag, reference)) {
        item->flavors.push_back(std::move(flavor));
        return;
    }
    Item item{reference, {}};
    item.flavors.push_back(std::move(flavor));
    drag.items.push_back(std::move(item));
}

const BitMap* AsBitMap(PixMapHandle pixels)
{
    return reinterpret_cast<const BitMap*>(*pixels);
}

} // namespace

OSErr AddDragItemFlavor(DragRef drag, DragItemRef item, FlavorType type, const void* data,
                        Size size, FlavorFlags flags)
{
    if (const OSErr err = BeginOnDrag("AddDragItemFlavor", drag); err != noErr) {
        return err;
    }
    if (size < 0) {
        return paramErr;
    }
    Item* const existing = FindItem(*drag, item);
    if (existing != nullptr && FindFlavor(*existing, type) != nullptr) {
        return duplicateFlavorErr;
    }
    Flavor flavor{type, flags, nullptr, 0};
    if (const OSErr err = FillFlavor(flavor, data, size); err != noErr) {
        return err;
    }
    try {
        AddFlavor(*drag, item, std::move(flavor));
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

OSErr SetDragImage(DragRef drag, PixMapHandle pixels, RgnHandle region, Point offset,
                   DragImageFlags flags)
{
    if (const OSErr err = BeginOnDrag("SetDragImage", drag); err != noErr) {
        return err;
    }
    if (pixels == nullptr) {
        return paramErr;
    }
    const Rect bounds = (*pixels)->bounds;
    GWorldPtr world = nullptr;
    if (const OSErr err = NewGWorld(&world, (*pixels)->pixelSize, &bounds, (*pixels)->pmTable,
                                    nullptr, useTempMem);
        err != noErr) {
        return err;
    }
    CopyBits(AsBitMap(pixels), AsBitMap(GetGWorldPixMap(world)), &bounds, &bounds, srcCopy, region);
    drag->image.reset(world);
    drag->imageOffset = offset;
    drag->imageFlags = flags;
    return noErr;
}

OSErr NewDrag(DragRef* drag)
{
    *drag = nullptr;
    if (const OSErr err = Announce("NewDrag"); err != noErr) {
        return err;
    }
    *drag = new (std::nothrow) OpaqueDragRef;
    if (*drag == nullptr) {
        return memFullErr;
    }
    toolbox::CountInLedger(kLiveDrags, 1);
    return noErr;
}

OSErr DisposeDrag(DragRef drag)
{
    const OSErr err = Announce("DisposeDrag");
    if (err != noErr || drag == nullptr) {
        return err;
    }
    delete drag;
    toolbox::CountInLedger(kLiveDrags, -1);
    return noErr;
}

OSErr CountDragItems(DragRef drag, UInt16* count)
{
    const OSErr err = BeginOnDrag("CountDragItems", drag);
    if (err == noErr) {
        *count = static_cast<UInt16>(drag->items.size());
    }
    return err;
}

OSErr GetDragItemReferenceNumber(DragRef drag, UInt16 index, DragItemRef* item)
{
    if (const OSErr err = BeginOnDrag("GetDragItemReferenceNumber", drag); err != noErr) {
        return err;
    }
    if (index < 1 || index > drag->items.size()) {
        return badDragItemErr;
    }
    *item = drag->items[index - 1U].reference;
    return noErr;
}

OSErr CountDragItemFlavors(DragRef drag, DragItemRef item, UInt16* count)
{
    Item* found = nullptr;
    const OSErr err = BeginOnItem("CountDragItemFlavors", drag, item, &found);
    if (err == noErr) {
        *count = static_cast<UInt16>(found->flavors.size());
    }
    return err;
}

OSErr GetFlavorType(DragRef drag, DragItemRef item, UInt16 index, FlavorType* type)
{
    Item* found = nullptr;
    if (const OSErr err = BeginOnItem("GetFlavorType", drag, item, &found); err != noErr) {
        return err;
    }
    if (index < 1 || index > found->flavors.size()) {
        return badDragFlavorErr;
    }
    *type = found->flavors[index - 1U].type;
    return noErr;
}

OSErr GetFlavorFlags(DragRef drag, DragItemRef item, FlavorType type, FlavorFlags* flags)
{
    Flavor* flavor = nullptr;
    const OSErr err = BeginOnFlavor("GetFlavorFlags", drag, item, type, &flavor);
    if (err == noErr) {
        *flags = flavor->flags;
    }
    return err;
}

OSErr GetFlavorDataSize(DragRef drag, DragItemRef item, FlavorType type, Size* size)
{
    Flavor* flavor = nullptr;
    const OSErr err = BeginOnFlavor("GetFlavorDataSize", drag, item, type, &flavor);
    if (err == noErr) {
        *size = flavor->size;
    }
    return err;
}

OSErr GetFlavorData(DragRef drag, DragItemRef item, FlavorType type, void* data, Size* size,
                    UInt32 offset)
{
    Flavor* flavor = nullptr;
    if (const OSErr err = BeginOnFlavor("GetFlavorData", drag, item, type, &flavor); err != noErr) {
        return err;
    }
    if (*size < 0) {
        return paramErr;
    }
    if (flavor->data == nullptr) {
        return cantGetFlavorErr;
    }
    const UInt32 from = std::min(offset, static_cast<UInt32>(flavor->size));
    *size = std::min(*size, flavor->size - static_cast<Size>(from));
    std::memcpy(data, flavor->data.get() + from, static_cast<size_t>(*size));
    return noErr;
}

OSErr GetDragImage(DragRef drag, CGrafPtr* image, Point* offset, DragImageFlags* flags)
{
    const OSErr err = BeginOnDrag("GetDragImage", drag);
    if (err == noErr) {
        *image = drag->image.get();
        *offset = drag->imageOffset;
        *flags = drag->imageFlags;
    }
    return err;
}
