// SPDX-License-Identifier: MIT
//
// Requests for bytes, or for a length, that may not be there yet: the three queues, what puts a
// request into them and what completes it.
#include "src/datahandler/VornPluginDataHandlerComponent.h"
#include "src/movie/VornMoviePlugin.h"
#include "src/util/RaisedFlag.h"
#include "toolbox/Errors.h"

#include <algorithm>
#include <memory>

namespace
{

constexpr UInt16 kLastVersionWithoutFileSizeAsync = 0x04FF;
constexpr SInt32 kSpoolAheadBytes = 16384;

struct ScheduledRead {
    DataHCompletionUPP completion;
    RefCon refCon;
    char* placement; // also how FinishData and PollRead name the request
    SInt32 fileOffset;
    SInt32 dataSize;
    DataHScheduleRecord scheduleRec;
};

struct AsyncRead {
    DataHCompletionUPP completion;
    RefCon refCon; // the caller's is not kept: 0
    void* buffer;
    wide fileOffset; // the low 32 bits count
    UInt32 dataSize;
};

struct FileSizeRequest {
    DataHCompletionUPP completion;
    RefCon refCon;
    wide* sizeOut;
};

// The one place that calls a completion routine; null is allowed.
void CallDataCompletionCallback(DataHCompletionUPP routine, void* request, RefCon refCon, OSErr err)
{
    if (routine != nullptr) {
        InvokeDataHCompletionUPP(static_cast<char*>(request), refCon, err, routine);
    }
}

template <typename Record>
void Append(CLinkedList& queue, const Record& contents)
{
    auto record = std::make_unique<Record>(contents);
    queue.AppendItem(record.get());
    static_cast<void>(record.release());
}

void MoveCursorBehind(CLinkedList& queue, const void* item)
{
    queue.ResetToFirst();
    const void* passed = nullptr;
    do {
        passed = queue.NextItem();
    } while (passed != nullptr && passed != item);
}

// Visits every record from the first; one for which `complete` answers true leaves the queue.
// Completing runs foreign code, which may use the cursor (PollRead) or append, but never removes:
// so the next record is fetched before, and the cursor put right after.
template <typename Record, typename Complete>
void VisitRecords(CLinkedList& queue, const Complete& complete)
{
    queue.ResetToFirst();
    auto* record = static_cast<Record*>(queue.NextItem());
    while (record != nullptr) {
        auto* const next = static_cast<Record*>(queue.NextItem());
        if (complete(*record)) {
            queue.RemoveItem(record);
            delete record;
            MoveCursorBehind(queue, next);
        }
        record = next;
    }
}

template <typename Record>
void DeleteRecords(CLinkedList& queue)
{
    queue.ResetToFirst();
    while (auto* const record = static_cast<Record*>(queue.NextItem())) {
        delete record;
    }
    queue.Clear();
}

} // namespace

// Asking ----------------------------------------------------------------------------------------

void VornPluginDataHandlerComponent::ScheduleData(char* placement, SInt32 fileOffset,
                                                  SInt32 dataSize, RefCon refCon,
                                                  const DataHScheduleRecord* scheduleRec,
                                                  DataHCompletionUPP completion)
{
    if (HasArrived(fileOffset, dataSize) || scheduleRec == nullptr) {
        const OSErr err = ReadForRequest(placement, fileOffset, dataSize, true);
        CallDataCompletionCallback(completion, placement, refCon, err);
        return;
    }
    if (completion == nullptr) {
        ThrowNotThere();
    }
    if (loadComplete) {
        throw OSErr{eofErr};
    }
    Append(scheduleQueue,
           ScheduledRead{completion, refCon, placement, fileOffset, dataSize, *scheduleRec});
}

void VornPluginDataHandlerComponent::FinishData(char* placement, unsigned char cancel)
{
    ProcessScheduleDataCallbacks(placement, cancel, true);
}

OSErr VornPluginDataHandlerComponent::ReadAsync(void* buffer, UInt32 dataSize,
                                                const wide* fileOffset,
                                                DataHCompletionUPP completion, RefCon refCon)
{
    const auto offset = static_cast<SInt32>(fileOffset->lo);
    auto count = static_cast<SInt32>(dataSize);
    const UInt64 end = UInt64{fileOffset->lo} + dataSize;
    if (end <= static_cast<UInt32>(availableSize)) {
        const OSErr err = GetDataFromOffset(buffer, offset, &count, false);
        CallDataCompletionCallback(completion, buffer, refCon, noErr);
        return completion != nullptr ? OSErr{noErr} : err;
    }
    if (completion == nullptr) {
        ThrowNotThere();
    }
    if (isMpeg) {
        GetDataFromOffset(buffer, offset, &count, true);
        CallDataCompletionCallback(completion, buffer, refCon, noErr);
    } else if (loadComplete) {
        throw OSErr{eofErr};
    } else {
        Append(readQueue, AsyncRead{completion, 0, buffer, *fileOffset, dataSize});
    }
    return noErr;
}

void VornPluginDataHandlerComponent::PollRead(void* dataPtr, UInt32* dataSizeSoFar)
{
    scheduleQueue.ResetToFirst();
    auto* request = static_cast<ScheduledRead*>(scheduleQueue.NextItem());
    while (request != nullptr && request->placement != dataPtr) {
        request = static_cast<ScheduledRead*>(scheduleQueue.NextItem());
    }
    if (request == nullptr) {
        return;
    }
    if (request->fileOffset >= availableSize) {
        *dataSizeSoFar = 0;
        return;
    }
    auto count = static_cast<SInt32>(
        std::min<SInt64>(SInt64{availableSize} - request->fileOffset, request->dataSize));
    GetDataFromOffset(request->placement, request->fileOffset, &count, false);
    *dataSizeSoFar = static_cast<UInt32>(count);
}

