// SPDX-License-Identifier: MIT
#include "decoders/common/IndexedFrame.h"

#include "src/image/GraphicsWorlds.h"
#include "src/image/ImageFunctions.h"

#include <vector>

IndexedFrame::IndexedFrame(VornPlugin& image, SInt16 index, SInt16 transparent)
    : image_(image), index_(index), transparent_(transparent),
      pixels_(GetFrameGWorld(&image, index))
{
    if (const GWorldPtr mask = GetFrameMaskGWorld(&image, index))
        mask_.emplace(mask);
}

void IndexedFrame::WriteRow(Point start, SInt16 count, const UInt8* indices)
{
    PixelWriteState& state = pixels_.State();
    SetPixMapRowPixels(&state, &state.bounds, start, count, indices);
    if (mask_)
        SetMaskPixMapRowPixels(&mask_->State(), &state.bounds, start, count, transparent_, indices);
}

void IndexedFrame::AddMask()
{
    GWorldPtr mask = nullptr;
    const Rect& bounds = pixels_.State().bounds;
    if (MakeGWorld(&bounds, 1, nullptr, GetImageUsesTempMem(&image_), &mask) != noErr)
        return;
    SetFrameMaskGWorld(&image_, index_, mask);
    mask_.emplace(mask);
}

void IndexedFrame::ShowRow(SInt32 row)
{
    constexpr SInt16 kNone = -1;
    const Rect& bounds = pixels_.State().bounds;
    const std::vector<UInt8> indices(static_cast<size_t>(bounds.right)); // whichever
    SetMaskPixMapRowPixels(&mask_->State(), &bounds, {static_cast<SInt16>(row), 0}, bounds.right,
                           kNone, indices.data());
}
