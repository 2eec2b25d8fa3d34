/* SPDX-License-Identifier: MIT
 *
 * Drag Manager: the types that cross the plug-in boundary.
 */
#ifndef VORN_TOOLBOX_DRAG_H
#define VORN_TOOLBOX_DRAG_H

#include "toolbox/Types.h"

typedef struct OpaqueDragRef* DragRef;
typedef DragRef DragReference;

#endif
