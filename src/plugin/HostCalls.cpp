// SPDX-License-Identifier: MIT
#include "src/plugin/HostCalls.h"

#include "src/plugin/VornPlugin.h"

VornPluginHostCalls gHostCalls;

void TestUPPSignatures() {}

Boolean SetupPluginHostCalls(const VornPluginHostCalls* calls)
{
    gHostCalls = *calls;
    return gHostCalls.gotRect && gHostCalls.renderingDone && gHostCalls.decodedChunk &&
           gHostCalls.getData && gHostCalls.getEstimatedObjectBytes;
}

OSErr CallPluginHostGotRect(VornPlugin* object, const Rect* displayRect)
{
    return gHostCalls.gotRect(object, displayRect);
}

OSErr CallPluginHostRenderingDone(VornPlugin* object, OSErr finalError)
{
    return gHostCalls.renderingDone(object, finalError);
}

OSErr CallPluginHostDecodedChunk(VornPlugin* object, SInt16 first, SInt16 end)
{
    return gHostCalls.decodedChunk(object, first, end);
}

OSErr CallPluginHostGetData(VornPlugin* object, void* buffer, SInt32 offset, SInt32* count,
                            SInt32* dataSize, unsigned char* dataComplete)
{
    return gHostCalls.getData(object, buffer, offset, count, dataSize, dataComplete);
}

OSErr CallPluginHostGetEstimatedObjectBytes(VornPlugin* object, SInt32* outBytes)
{
    return gHostCalls.getEstimatedObjectBytes(object, outBytes);
}

void SetObjectDisplayRect(VornPlugin* object, const Rect* rect)
{
    object->SetDisplayRect(*rect);
}

void SetObjectComment(VornPlugin* object, const char* comment)
{
    object->SetComment(comment);
}

void ThrowWithError(const void*, OSErr err)
{
    throw err;
}
