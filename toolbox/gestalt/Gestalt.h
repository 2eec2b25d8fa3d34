/* SPDX-License-Identifier: MIT
 *
 * Gestalt: what the system has.
 */
#ifndef VORN_TOOLBOX_GESTALT_H
#define VORN_TOOLBOX_GESTALT_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

enum { gestaltQuickTime = 0x7174696D }; /* 'qtim': the version in the high 16 bits */

/* The value for a selector; gestaltUndefSelectorErr for an unknown one. */
TOOLBOX_EXPORT OSErr Gestalt(OSType selector, SInt32* response);
/* Replaces the value for a selector, so that another version can be tried. */
TOOLBOX_EXPORT void SetGestaltValue(OSType selector, SInt32 value);

TOOLBOX_END_DECLS

#endif
