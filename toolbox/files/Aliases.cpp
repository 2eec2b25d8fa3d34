// SPDX-License-Identifier: MIT
#include "toolbox/files/Aliases.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Announce.h"

#include <cstring>

OSErr NewAliasMinimal(const FSSpec* spec, Handle* alias)
{
    if (const OSErr err = toolbox::Announce("NewAliasMinimal")) {
        return err;
    }
    if (spec == nullptr || alias == nullptr) {
        return paramErr;
    }
    const Handle record = NewHandle(static_cast<Size>(sizeof *spec));
    if (record == nullptr) {
        return MemError();
    }
    std::memcpy(*record, spec, sizeof *spec);
    *alias = record;
    return noErr;
}
