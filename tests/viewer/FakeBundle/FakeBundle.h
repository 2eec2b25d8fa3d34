/* SPDX-License-Identifier: MIT
 *
 * A bundle for the viewer's tests, in C: it plays nothing, but it pulls its bytes, reports a size,
 * fills its rectangle and writes down what is asked of it.
 *
 * An object does what its file name says, words separated by '-':
 *   open<N>      has its dimensions (100 x 50) in the first Idle after N bytes, else after 1
 *   never        never has dimensions
 *   badidle      Idle fails with -2010 once all data are in
 *   baddecode    Decode fails with -36
 *   wait<N>      the first Idle yields inside the bundle until N bytes are in
 *   stop<N>      Decode returns -36 once N bytes are in
 *   bar          it is 17 x 240, like a sound's controller
 *   grey<N>      fills its rectangle with that grey, else with black
 */
#ifndef FAKE_BUNDLE_H
#define FAKE_BUNDLE_H

#include "src/plugin/VornPluginABI.h"

TOOLBOX_BEGIN_DECLS

/* What the host did, a line each: "check NAME", "make NAME TYPE FLAGS", "display NAME", "free
 * NAME", "event NAME WHAT MESSAGE V,H". */
VORN_EXPORT const char* FakeBundleLog(void);
/* How often an object was asked, made or freed while another was between its creation and its
 * opening. */
VORN_EXPORT SInt32 FakeBundleViolations(void);
/* How often an object was idled or displayed under another clip than its rectangle. */
VORN_EXPORT SInt32 FakeBundleWrongClips(void);
VORN_EXPORT void FakeBundleReset(void);

TOOLBOX_END_DECLS

#endif
