// SPDX-License-Identifier: MIT
#include "decoders/common/StillFrame.h"

#include "toolbox/memory/Memory.h"

namespace
{

constexpr int kColors = 256;

} // namespace

void StillFrame::Add(SInt16 width, SInt16 height, UInt16 depth, CTabHandle colors, UInt16 maskDepth)
{
    if (colors != nullptr)
        SetImageColorTable(&image_, colors);
    const Rect bounds = {0, 0, height, width};
    SInt16 index = 0;
    const OSErr added = AddNewFrame(&image_, &bounds, depth, colors, maskDepth, &index);
    if (added != noErr)
        throw added;
    pixels_.emplace(GetFrameGWorld(&image_, index));
    if (maskDepth != 0)
        mask_.emplace(GetFrameMaskGWorld(&image_, index));
    SetObjectDisplayRect(&image_, &bounds);
}

CTabHandle StillFrame::NewColors()
{
    constexpr Size kSize = offsetof(ColorTable, ctTable) + kColors * sizeof(ColorSpec);
    const auto colors = reinterpret_cast<CTabHandle>(NewHandleClear(kSize));
    if (colors == nullptr)
        throw OSErr{memFullErr};
    (*colors)->ctSeed = GetCTSeed();
    (*colors)->ctSize = kColors - 1;
    for (int i = 0; i < kColors; ++i)
        (*colors)->ctTable[i].value = static_cast<SInt16>(i);
    return colors;
}

CTabHandle StillFrame::NewGrayRamp()
{
    const CTabHandle colors = NewColors();
    for (int i = 0; i < kColors; ++i) {
        const auto gray = static_cast<UInt16>(i * 0x0101);
        (*colors)->ctTable[i].rgb = {gray, gray, gray};
    }
    return colors;
}
