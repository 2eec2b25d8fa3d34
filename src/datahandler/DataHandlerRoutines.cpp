// SPDX-License-Identifier: MIT
#include "src/datahandler/DataHandlerRoutines.h"

#include "src/datahandler/DataHandlerDispatch.h"
#include "src/datahandler/VornPluginDataHandlerComponent.h"
#include "src/plugin/ErrorBarrier.h"
#include "toolbox/Errors.h"

namespace datahandler
{
namespace
{

constexpr ComponentDescription kDelegateDescription = {
    .componentType = FOUR_CHARS('d', 'h', 'l', 'r'),
    .componentSubType = FOUR_CHARS('a', 'l', 'i', 's'),
    .componentManufacturer = FOUR_CHARS('a', 'p', 'p', 'l'),
    .componentFlags = kDataHCanRead,
    .componentFlagsMask = kDataHCanRead,
};

VornPluginDataHandlerComponent& Instance(void* storage)
{
    return *static_cast<VornPluginDataHandlerComponent*>(storage);
}

template <typename Pointer>
Pointer As(ComponentSlot slot)
{
    return reinterpret_cast<Pointer>(slot);
}

SInt32 Long(ComponentSlot slot)
{
    return static_cast<SInt32>(slot);
}

} // namespace

ComponentInstance DelegateOf(void* storage)
{
    return storage != nullptr ? Instance(storage).delegate : nullptr;
}

ComponentResult Open(void*, ComponentSlot selfSlot)
{
    const Component component = FindNextComponent(nullptr, &kDelegateDescription);
    if (component == nullptr) {
        return paramErr;
    }
    ComponentInstance delegate = nullptr;
    const OSErr err = OpenAComponent(component, &delegate);
    if (err != noErr) {
        return err;
    }
    const auto self = As<ComponentInstance>(selfSlot);
    try {
        SetComponentInstanceStorage(self, new VornPluginDataHandlerComponent(self, delegate));
    } catch (...) {
        CloseComponent(delegate);
        return memFullErr;
    }
    CallComponentTarget(delegate, self);
    return noErr;
}

ComponentResult Close(void* storage, ComponentSlot)
{
    delete static_cast<VornPluginDataHandlerComponent*>(storage);
    return noErr;
}

ComponentResult CanDo(void* storage, ComponentSlot selectorSlot)
{
    const SInt16 selector = static_cast<SInt16>(selectorSlot);
    if (FindRoutine(selector) != nullptr) {
        return 1;
    }
    const ComponentInstance delegate = DelegateOf(storage);
    return delegate != nullptr ? CallComponentCanDo(delegate, selector) : 0;
}

ComponentResult Version(void* storage)
{
    return CallComponentVersion(DelegateOf(storage));
}

ComponentResult GetData(void* storage, ComponentSlot handle, ComponentSlot handleOffset,
                        ComponentSlot offset, ComponentSlot size)
{
    return CatchErrors([&] {
        Instance(storage).GetData(As<Handle>(handle), Long(handleOffset), Long(offset), Long(size));
    });
}

ComponentResult Task(void* storage)
{
    return CatchErrors([&] { Instance(storage).Task(); });
}

ComponentResult ScheduleData(void* storage, ComponentSlot placement, ComponentSlot fileOffset,
                             ComponentSlot dataSize, ComponentSlot refCon,
                             ComponentSlot scheduleRec, ComponentSlot completion)
{
    return CatchErrors([&] {
        Instance(storage).ScheduleData(As<char*>(placement), Long(fileOffset), Long(dataSize),
                                       refCon, As<DataHScheduleRecord*>(scheduleRec),
                                       As<DataHCompletionUPP>(completion));
    });
}

ComponentResult ScheduleData64(void* storage, ComponentSlot placement, ComponentSlot fileOffset,
                               ComponentSlot dataSize, ComponentSlot refCon,
                               ComponentSlot scheduleRec, ComponentSlot completion)
{
    const auto offset = static_cast<SInt32>(As<const wide*>(fileOffset)->lo);
    return ScheduleData(storage, placement, offset, dataSize, refCon, scheduleRec, completion);
}

ComponentResult FinishData(void* storage, ComponentSlot placement, ComponentSlot cancel)
{
    return CatchErrors([&] {
        Instance(storage).FinishData(As<char*>(placement), static_cast<unsigned char>(cancel));
    });
}

ComponentResult FlushCache(void* storage)
{
    Instance(storage).FlushCache();
    return noErr;
}

ComponentResult GetFileSize(void* storage, ComponentSlot size)
{
    return CatchErrors([&] { Instance(storage).GetFileSize(As<SInt32*>(size)); });
}

ComponentResult GetFileSize64(void* storage, ComponentSlot size)
{
    return CatchErrors([&] { Instance(storage).GetFileSize64(As<wide*>(size)); });
}

ComponentResult GetAvailableFileSize(void* storage, ComponentSlot size)
{
    return CatchErrors([&] { Instance(storage).GetAvailableFileSize(As<SInt32*>(size)); });
}

ComponentResult GetFileName(void* storage, ComponentSlot name)
{
    return CatchErrors([&] { Instance(storage).GetFileName(As<StringPtr>(name)); });
}

ComponentResult GetMIMEType(void* storage, ComponentSlot type)
{
    return CatchErrors([&] { Instance(storage).GetMIMEType(As<StringPtr>(type)); });
}

ComponentResult GetMacOSFileType(void* storage, ComponentSlot type)
{
    Instance(storage).GetMacOSFileType(As<OSType*>(type));
    return noErr;
}

ComponentResult GetInfoFlags(void* storage, ComponentSlot flags)
{
    Instance(storage).GetInfoFlags(As<UInt32*>(flags));
    return noErr;
}

ComponentResult ReadAsync(void* storage, ComponentSlot buffer, ComponentSlot dataSize,
                          ComponentSlot fileOffset, ComponentSlot completion, ComponentSlot refCon)
{
    return CatchErrors([&] {
        Instance(storage).ReadAsync(As<void*>(buffer), static_cast<UInt32>(dataSize),
                                    As<const wide*>(fileOffset), As<DataHCompletionUPP>(completion),
                                    refCon);
    });
}

ComponentResult PollRead(void* storage, ComponentSlot dataPtr, ComponentSlot dataSizeSoFar)
{
    return CatchErrors(
        [&] { Instance(storage).PollRead(As<void*>(dataPtr), As<UInt32*>(dataSizeSoFar)); });
}

} // namespace datahandler
