// SPDX-License-Identifier: MIT
//
// VornImagePlugin as something to drag out and to hand out.
#include "src/image/GWorldSwitch.h"
#include "src/image/GraphicsWorlds.h"
#include "src/image/VornImagePlugin.h"
#include "toolbox/Errors.h"

namespace
{

constexpr OSType kPictureType = FOUR_CHARS('P', 'I', 'C', 'T');
constexpr SInt64 kLargestFullSizeArea = 60000; // pixels; larger frames are shown shrunk
constexpr Rect kShrunkBox = {0, 0, 120, 200};
constexpr UInt32 kShrinking =
    kVornDisplayScale | kVornDisplayKeepAspect | kVornDisplayCenterH | kVornDisplayCenterV;

bool IsLarge(const Rect& bounds)
{
    return SInt64{bounds.right - bounds.left} * (bounds.bottom - bounds.top) > kLargestFullSizeArea;
}

} // namespace

void VornImagePlugin::PrepareDrag(DragRef drag, UInt32 itemRef, const Rect& area,
                                  unsigned char& outFlag)
{
    outFlag = 0;
    if (const OSErr err = AddDragItemFlavor(drag, itemRef, kPictureType, nullptr, 0, 0))
        throw err;
    GWorldPtr image = GetFrameGWorld(curFrame);
    if (!image)
        return;
    Rect bounds;
    GetFrameBounds(curFrame, bounds);
    Rect placed = bounds;
    CenterRect(area, placed);
    Point offset = {placed.top, placed.left};
    LocalToGlobal(&offset);
    if (IsLarge(bounds)) {
        image = MakeDragImage(bounds, offset);
        if (!image)
            return;
    }
    SetDragImage(drag, GetGWorldPixMap(image), nullptr, offset,
                 kDragRegionAndImage | kDragDarkTranslucency);
    outFlag = 1;
}

// The image of a large frame, null if it cannot be made; moves `offset` to where it belongs.
GWorldPtr VornImagePlugin::MakeDragImage(const Rect& bounds, Point& offset)
{
    Rect box = kShrunkBox;
    CenterRect(bounds, box);
    Rect fitted;
    ScaleRectWithFlags(kShrinking, bounds, box, fitted);
    offset.h = static_cast<SInt16>(offset.h + fitted.left);
    offset.v = static_cast<SInt16>(offset.v + fitted.top);
    OffsetRect(&fitted, static_cast<SInt16>(-fitted.left), static_cast<SInt16>(-fitted.top));
    if (MakeGWorld(&fitted, 0, nullptr, true, &dragGWorld) != noErr)
        return nullptr;
    const GWorldSwitch drawing(dragGWorld);
    DrawImage(fitted, true);
    return dragGWorld;
}

void VornImagePlugin::CleanupDrag()
{
    if (dragGWorld)
        DisposeGWorld(dragGWorld);
    dragGWorld = nullptr;
}

void VornImagePlugin::GetData(UInt32& dataType, Handle* outData)
{
    dataType = kPictureType;
    if (!outData || curFrame < 0)
        return;
    const TFrame* frame = frames[curFrame];
    if (!frame)
        return;
    PicHandle picture = nullptr;
    frame->GetFramePictHandle(&picture);
    *outData = reinterpret_cast<Handle>(picture);
}
