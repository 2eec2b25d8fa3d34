// SPDX-License-Identifier: MIT
#include "decoders/common/StillFrame.h"

#include "decoders/common/Palette.h"

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
    return Palette().Release();
}

CTabHandle StillFrame::NewGrayRamp()
{
    Palette palette;
    for (int i = 0; i < 256; ++i) {
        const auto gray = static_cast<UInt8>(i);
        palette.Set(i, Palette::ColorOf(gray, gray, gray));
    }
    return palette.Release();
}
