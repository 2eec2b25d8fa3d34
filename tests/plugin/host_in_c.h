/* SPDX-License-Identifier: MIT
 *
 * A host written in C: the boundary header compiles as C11 and suffices to drive an object.
 */
#ifndef VORN_TESTS_PLUGIN_HOST_IN_C_H
#define VORN_TESTS_PLUGIN_HOST_IN_C_H

#include "src/plugin/VornPluginABI.h"

TOOLBOX_BEGIN_DECLS

/* What the host saw of one object's life. */
typedef struct LifeInC {
    OSErr made;
    OSErr decoded;
    OSErr reported; /* through renderingDone */
    OSErr renderingError;
    Boolean haveDimensions;
    Rect displayRect; /* as gotRect was told */
    UInt32 flags;
    char comment[16];
    Boolean sameObject; /* all callbacks were about the object that was made */
} LifeInC;

/* Makes an object over `bytes`, decodes it, asks it everything and frees it. */
LifeInC LiveInC(CFBundleRef bundle, const char* bytes);

TOOLBOX_END_DECLS

#endif
