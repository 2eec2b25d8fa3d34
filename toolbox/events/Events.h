/* SPDX-License-Identifier: MIT
 *
 * Event Manager: the tick clock and the record of a user's action.
 */
#ifndef VORN_TOOLBOX_EVENTS_H
#define VORN_TOOLBOX_EVENTS_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

#pragma pack(push, 2)
typedef struct EventRecord {
    UInt16 what;      /* nullEvent … */
    UInt32 message;   /* keyDown: key code in bits 8-15, character in bits 0-7 */
    UInt32 when;      /* ticks */
    Point where;      /* the pointer, global coordinates */
    UInt16 modifiers; /* btnState: set while the button is up */
} EventRecord;
#pragma pack(pop)
TOOLBOX_STATIC_ASSERT(sizeof(EventRecord) == 16, "EventRecord is 16 bytes, packed to two");

enum {
    nullEvent = 0,
    mouseDown = 1,
    mouseUp = 2,
    keyDown = 3,
    keyUp = 4,
    autoKey = 5,
    osEvt = 15 /* message 0xFA000000: the pointer moved */
};
enum { kMouseMovedMessage = 0xFA };
enum { btnState = 0x0080, cmdKey = 0x0100, shiftKey = 0x0200, optionKey = 0x0800 };
enum {
    kLeftArrowCharCode = 28,
    kRightArrowCharCode = 29,
    kUpArrowCharCode = 30,
    kDownArrowCharCode = 31,
    kSpaceCharCode = 32
};

/* Ticks, 60 a second, starting at 1. */
TOOLBOX_EXPORT UInt32 TickCount(void);

/* The clock behind the ticks and behind every movie: microseconds since some start. */
typedef SInt64 (*ToolboxClockProc)(void* refCon);
/* Replaces the clock, null for the system's monotonic one. A clock never goes backwards. */
TOOLBOX_EXPORT void SetToolboxClock(ToolboxClockProc clock, void* refCon);
/* What that clock says now. */
TOOLBOX_EXPORT SInt64 ToolboxMicroseconds(void);

TOOLBOX_END_DECLS

#endif
