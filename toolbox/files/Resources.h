/* SPDX-License-Identifier: MIT
 *
 * Resource Manager: only the question which resource file is current.
 */
#ifndef VORN_TOOLBOX_RESOURCES_H
#define VORN_TOOLBOX_RESOURCES_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

/* The reference number of the current resource file; 0, the system file, as none is ever opened. */
TOOLBOX_EXPORT SInt16 CurResFile(void);

TOOLBOX_END_DECLS

#endif
