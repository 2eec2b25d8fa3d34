/* SPDX-License-Identifier: MIT
 *
 * Memory Manager: relocatable blocks behind handles, and plain blocks.
 *
 * Every operation sets the error that MemError answers (0 on success). None of them yields.
 */
#ifndef VORN_TOOLBOX_MEMORY_H
#define VORN_TOOLBOX_MEMORY_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

/* A new relocatable block of `size` bytes, unlocked, contents undefined; null and MemError
 * memFullErr when there is no memory, null and paramErr for a negative size. The caller owns it. */
TOOLBOX_EXPORT Handle NewHandle(Size size);
/* The same, filled with zeros. */
TOOLBOX_EXPORT Handle NewHandleClear(Size size);
/* Frees the block and its master pointer. Null is allowed. */
TOOLBOX_EXPORT void DisposeHandle(Handle handle);
/* Bytes in the block; 0 and MemError nilHandleErr for null. */
TOOLBOX_EXPORT Size GetHandleSize(Handle handle);
/* Resizes the block, keeping its contents up to the smaller size. A locked block does not move;
 * it fails with memFullErr when it would have to. On failure the block is unchanged. */
TOOLBOX_EXPORT void SetHandleSize(Handle handle, Size size);
/* The result of the last Memory Manager operation. */
TOOLBOX_EXPORT OSErr MemError(void);
/* The block's state byte (bit 7: locked), for HSetState. */
TOOLBOX_EXPORT SInt8 HGetState(Handle handle);
/* Puts back a state byte got from HGetState. */
TOOLBOX_EXPORT void HSetState(Handle handle, SInt8 state);
/* Locks the block: it does not move until its state is put back. */
TOOLBOX_EXPORT void HLock(Handle handle);
/* Locks the block after moving it out of the way of others (here the same as HLock). */
TOOLBOX_EXPORT void HLockHi(Handle handle);

/* A plain block that never moves; null when there is no memory or the size is negative. */
TOOLBOX_EXPORT Ptr NewPtr(Size size);
/* Frees a plain block. Null is allowed. */
TOOLBOX_EXPORT void DisposePtr(Ptr block);
/* Moves `count` bytes between areas that may overlap. */
TOOLBOX_EXPORT void BlockMoveData(const void* source, void* destination, Size count);

/* Debugging: while on, every allocation and every resize of a handle moves all unlocked blocks to
 * new addresses and overwrites their old places, so that a stale pointer shows at once. */
TOOLBOX_EXPORT void SetHandleScramble(Boolean on);

TOOLBOX_END_DECLS

#endif
