// SPDX-License-Identifier: MIT
#include "src/image/VornImagePlugin.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>

VornImagePlugin::VornImagePlugin(CFBundleRef ownBundle) : VornPlugin(ownBundle) {}

VornImagePlugin::~VornImagePlugin()
{
    frames.Clear(true);
    if (compositeGWorld)
        DisposeGWorld(compositeGWorld);
    if (colorTable)
        DisposeHandle(reinterpret_cast<Handle>(colorTable));
    if (tempBuffer)
        DisposePtr(tempBuffer);
    if (dragGWorld)
        DisposeGWorld(dragGWorld);
}

void VornImagePlugin::SetColorTable(CTabHandle colors)
{
    if (colorTable && colorTable != colors)
        DisposeHandle(reinterpret_cast<Handle>(colorTable));
    colorTable = colors;
}

void VornImagePlugin::SetBackgroundColor(const RGBColor& color)
{
    backgroundColor = color;
    hasBackgroundColor = 1;
}

void VornImagePlugin::SetLooping(unsigned char loop, SInt16 count)
{
    looping = loop;
    loopCount = count;
}

Ptr VornImagePlugin::GetTempBuffer() const
{
    return tempBuffer;
}

void VornImagePlugin::SetTempBuffer(Ptr buffer)
{
    if (tempBuffer && tempBuffer != buffer)
        DisposePtr(tempBuffer);
    tempBuffer = buffer;
}

void VornImagePlugin::DisposeDecodingData()
{
    SetTempBuffer(nullptr);
}

OSErr VornImagePlugin::ConvertError(OSErr err)
{
    const bool hasFrames = frameCount != 0;
    switch (err) {
    case kDataOutOfRangeErr:
    case kVornErrStillRendering:
    case kVornErrReserved1210:
        return err;
    case kDataNotAvailableErr:
        return hasFrames ? OSErr{kDataNotAvailableErr} : OSErr{kVornErrImageNoData};
    default:
        if (err <= 0)
            return err;
        return hasFrames ? OSErr{kVornErrRenderFailed} : OSErr{kVornErrImageFailed};
    }
}

void VornImagePlugin::AddWhiteToColorTable(CTabHandle source, CTabHandle* result)
{
    constexpr SInt32 kEntries = 256;
    constexpr RGBColor kWhite = {0xFFFF, 0xFFFF, 0xFFFF};
    const SInt32 count = std::min((*source)->ctSize + 1, kEntries);
    const auto table = reinterpret_cast<CTabHandle>(NewHandleClear(
        static_cast<Size>(offsetof(ColorTable, ctTable) + kEntries * sizeof(ColorSpec))));
    if (!table)
        throw OSErr{memFullErr};
    (*table)->ctSeed = GetCTSeed();
    (*table)->ctFlags = 0;
    (*table)->ctSize = kEntries - 1;
    ColorSpec* entries = (*table)->ctTable;
    const ColorSpec* colors = (*source)->ctTable;
    // The two colours in front push the source's last two out, also where there is room for them.
    const bool makesRoom = count <= 252;
    const SInt32 shift = makesRoom ? 2 : 0;
    for (SInt32 index = shift; index < count; ++index)
        entries[index].rgb = colors[index - shift].rgb;
    if (makesRoom)
        entries[1].rgb = kWhite;
    const SInt32 valued = makesRoom ? kEntries : count;
    for (SInt32 index = 0; index < valued; ++index)
        entries[index].value = static_cast<SInt16>(index);
    *result = table;
}
