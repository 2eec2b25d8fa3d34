// SPDX-License-Identifier: MIT
#include "src/plugin/VornPlugin.h"

#include "src/datasource/VornDataSource.h"
#include "src/util/Strings.h"
#include "toolbox/Errors.h"

VornPlugin::VornPlugin(CFBundleRef ownBundle) : bundle(ownBundle)
{
    CFRetain(bundle);
}

VornPlugin::~VornPlugin()
{
    delete dataSource;
    CFRelease(bundle);
}

Boolean VornPlugin::CanHandleData(const char*, const char*)
{
    return false;
}

void VornPlugin::Decode()
{
    if (!dataSource)
        throw OSErr{paramErr};
    GetCurrentThread(&decodingThread);
    dataSource->PrepareDataSource();
    try {
        Render();
    } catch (OSErr err) {
        renderingError = err;
    } catch (...) {
        renderingError = kVornErrRenderFailed;
    }
    FinishRendering();
    DisposeDecodingData();
    decodingThread = kNoThreadID;
    dataSource->TerminateDataSource();
    // A conversion that answers differently the second time is wanted: the code thrown may differ
    // from the one that the host was told.
    if (finalError != noErr)
        throw ConvertError(finalError);
}

void VornPlugin::Idle(const Rect&, unsigned char) {}

Boolean VornPlugin::HandleClick(const Rect&, const EventRecord&)
{
    return false;
}

void VornPlugin::PrepareDrag(DragRef, UInt32, const Rect&, unsigned char& outFlag)
{
    outFlag = false;
}

void VornPlugin::GetData(UInt32& dataType, Handle* outData)
{
    dataType = FOUR_CHARS('?', '?', '?', '?');
    if (outData)
        *outData = nullptr;
}

void VornPlugin::GetDisplayRect(const Rect& bounds, Rect& outRect)
{
    outRect = bounds;
}

UInt32 VornPlugin::GetDisplayFlags()
{
    return displayFlags;
}

void VornPlugin::SetDisplayFlags(UInt32 flags)
{
    displayFlags = flags;
}

Boolean VornPlugin::GetHaveDimensions()
{
    return haveDimensions;
}

OSErr VornPlugin::GetRenderingError()
{
    return renderingFinished ? finalError : OSErr{kVornErrStillRendering};
}

void VornPlugin::GetComment(char* buffer, UInt32 bufferSize)
{
    StrCopySafe(buffer, Comment(), bufferSize);
}

void VornPlugin::SetDisplayRect(const Rect& rect)
{
    displayRect = rect;
    haveDimensions = true;
    CallHostGotRect(rect);
}

void VornPlugin::SetComment(const char* text)
{
    // Through all three texts: a terminator behind the comment belongs to the MIME type.
    StrCopySafe(reinterpret_cast<char*>(&texts), text, kTextSize);
}

SInt32 VornPlugin::GetEstimatedDataSize()
{
    if (estimatedDataSize == -1)
        estimatedDataSize = CallHostGetEstimatedDataSize();
    return estimatedDataSize;
}

void VornPlugin::Initialize(OSType type, OSType creatorCode, const char* name,
                            const char* mimeTypeText)
{
    fileType = type;
    creator = creatorCode;
    StrCopySafe(texts.fileName, name, kTextSize - 1);
    StrCopySafe(texts.mimeType, mimeTypeText, kTextSize - 1);
}

OSErr VornPlugin::ConvertError(OSErr err)
{
    switch (err) {
    case kDataOutOfRangeErr:
    case kVornErrRenderFailed:
    case kDataNotAvailableErr:
    case kVornErrStillRendering:
    case kVornErrReserved1210:
        return err;
    default:
        return err > 0 ? OSErr{kVornErrRenderFailed} : err;
    }
}

void VornPlugin::FinishRendering()
{
    renderingFinished = true;
    finalError = ConvertError(renderingError);
    CallHostRenderingDone(finalError);
}

void VornPlugin::DisposeDecodingData() {}

void VornPlugin::CallHostGotRect(const Rect& rect)
{
    CallPluginHostGotRect(this, &rect);
}

void VornPlugin::CallHostRenderingDone(OSErr err)
{
    CallPluginHostRenderingDone(this, err);
}

void VornPlugin::CallHostDecodedChunk(SInt16 first, SInt16 end)
{
    CallPluginHostDecodedChunk(this, first, end);
}

SInt32 VornPlugin::CallHostGetEstimatedDataSize()
{
    SInt32 bytes = -1; // a host that writes nothing has no idea
    CallPluginHostGetEstimatedObjectBytes(this, &bytes);
    return bytes;
}
