// SPDX-License-Identifier: MIT
#include "toolbox/threads/Threads.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"
#include "toolbox/threads/Switching.h"
#include "toolbox/threads/ThreadGlobals.h"

#include <map>
#include <memory>
#include <new>
#include <optional>

using toolbox::Announce;
using toolbox::CountInLedger;
using toolbox::ExecutionContext;
using toolbox::ThreadGlobals;

namespace
{

// Thrown out of the yield of a thread that is disposed of.
struct ThreadDisposed {
};

struct ThreadRecord {
    ThreadID id = kNoThreadID;
    ThreadEntryUPP entry = nullptr;
    void* param = nullptr;
    void** resultPlace = nullptr;
    ThreadGlobals globals;
    std::optional<ExecutionContext> context; // not of the application thread
    // Where it goes on: its own context, or that of a fiber that it was running.
    ExecutionContext* resumeAt = nullptr;
    bool started = false;
    bool unwinding = false;
    void* disposalResult = nullptr;
    ThreadRecord* disposer = nullptr; // waits for the end of this one, in DisposeThread
    bool waiting = false;             // is such a disposer
};

using Ring = std::map<ThreadID, std::unique_ptr<ThreadRecord>>;

// The threads that are alive, in the order of their turns, which is that of their making.
struct ThreadTable {
    Ring threads;
    ThreadRecord* current = nullptr;
    ThreadID nextID = kApplicationThreadID + 1;
    int waiting = 0;
    // Ended, but freed only from another stack than its own.
    std::unique_ptr<ThreadRecord> ended;

    ThreadTable()
    {
        auto application = std::make_unique<ThreadRecord>();
        application->id = kApplicationThreadID;
        application->started = true;
        current = application.get();
        threads.emplace(kApplicationThreadID, std::move(application));
    }
};

// Never destroyed: threads may be left when the process ends.
ThreadTable& Table()
{
    static auto& table = *new ThreadTable;
    return table;
}

ThreadRecord* FindThread(ThreadID id)
{
    ThreadTable& table = Table();
    if (id == kCurrentThreadID) {
        return table.current;
    }
    const auto found = table.threads.find(id);
    return found != table.threads.end() ? found->second.get() : nullptr;
}

// May be the thread itself.
ThreadRecord& NextInTurn(const ThreadRecord& thread)
{
    Ring& ring = Table().threads;
    const auto next = ring.upper_bound(thread.id);
    return *(next != ring.end() ? next : ring.begin())->second;
}

void SwitchToThread(ThreadRecord& next)
{
    ThreadTable& table = Table();
    table.current->resumeAt = &ExecutionContext::Current();
    table.current = &next;
    ExecutionContext::SwitchTo(*next.resumeAt);
    table.ended.reset();
}

// Takes the thread out of the ring; it may still be running on its stack.
std::unique_ptr<ThreadRecord> RemoveThread(ThreadRecord& thread)
{
    CountInLedger(kLiveThreads, -1);
    return std::move(Table().threads.extract(thread.id).mapped());
}

void StoreResult(const ThreadRecord& thread, void* result)
{
    if (thread.resultPlace != nullptr) {
        *thread.resultPlace = result;
    }
}

// Answers where to go on.
ExecutionContext& EndThread(ThreadRecord& thread, void* result)
{
    ThreadTable& table = Table();
    StoreResult(thread, thread.unwinding ? thread.disposalResult : result);
    table.current = thread.disposer != nullptr ? thread.disposer : &NextInTurn(thread);
    table.ended = RemoveThread(thread);
    return *table.current->resumeAt;
}

ExecutionContext& RunThread(void* argument)
{
    Table().ended.reset();
    auto& thread = *static_cast<ThreadRecord*>(argument);
    thread.started = true;
    void* result = nullptr;
    try {
        result = thread.entry(thread.param);
    } catch (...) {
        // The end of the thread; there is nobody to tell.
    }
    return EndThread(thread, result);
}

// Runs a suspended thread to its end, here and now.
void Unwind(ThreadRecord& thread)
{
    ThreadTable& table = Table();
    ThreadRecord& self = *table.current;
    thread.disposer = &self;
    self.waiting = true;
    ++table.waiting;
    SwitchToThread(thread);
    --table.waiting;
    self.waiting = false;
}

std::unique_ptr<ThreadRecord> MakeThread(ThreadEntryUPP entry, void* param, Size stackSize)
{
    auto thread = std::make_unique<ThreadRecord>();
    thread->entry = entry;
    thread->param = param;
    thread->globals = Table().current->globals;
    thread->context.emplace(stackSize > 0 ? static_cast<size_t>(stackSize) : 0, &RunThread,
                            thread.get());
    thread->resumeAt = &*thread->context;
    return thread;
}

} // namespace

