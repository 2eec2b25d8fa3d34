// SPDX-License-Identifier: MIT
//
// What a host calls: argument forwarding, the exception barrier and the wiring of data sources.
#include "src/datasource/VornPluginDataSource.h"
#include "src/datasource/VornPointerDataSource.h"
#include "src/plugin/ErrorBarrier.h"
#include "src/plugin/MakeNewPlugin.h"
#include "src/plugin/VornPlugin.h"
#include "toolbox/files/Resources.h"

namespace
{

[[maybe_unused]] SInt16 gPluginResForkRefNum = 0;

// Not exported, and nothing in the bundle calls them.
[[maybe_unused]] OSErr VornPluginInitialize()
{
    gPluginResForkRefNum = CurResFile();
    return noErr;
}

[[maybe_unused]] void VornPluginTerminate() {}

} // namespace

Boolean VornPluginCanHandleData(CFBundleRef bundle, const void* bytes, SInt32 length,
                                const char* mimeType, const char* fileName)
{
    Boolean result = false;
    // An object that throws is not destroyed: nothing is known of the state it is in.
    CatchErrors([&] {
        VornPlugin* object = MakeNewPlugin(bundle);
        if (!object)
            return;
        object->dataSource = new VornPointerDataSource(const_cast<void*>(bytes), length);
        result = object->CanHandleData(mimeType, fileName);
        delete object;
    });
    return result;
}

OSErr VornPluginMakeNewObject(CFBundleRef bundle, const VornPluginHostCalls* hostCalls,
                              OSType fileType, OSType creator, const char* fileName,
                              const char* mimeType, VornPlugin** outObject)
{
    *outObject = nullptr;
    if (!SetupPluginHostCalls(hostCalls))
        return paramErr;
    // An object that throws is not destroyed: nothing is known of the state it is in.
    return CatchErrors([&] {
        VornPlugin* object = MakeNewPlugin(bundle);
        if (!object)
            throw OSErr{paramErr};
        object->dataSource = new VornPluginDataSource(*object);
        object->Initialize(fileType, creator, fileName, mimeType);
        *outObject = object;
    });
}

void VornPluginFreeObject(VornPlugin* object)
{
    delete object;
}

OSErr VornPluginDecodeObject(VornPlugin* object)
{
    return CatchErrors([&] { object->Decode(); });
}

OSErr VornPluginDisplayObject(VornPlugin* object, const Rect* displayRect, unsigned char flag)
{
    return CatchErrors([&] { object->Display(*displayRect, flag); });
}

OSErr VornPluginIdleObject(VornPlugin* object, const Rect* displayRect, unsigned char flag)
{
    return CatchErrors([&] { object->Idle(*displayRect, flag); });
}

Boolean VornPluginHandleObjectClick(VornPlugin* object, const Rect* displayRect,
                                    const EventRecord* event)
{
    Boolean handled = false;
    CatchErrors([&] { handled = object->HandleClick(*displayRect, *event); });
    return handled;
}

OSErr VornPluginPrepareDrag(VornPlugin* object, DragRef drag, UInt32 itemRef,
                            const Rect* displayRect, unsigned char* outFlag)
{
    return CatchErrors([&] {
        unsigned char flag = 0;
        object->PrepareDrag(drag, itemRef, *displayRect, flag);
        if (outFlag)
            *outFlag = flag;
    });
}

OSErr VornPluginCleanupDrag(VornPlugin* object)
{
    return CatchErrors([&] { object->CleanupDrag(); });
}

OSErr VornPluginGetObjectData(VornPlugin* object, UInt32* dataType, Handle* outData)
{
    return CatchErrors([&] { object->GetData(*dataType, outData); });
}

void VornPluginGetObjectDisplayRect(VornPlugin* object, const Rect* bounds, Rect* outRect)
{
    CatchErrors([&] { object->GetDisplayRect(*bounds, *outRect); });
}

UInt32 VornPluginGetObjectDisplayFlags(VornPlugin* object)
{
    UInt32 flags = 0;
    CatchErrors([&] { flags = object->GetDisplayFlags(); });
    return flags;
}

void VornPluginSetObjectDisplayFlags(VornPlugin* object, UInt32 flags)
{
    CatchErrors([&] { object->SetDisplayFlags(flags); });
}

Boolean VornPluginHaveObjectDimensions(VornPlugin* object)
{
    Boolean have = false;
    CatchErrors([&] { have = object->GetHaveDimensions(); });
    return have;
}

void VornPluginGetObjectRenderingError(VornPlugin* object, OSErr* outError)
{
    CatchErrors([&] { *outError = object->GetRenderingError(); });
}

void VornPluginGetObjectComment(VornPlugin* object, char* buffer, UInt32 bufferSize)
{
    CatchErrors([&] { object->GetComment(buffer, bufferSize); });
}
