// SPDX-License-Identifier: MIT
//
// The viewer's side of the plug-in boundary: finds the object that a bundle calls for.
#pragma once

#include "src/plugin/VornPluginABI.h"

namespace viewer
{

class EmbeddedObject;

const VornPluginHostCalls& ViewerHostCalls();

// From a plug-in object's creation to its release.
void RememberObject(VornPlugin* plugin, EmbeddedObject& object);
void ForgetObject(VornPlugin* plugin);

} // namespace viewer
