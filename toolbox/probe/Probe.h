/* SPDX-License-Identifier: MIT
 *
 * The probe: every toolbox operation announces itself, by the platform's name for it, before it
 * does anything. One process-wide observer may log the call and may make it fail. Always compiled
 * in; without an observer it costs one test of a pointer.
 *
 * The ledger: how many objects of each kind are alive, so that a test can show that nothing leaked.
 */
#ifndef VORN_TOOLBOX_PROBE_H
#define VORN_TOOLBOX_PROBE_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

/* Called with the operation's name, for example "FSWrite". A result other than 0 makes the
 * operation fail with it, before any effect, in the way the operation reports failures: as its
 * result, through MemError, as a null or false answer. Operations that cannot fail ignore it. */
typedef OSErr (*ToolboxObserver)(const char* operation, void* refCon);

/* Installs the observer, null for none. The observer is not told of calls that it makes itself. */
TOOLBOX_EXPORT void SetToolboxObserver(ToolboxObserver observer, void* refCon);

enum {
    kLiveHandles,
    kLivePointers,
    kLiveOpenFiles,
    kLiveThreads, /* without the application thread */
    kLiveComponentInstances,
    kLiveFoundationObjects,
    kLivePorts,
    kLiveGWorlds,
    kLiveRegions,
    kLiveMovies,
    kLiveMovieControllers,
    kLiveDrags,
    kLiveObjectKinds
};

/* The number of live objects of a kind above; 0 for an unknown kind. */
TOOLBOX_EXPORT SInt32 CountLiveObjects(SInt32 kind);

TOOLBOX_END_DECLS

#endif