void VornPluginDataHandlerComponent::GetFileSizeAsync(wide* size, DataHCompletionUPP completion,
                                                      RefCon refCon)
{
    if (qtVersion <= kLastVersionWithoutFileSizeAsync) {
        throw static_cast<OSErr>(badComponentSelector);
    }
    if (loadComplete) {
        *size = {0, static_cast<UInt32>(finalSize)};
        CallDataCompletionCallback(completion, size, refCon, noErr);
        return;
    }
    *size = {0, 0};
    if (completion == nullptr) {
        throw OSErr{notEnoughDataErr};
    }
    Append(fileSizeQueue, FileSizeRequest{completion, refCon, size});
}

void VornPluginDataHandlerComponent::Task()
{
    if (MaySpoolAhead()) {
        moviePlugin->SpoolMovieData(SInt64{availableSize} + kSpoolAheadBytes);
    }
    ProcessScheduleDataCallbacks(nullptr, false, false);
    ProcessAsyncReadCallbacks();
}

// Waiting is for the tasking thread, and for the application thread unless a controller call of
// the host's is under way. The decoding thread would wait for itself.
bool VornPluginDataHandlerComponent::MaySpoolAhead() const
{
    return moviePlugin != nullptr && (moviePlugin->OnTaskingThread() || OnApplicationThread()) &&
           canSpoolAhead && !loadComplete && !moviePlugin->inControllerCall;
}

// Thrown to a caller that cannot be told later. A 32-bit integer, so it surfaces as paramErr.
void VornPluginDataHandlerComponent::ThrowNotThere() const
{
    throw SInt32{loadComplete ? eofErr : notEnoughDataErr};
}

// A read whose OSErr goes to a completion routine; anything else it throws passes on.
OSErr VornPluginDataHandlerComponent::ReadForRequest(char* placement, SInt32 offset, SInt32 size,
                                                     unsigned char mustHaveAll)
{
    try {
        return GetDataFromOffset(placement, offset, &size, mustHaveAll);
    } catch (OSErr err) {
        return err;
    }
}

// Completing ------------------------------------------------------------------------------------

void VornPluginDataHandlerComponent::LoadProgress(SInt32 bytesSoFar)
{
    availableSize = bytesSoFar;
    ProcessAsyncReadCallbacks();
    ProcessScheduleDataCallbacks(nullptr, false, false);
}

void VornPluginDataHandlerComponent::LoadComplete(SInt32 totalBytes)
{
    availableSize = totalBytes;
    finalSize = totalBytes;
    loadComplete = true;
    ProcessAsyncFileSizeCallbacks();
    ProcessAsyncReadCallbacks();
    ProcessScheduleDataCallbacks(nullptr, false, false);
}

void VornPluginDataHandlerComponent::NotifyListenerOfPluginDeath()
{
    moviePlugin = nullptr;
}

void VornPluginDataHandlerComponent::ProcessScheduleDataCallbacks(char* placement,
                                                                  unsigned char cancel,
                                                                  unsigned char force)
{
    if (inCallbacks) {
        return;
    }
    const RaisedFlag processing(inCallbacks);
    bool found = false;
    VisitRecords<ScheduledRead>(scheduleQueue, [&](const ScheduledRead& request) {
        if (placement != nullptr && request.placement != placement) {
            return false;
        }
        const bool mustHaveAll = placement != nullptr || force;
        if (!cancel && !mustHaveAll && !HasArrived(request.fileOffset, request.dataSize)) {
            return false;
        }
        const OSErr err = cancel ? OSErr{noErr}
                                 : ReadForRequest(request.placement, request.fileOffset,
                                                  request.dataSize, mustHaveAll);
        CallDataCompletionCallback(request.completion, request.placement, request.refCon, err);
        found = true;
        return true;
    });
    if (placement != nullptr && !found) {
        throw OSErr{paramErr};
    }
}

void VornPluginDataHandlerComponent::ProcessAsyncReadCallbacks()
{
    if (inCallbacks) {
        return;
    }
    const RaisedFlag processing(inCallbacks);
    VisitRecords<AsyncRead>(readQueue, [this](const AsyncRead& request) {
        if (!HasArrived(request.fileOffset.lo, request.dataSize)) {
            return false;
        }
        auto count = static_cast<SInt32>(request.dataSize);
        GetDataFromOffset(request.buffer, static_cast<SInt32>(request.fileOffset.lo), &count,
                          false);
        CallDataCompletionCallback(request.completion, request.buffer, request.refCon, noErr);
        return true;
    });
}

void VornPluginDataHandlerComponent::ProcessAsyncFileSizeCallbacks()
{
    if (inCallbacks) {
        return;
    }
    const RaisedFlag processing(inCallbacks);
    VisitRecords<FileSizeRequest>(fileSizeQueue, [this](const FileSizeRequest& request) {
        *request.sizeOut = {0, static_cast<UInt32>(availableSize)};
        CallDataCompletionCallback(request.completion, request.sizeOut, request.refCon,
                                   loadComplete ? OSErr{noErr} : OSErr{notEnoughDataErr});
        return true;
    });
}

void VornPluginDataHandlerComponent::RemoveScheduleDataCallbacks()
{
    DeleteRecords<ScheduledRead>(scheduleQueue);
}

void VornPluginDataHandlerComponent::RemoveAsyncReadCallbacks()
{
    DeleteRecords<AsyncRead>(readQueue);
}

void VornPluginDataHandlerComponent::RemoveAsyncFileSizeCallbacks()
{
    DeleteRecords<FileSizeRequest>(fileSizeQueue);
}
