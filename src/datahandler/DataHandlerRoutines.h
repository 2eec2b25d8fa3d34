// SPDX-License-Identifier: MIT
//
// The selectors' routines, as the Component Manager calls them: the storage (a
// VornPluginDataHandlerComponent), then pointer-wide slots in the order of the published data
// handler interface. They narrow the slots and call the instance operation of the same name; what
// that throws becomes the result, an OSErr as it is and anything else as paramErr. GetInfoFlags,
// FlushCache and GetMacOSFileType need no such guard: what they call throws nothing, and they
// always return noErr. Open reports every failure to make the instance as memFullErr.
#pragma once

#include "toolbox/components/Components.h"

namespace datahandler
{

// The alias data handler's instance, to which goes what the component does not answer itself;
// null while there is no storage, that is before the component is open.
ComponentInstance DelegateOf(void* storage);

// Opens the delegate and makes the instance. paramErr without an alias data handler, what opening
// it failed with, memFullErr if there is no instance to be had, for whatever reason.
ComponentResult Open(void* storage, ComponentSlot self);
ComponentResult Close(void* storage, ComponentSlot self);
ComponentResult CanDo(void* storage, ComponentSlot selector);
ComponentResult Version(void* storage);

ComponentResult GetData(void* storage, ComponentSlot handle, ComponentSlot handleOffset,
                        ComponentSlot offset, ComponentSlot size);
ComponentResult Task(void* storage);
ComponentResult ScheduleData(void* storage, ComponentSlot placement, ComponentSlot fileOffset,
                             ComponentSlot dataSize, ComponentSlot refCon,
                             ComponentSlot scheduleRec, ComponentSlot completion);
ComponentResult ScheduleData64(void* storage, ComponentSlot placement, ComponentSlot fileOffset,
                               ComponentSlot dataSize, ComponentSlot refCon,
                               ComponentSlot scheduleRec, ComponentSlot completion);
ComponentResult FinishData(void* storage, ComponentSlot placement, ComponentSlot cancel);
ComponentResult FlushCache(void* storage);
ComponentResult GetFileSize(void* storage, ComponentSlot size);
ComponentResult GetFileSize64(void* storage, ComponentSlot size);
ComponentResult GetAvailableFileSize(void* storage, ComponentSlot size);
ComponentResult GetFileName(void* storage, ComponentSlot name);
ComponentResult GetMIMEType(void* storage, ComponentSlot type);
ComponentResult GetMacOSFileType(void* storage, ComponentSlot type);
ComponentResult GetInfoFlags(void* storage, ComponentSlot flags);
ComponentResult ReadAsync(void* storage, ComponentSlot buffer, ComponentSlot dataSize,
                          ComponentSlot fileOffset, ComponentSlot completion, ComponentSlot refCon);
ComponentResult PollRead(void* storage, ComponentSlot dataPtr, ComponentSlot dataSizeSoFar);

} // namespace datahandler
