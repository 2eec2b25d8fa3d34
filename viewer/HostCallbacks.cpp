// SPDX-License-Identifier: MIT
#include "viewer/HostCallbacks.h"

#include "toolbox/Errors.h"
#include "viewer/EmbeddedObject.h"

#include <unordered_map>

namespace viewer
{
namespace
{

std::unordered_map<VornPlugin*, EmbeddedObject*> gObjects;

EmbeddedObject* Find(VornPlugin* plugin)
{
    const auto found = gObjects.find(plugin);
    return found == gObjects.end() ? nullptr : found->second;
}

OSErr GotRect(VornPlugin* plugin, const Rect* displayRect)
{
    if (EmbeddedObject* object = Find(plugin)) {
        object->TakeDisplayRect(*displayRect);
    }
    return noErr;
}

OSErr RenderingDone(VornPlugin* plugin, OSErr finalError)
{
    if (EmbeddedObject* object = Find(plugin)) {
        object->TakeRenderingDone(finalError);
    }
    return noErr;
}

OSErr DecodedChunk(VornPlugin* plugin, SInt16 first, SInt16 end)
{
    if (EmbeddedObject* object = Find(plugin)) {
        object->TakeDecodedRows(first, end);
    }
    return noErr;
}

OSErr GetData(VornPlugin* plugin, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
              unsigned char* dataComplete)
{
    if (EmbeddedObject* object = Find(plugin)) {
        return object->Bytes().GetData(buffer, offset, count, dataSize, dataComplete);
    }
    *count = 0;
    *dataSize = 0;
    *dataComplete = 1;
    return kDataNotAvailableErr;
}

OSErr GetEstimatedObjectBytes(VornPlugin* plugin, SInt32* outBytes)
{
    EmbeddedObject* object = Find(plugin);
    *outBytes = object == nullptr ? -1 : object->Bytes().EstimatedBytes();
    return noErr;
}

} // namespace

const VornPluginHostCalls& ViewerHostCalls()
{
    static const VornPluginHostCalls calls = {GotRect, RenderingDone, DecodedChunk, GetData,
                                              GetEstimatedObjectBytes};
    return calls;
}

void RememberObject(VornPlugin* plugin, EmbeddedObject& object)
{
    gObjects[plugin] = &object;
}

void ForgetObject(VornPlugin* plugin)
{
    gObjects.erase(plugin);
}

} // namespace viewer
