// SPDX-License-Identifier: MIT
#include "src/datahandler/DataHandlerRegistration.h"

#include "src/datahandler/DataHandlerDispatch.h"
#include "toolbox/Errors.h"

#include <cstdio>

namespace
{

constexpr ComponentDescription kDescription = {
    .componentType = FOUR_CHARS('d', 'h', 'l', 'r'),
    .componentSubType = FOUR_CHARS('K', 'W', 'O', 'B'),
    .componentManufacturer = FOUR_CHARS('K', 'w', 'o', 'b'),
    .componentFlags = 0,
    .componentFlagsMask = 0,
};

} // namespace

Component gDataHandlerComponent = nullptr;

OSErr EnsureDataHandlerRegistered()
{
    std::printf("EnsureDataHandlerRegistered(): gDataHandlerComponent %p\n",
                static_cast<void*>(gDataHandlerComponent));
    if (gDataHandlerComponent != nullptr) {
        return noErr;
    }
    gDataHandlerComponent = RegisterComponent(
        &kDescription, NewComponentRoutineUPP(VornPluginDataHandlerComponentDispatch), 0, nullptr,
        nullptr, nullptr);
    std::printf("RegisterComponent returned %p\n", static_cast<void*>(gDataHandlerComponent));
    return gDataHandlerComponent != nullptr ? OSErr{noErr} : OSErr{paramErr};
}
