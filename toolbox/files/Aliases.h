/* SPDX-License-Identifier: MIT
 *
 * Alias Manager: a file named by a record in a handle. Here the record is the FSSpec itself.
 */
#ifndef VORN_TOOLBOX_ALIASES_H
#define VORN_TOOLBOX_ALIASES_H

#include "toolbox/files/Files.h"

TOOLBOX_BEGIN_DECLS

/* A minimal alias of `spec` in a new handle, which the caller owns; memFullErr without memory. */
TOOLBOX_EXPORT OSErr NewAliasMinimal(const FSSpec* spec, Handle* alias);

TOOLBOX_END_DECLS

#endif
