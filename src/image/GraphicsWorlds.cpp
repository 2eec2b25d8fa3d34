// SPDX-License-Identifier: MIT
#include "src/image/GraphicsWorlds.h"

#include "toolbox/Errors.h"

namespace
{

constexpr OSErr kPixelsCannotBeLocked = -1;

void EraseToWhite(GWorldPtr world)
{
    SetGWorld(world, nullptr);
    BackColor(whiteColor);
    Rect bounds{};
    GetPortBounds(world, &bounds);
    EraseRect(&bounds);
}

} // namespace

OSErr BlankGWorld(GWorldPtr world)
{
    CGrafPtr savedPort = nullptr;
    GDHandle savedDevice = nullptr;
    GetGWorld(&savedPort, &savedDevice);
    const PixMapHandle pixels = GetGWorldPixMap(world);
    const GWorldFlags savedState = GetPixelsState(pixels);
    const bool isLocked = LockPixels(pixels) != 0;
    if (isLocked)
        EraseToWhite(world);
    SetPixelsState(pixels, savedState);
    SetGWorld(savedPort, savedDevice);
    return isLocked ? OSErr{noErr} : kPixelsCannotBeLocked;
}

OSErr MakeGWorld(const Rect* bounds, SInt16 depth, CTabHandle colors, Boolean useTemporaryMemory,
                 GWorldPtr* result)
{
    GWorldPtr world = nullptr;
    const GWorldFlags flags = useTemporaryMemory ? GWorldFlags{useTempMem} : 0;
    const OSErr made = NewGWorld(&world, depth, bounds, colors, nullptr, flags);
    if (made != noErr)
        return made;
    // A world that could not be made white is not disposed of: the order is kept as documented.
    const OSErr blanked = BlankGWorld(world);
    if (blanked == noErr)
        *result = world;
    return blanked;
}
