// SPDX-License-Identifier: MIT
#pragma once

#include "src/movie/VornMovieLoadListener.h"
#include "src/util/CLinkedList.h"
#include "toolbox/components/Components.h"
#include "toolbox/quicktime/DataHandler.h"

class VornMoviePlugin;

// One instance of the plug-in's data handler: serves QuickTime the bytes that have arrived for the
// movie plug-in it is bound to, and keeps requests for later ones until they have. Everything it
// does not answer goes to the delegate.
//
// Operations throw OSErr; the selector routines turn that into their result. Requests are
// completed from wherever new bytes are told of, or from Task. A completion routine may call back:
// no queue is processed again meanwhile.
class VornPluginDataHandlerComponent : public VornMovieLoadListener
{
public:
    // Binds to the movie plug-in constructed last; throws paramErr if there is none. Owns
    // `delegate` once constructed.
    VornPluginDataHandlerComponent(ComponentInstance self, ComponentInstance delegate);
    // Drops what is queued, completing nothing.
    ~VornPluginDataHandlerComponent() override;
    VornPluginDataHandlerComponent(const VornPluginDataHandlerComponent&) = delete;
    VornPluginDataHandlerComponent& operator=(const VornPluginDataHandlerComponent&) = delete;

    void LoadComplete(SInt32 totalBytes) override;
    void LoadProgress(SInt32 bytesSoFar) override;
    // From now on reads copy nothing and succeed, queries answer from what is known here.
    void NotifyListenerOfPluginDeath() override;

    // Reads `size` bytes of the movie at `offset` into the handle at `handleOffset`, growing it if
    // need be. Waits for bytes that have not arrived.
    void GetData(Handle handle, SInt32 handleOffset, SInt32 offset, SInt32 size);
    // The length once it is known, before that what the host expects.
    SInt32 GetEstimatedFileSize();
    void GetFileSize(SInt32* size);
    void GetFileSize64(wide* size);
    void GetAvailableFileSize(SInt32* size);
    void GetInfoFlags(UInt32* flags);
    // Pascal strings of at most 255 characters, empty without a movie plug-in.
    void GetMIMEType(StringPtr type);
    void GetFileName(StringPtr name);
    // Leaves *type alone without a movie plug-in.
    void GetMacOSFileType(OSType* type);
    // Nothing is cached.
    void FlushCache() {}

    // Reads now, waiting if need be, when the bytes are there or `scheduleRec` is null; else keeps
    // the request. A read's error goes to the completion routine; without one it is dropped.
    // Throws eofErr for bytes that will never come. Without a completion routine bytes that are
    // not there throw SInt32.
    void ScheduleData(char* placement, SInt32 fileOffset, SInt32 dataSize, RefCon refCon,
                      const DataHScheduleRecord* scheduleRec, DataHCompletionUPP completion);
    // Completes the requests for `placement` (null: all) at once, waiting for their bytes, or
    // without reading when cancelled. paramErr for a placement that is not queued.
    void FinishData(char* placement, unsigned char cancel);
    // Like ScheduleData with a record, but MPEG data is waited for and errors of the read are
    // thrown. `refCon` reaches only a completion that comes at once.
    OSErr ReadAsync(void* buffer, UInt32 dataSize, const wide* fileOffset,
                    DataHCompletionUPP completion, RefCon refCon);
    // Copies what is there of the scheduled read for `dataPtr`; its request stays queued. Leaves
    // *dataSizeSoFar alone if there is no such request.
    void PollRead(void* dataPtr, UInt32* dataSizeSoFar);
    // Tells the size when it is known, {0, 0} until then.
    void GetFileSizeAsync(wide* size, DataHCompletionUPP completion, RefCon refCon);
    // Lets MPEG data run ahead, yielding, where the caller may wait; then completes what can be.
    void Task();

    // Which of the movie plug-in's threads is running; false without one.
    Boolean OnApplicationThread() const;
    Boolean OnDecodingThread() const;

    // `force`: also requests whose bytes are not there, which are then waited for.
    void ProcessScheduleDataCallbacks(char* placement, unsigned char cancel, unsigned char force);
    void ProcessAsyncReadCallbacks();
    void ProcessAsyncFileSizeCallbacks();
    void RemoveScheduleDataCallbacks();
    void RemoveAsyncReadCallbacks();
    void RemoveAsyncFileSizeCallbacks();

    ComponentInstance self;       // this instance, as QuickTime knows it
    ComponentInstance delegate;   // the alias data handler
    VornMoviePlugin* moviePlugin; // null once it has died
    SInt32 availableSize = 0;     // bytes that have arrived
    SInt32 finalSize = 0;         // valid once loadComplete
    Boolean loadComplete = false;
    Boolean canSpoolAhead = false; // MPEG, and QuickTime 5 or later
    Boolean inCallbacks = false;   // a queue is being processed
    Boolean isMpeg = false;
    UInt16 qtVersion = 0;
    CLinkedList scheduleQueue;
    CLinkedList readQueue;
    CLinkedList fileSizeQueue;

private:
    bool HasArrived(SInt64 offset, SInt64 size) const { return offset + size <= availableSize; }
    // 0 without a copy when the movie plug-in has died. Throws what GetMovieData does.
    OSErr GetDataFromOffset(void* dest, SInt32 offset, SInt32* count, unsigned char mustHaveAll);
    OSErr ReadForRequest(char* placement, SInt32 offset, SInt32 size, unsigned char mustHaveAll);
    [[noreturn]] void ThrowNotThere() const;
    bool MaySpoolAhead() const;
};
