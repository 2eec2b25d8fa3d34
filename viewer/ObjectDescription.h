// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/PluginFolder.h"

#include <string>

namespace viewer
{

// How an object was named and what its page wants of it.
struct ObjectDescription {
    std::string name;     // for the user
    std::string fileName; // for the plug-in
    ObjectType type;
    UInt32 displayFlags = 0;
    bool typeIsKnown = false; // given by the user or told by the first bytes
    // Its bytes come one after the other, and may turn out to be a document that holds objects.
    bool mayBeDocument = false;
};

} // namespace viewer
