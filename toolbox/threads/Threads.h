/* SPDX-License-Identifier: MIT
 *
 * Thread Manager: cooperative threads on one operating-system thread. A thread runs until it
 * yields. Identifiers are never used twice. The application thread always exists.
 *
 * A thread that is disposed of while it is suspended is resumed with a private exception out of
 * its yield, so that what its frames own is released; a further yield throws again until the
 * entry returns. So there must be no yield in a destructor or in a noexcept function, and C code
 * that yields must be compiled with -fexceptions.
 */
#ifndef VORN_TOOLBOX_THREADS_H
#define VORN_TOOLBOX_THREADS_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

typedef UInt32 ThreadID;
typedef UInt16 ThreadState;
typedef UInt32 ThreadStyle;
typedef UInt32 ThreadOptions;
typedef void* (*ThreadEntryProc)(void* param);
typedef ThreadEntryProc ThreadEntryUPP;

enum { kNoThreadID = 0, kCurrentThreadID = 1, kApplicationThreadID = 2 };
enum { kReadyThreadState = 0, kStoppedThreadState = 1, kRunningThreadState = 2 };
enum { kCooperativeThread = 1 };

/* The plain function itself. */
TOOLBOX_EXPORT ThreadEntryUPP NewThreadEntryUPP(ThreadEntryProc entry);
/* Makes a ready thread that will run entry(param). `stackSize` is a minimum in bytes (at least
 * 256 KiB are given, touched only as used, with 64 KiB below that nobody may touch: a stack that
 * runs over ends the process, and a line on the standard error stream tells why. For that the
 * first call installs a handler for SIGSEGV, which passes everything on to the one before it).
 * `result`, if not null, receives the entry's result. The current port and the statistics owner
 * are inherited.
 * memFullErr without memory, paramErr for another style than kCooperativeThread. */
TOOLBOX_EXPORT OSErr NewThread(ThreadStyle style, ThreadEntryUPP entry, void* param, Size stackSize,
                               ThreadOptions options, void** result, ThreadID* thread);
/* Ends a thread: one that never ran is dropped, a suspended one is unwound (see above), the
 * current one is unwound at once and does not return. `result` is stored where NewThread was told
 * to. threadNotFoundErr for an unknown or finished thread, threadProtocolErr for the application
 * thread. */
TOOLBOX_EXPORT OSErr DisposeThread(ThreadID thread, void* result, Boolean recycle);
/* Gives the other ready threads a turn each, in a fixed round; returns at once if there is none. */
TOOLBOX_EXPORT OSErr YieldToAnyThread(void);
TOOLBOX_EXPORT OSErr GetCurrentThread(ThreadID* thread);
/* kRunningThreadState for the one that runs now, else kReadyThreadState; threadNotFoundErr for an
 * unknown or finished thread. */
TOOLBOX_EXPORT OSErr GetThreadState(ThreadID thread, ThreadState* state);

/* Who pictures and sounds are counted for: movies belong to the owner that was set on the thread
 * that opened them. A new thread inherits its maker's owner. Null at start. */
TOOLBOX_EXPORT void SetStatisticsOwner(void* owner);
TOOLBOX_EXPORT void* GetStatisticsOwner(void);

TOOLBOX_END_DECLS

#endif