ThreadGlobals& toolbox::CurrentThreadGlobals()
{
    return Table().current->globals;
}

bool toolbox::IsAnotherThreadReady()
{
    const ThreadTable& table = Table();
    return table.threads.size() > 1 + static_cast<size_t>(table.waiting);
}

ThreadEntryUPP NewThreadEntryUPP(ThreadEntryProc entry)
{
    Announce("NewThreadEntryUPP");
    return entry;
}

OSErr NewThread(ThreadStyle style, ThreadEntryUPP entry, void* param, Size stackSize,
                ThreadOptions /*options*/, void** result, ThreadID* thread)
{
    if (const OSErr err = Announce("NewThread")) {
        return err;
    }
    if (style != kCooperativeThread || entry == nullptr || thread == nullptr) {
        return paramErr;
    }
    ThreadTable& table = Table();
    if (table.nextID == kNoThreadID) {
        return memFullErr; // every identifier has been used
    }
    try {
        auto made = MakeThread(entry, param, stackSize);
        made->resultPlace = result;
        made->id = table.nextID;
        table.threads.emplace(table.nextID, std::move(made));
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    *thread = table.nextID++;
    CountInLedger(kLiveThreads, 1);
    return noErr;
}

OSErr DisposeThread(ThreadID id, void* result, Boolean /*recycle*/)
{
    if (const OSErr err = Announce("DisposeThread")) {
        return err;
    }
    ThreadRecord* const thread = FindThread(id);
    if (thread == nullptr) {
        return threadNotFoundErr;
    }
    if (thread->id == kApplicationThreadID || thread->waiting) {
        return threadProtocolErr;
    }
    thread->unwinding = true;
    thread->disposalResult = result;
    if (thread == Table().current) {
        throw ThreadDisposed();
    }
    if (thread->started) {
        Unwind(*thread);
    } else {
        StoreResult(*thread, result);
        RemoveThread(*thread);
    }
    return noErr;
}

OSErr YieldToAnyThread(void)
{
    const OSErr err = Announce("YieldToAnyThread");
    ThreadRecord& self = *Table().current;
    ThreadRecord& next = NextInTurn(self);
    if (err == noErr && !self.unwinding && &next != &self) {
        SwitchToThread(next);
    }
    if (self.unwinding) {
        throw ThreadDisposed();
    }
    return err;
}

OSErr GetCurrentThread(ThreadID* thread)
{
    if (const OSErr err = Announce("GetCurrentThread")) {
        return err;
    }
    if (thread == nullptr) {
        return paramErr;
    }
    *thread = Table().current->id;
    return noErr;
}

OSErr GetThreadState(ThreadID id, ThreadState* state)
{
    if (const OSErr err = Announce("GetThreadState")) {
        return err;
    }
    const ThreadRecord* const thread = FindThread(id);
    if (thread == nullptr || state == nullptr) {
        return thread == nullptr ? threadNotFoundErr : paramErr;
    }
    *state = thread == Table().current ? kRunningThreadState : kReadyThreadState;
    return noErr;
}

void SetStatisticsOwner(void* owner)
{
    toolbox::CurrentThreadGlobals().statisticsOwner = owner;
}

void* GetStatisticsOwner(void)
{
    return toolbox::CurrentThreadGlobals().statisticsOwner;
}
