// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/components/Components.h"

// What the component itself does for a selector. `procInfo` tells the Component Manager the
// parameter slots that the routine takes.
struct DataHandlerRoutine {
    ComponentFunction function;
    ProcInfoType procInfo;
};

// The routine of a selector, null for one that the delegate answers.
const DataHandlerRoutine* FindRoutine(SInt16 selector);

// Calls a routine; badComponentSelector for one without a procInfo.
ComponentResult CallRoutine(const DataHandlerRoutine& routine, ComponentParameters* params,
                            void* storage);

// The component's entry. `storage` is the VornPluginDataHandlerComponent, null before it is open.
ComponentResult VornPluginDataHandlerComponentDispatch(ComponentParameters* params, void* storage);
