// SPDX-License-Identifier: MIT
#include "toolbox/gestalt/Gestalt.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"

#include <map>

namespace
{

// Never destroyed, like the other services' tables.
std::map<OSType, SInt32>& Values()
{
    static auto& values = *new std::map<OSType, SInt32>{{gestaltQuickTime, 0x07000000}};
    return values;
}

} // namespace

OSErr Gestalt(OSType selector, SInt32* response)
{
    if (const OSErr err = toolbox::Announce("Gestalt")) {
        return err;
    }
    const auto found = Values().find(selector);
    if (found == Values().end()) {
        return gestaltUndefSelectorErr;
    }
    if (response == nullptr) {
        return paramErr;
    }
    *response = found->second;
    return noErr;
}

void SetGestaltValue(OSType selector, SInt32 value)
{
    Values()[selector] = value;
}
