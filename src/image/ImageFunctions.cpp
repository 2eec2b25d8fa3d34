// SPDX-License-Identifier: MIT
#include "src/image/ImageFunctions.h"

#include "src/image/VornImagePlugin.h"

namespace
{

// Callers pass images only; of anything else the operations would be called on null.
VornImagePlugin* Image(VornPlugin* object)
{
    return dynamic_cast<VornImagePlugin*>(object);
}

} // namespace

void SetImageColorTable(VornPlugin* image, CTabHandle colors)
{
    Image(image)->SetColorTable(colors);
}

void SetImageBackgroundColor(VornPlugin* image, const RGBColor* color)
{
    Image(image)->SetBackgroundColor(*color);
}

void SetImageLooping(VornPlugin* image, unsigned char loop, SInt16 loopCount)
{
    Image(image)->SetLooping(loop, loopCount);
}

Ptr GetImageTempBuffer(VornPlugin* image)
{
    return Image(image)->GetTempBuffer();
}

void SetImageTempBuffer(VornPlugin* image, Ptr buffer)
{
    Image(image)->SetTempBuffer(buffer);
}

void InvalImageRow(VornPlugin* image, SInt16 row)
{
    Image(image)->InvalidateRow(row);
}

SInt16 GetImageCurFrame(VornPlugin* image)
{
    return Image(image)->curFrame;
}

void SetImageCurFrame(VornPlugin* image, SInt16 index)
{
    Image(image)->curFrame = index;
}

unsigned char GetImageUsesTempMem(VornPlugin* image)
{
    return Image(image)->usesTempMem;
}

OSErr AddNewFrame(VornPlugin* image, const Rect* bounds, UInt16 depth, CTabHandle colors,
                  UInt16 maskDepth, SInt16* index)
{
    return Image(image)->AddNewFrame(*bounds, depth, colors, maskDepth, *index);
}

GWorldPtr GetFrameGWorld(VornPlugin* image, SInt16 index)
{
    return Image(image)->GetFrameGWorld(index);
}

GWorldPtr GetFrameMaskGWorld(VornPlugin* image, SInt16 index)
{
    return Image(image)->GetFrameMaskGWorld(index);
}

void SetFrameGWorld(VornPlugin* image, SInt16 index, GWorldPtr world)
{
    Image(image)->SetFrameGWorld(index, world);
}

void SetFrameMaskGWorld(VornPlugin* image, SInt16 index, GWorldPtr world)
{
    Image(image)->SetFrameMaskGWorld(index, world);
}

void SetFrameDisplayPos(VornPlugin* image, SInt16 index, Point position)
{
    Image(image)->SetFrameDisplayPos(index, position);
}

void SetFrameTransparency(VornPlugin* image, SInt16 index, unsigned char transparent,
                          SInt16 transparentIndex)
{
    Image(image)->SetFrameTransparency(index, transparent, transparentIndex);
}

void SetFrameDelay(VornPlugin* image, SInt16 index, UInt16 hundredths)
{
    Image(image)->SetFrameDelay(index, hundredths);
}

void SetFrameUserInput(VornPlugin* image, SInt16 index, unsigned char userInput)
{
    Image(image)->SetFrameUserInput(index, userInput);
}

void SetFrameDisposalMethod(VornPlugin* image, SInt16 index, TDisposalMethod method)
{
    Image(image)->SetFrameDisposalMethod(index, method);
}
