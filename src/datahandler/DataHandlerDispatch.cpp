// SPDX-License-Identifier: MIT
#include "src/datahandler/DataHandlerDispatch.h"

#include "src/datahandler/DataHandlerRoutines.h"
#include "src/datahandler/VornPluginDataHandlerComponent.h"
#include "toolbox/Errors.h"

#include <iterator>

namespace datahandler
{
namespace
{

using Function = ComponentFunction;

constexpr DataHandlerRoutine kDelegated{nullptr, 0};

// Selectors -4 to -1.
const DataHandlerRoutine kStandardRoutines[] = {
    {reinterpret_cast<Function>(Version), 0x0F0},
    {reinterpret_cast<Function>(CanDo), 0x2F0},
    {reinterpret_cast<Function>(Close), 0x3F0},
    {reinterpret_cast<Function>(Open), 0x3F0},
};
static_assert(std::size(kStandardRoutines) == 4);

// Selectors 0 to 62. The asynchronous file-size call (58) is left to the delegate.
const DataHandlerRoutine kRoutines[] = {
    /* 0 */ kDelegated,
    /* 1 */ kDelegated,
    /* 2 */ {reinterpret_cast<Function>(GetData), 0xFFF0},
    /* 3 */ kDelegated,
    /* 4 */ kDelegated,
    /* 5 */ kDelegated,
    /* 6 */ kDelegated,
    /* 7 */ kDelegated,
    /* 8 */ kDelegated,
    /* 9 */ kDelegated,
    /* 10 */ kDelegated,
    /* 11 */ kDelegated,
    /* 12 */ kDelegated,
    /* 13 */ {reinterpret_cast<Function>(Task), 0x0F0},
    /* 14 */ {reinterpret_cast<Function>(ScheduleData), 0xFFFF0},
    /* 15 */ {reinterpret_cast<Function>(FinishData), 0x7F0},
    /* 16 */ {reinterpret_cast<Function>(FlushCache), 0x0F0},
    /* 17 */ kDelegated,
    /* 18 */ {reinterpret_cast<Function>(GetFileSize), 0x3F0},
    /* 19 */ kDelegated,
    /* 20 */ kDelegated,
    /* 21 */ kDelegated,
    /* 22 */ kDelegated,
    /* 23 */ kDelegated,
    /* 24 */ kDelegated,
    /* 25 */ kDelegated,
    /* 26 */ kDelegated,
    /* 27 */ kDelegated,
    /* 28 */ kDelegated,
    /* 29 */ kDelegated,
    /* 30 */ kDelegated,
    /* 31 */ kDelegated,
    /* 32 */ kDelegated,
    /* 33 */ kDelegated,
    /* 34 */ kDelegated,
    /* 35 */ kDelegated,
    /* 36 */ kDelegated,
    /* 37 */ {reinterpret_cast<Function>(GetFileName), 0x3F0},
    /* 38 */ {reinterpret_cast<Function>(GetAvailableFileSize), 0x3F0},
    /* 39 */ {reinterpret_cast<Function>(GetMacOSFileType), 0x3F0},
    /* 40 */ {reinterpret_cast<Function>(GetMIMEType), 0x3F0},
    /* 41 */ kDelegated,
    /* 42 */ kDelegated,
    /* 43 */ kDelegated,
    /* 44 */ kDelegated,
    /* 45 */ {reinterpret_cast<Function>(GetInfoFlags), 0x3F0},
    /* 46 */ {reinterpret_cast<Function>(ScheduleData64), 0xFFFF0},
    /* 47 */ kDelegated,
    /* 48 */ {reinterpret_cast<Function>(GetFileSize64), 0x3F0},
    /* 49 */ kDelegated,
    /* 50 */ kDelegated,
    /* 51 */ kDelegated,
    /* 52 */ kDelegated,
    /* 53 */ {reinterpret_cast<Function>(ReadAsync), 0x3FFF0},
    /* 54 */ {reinterpret_cast<Function>(PollRead), 0xFF0},
    /* 55 */ kDelegated,
    /* 56 */ kDelegated,
    /* 57 */ kDelegated,
    /* 58 */ kDelegated,
    /* 59 */ kDelegated,
    /* 60 */ kDelegated,
    /* 61 */ kDelegated,
    /* 62 */ kDelegated,
};
static_assert(std::size(kRoutines) == 63);

const DataHandlerRoutine* Implemented(const DataHandlerRoutine& routine)
{
    return routine.function != nullptr ? &routine : nullptr;
}

} // namespace
} // namespace datahandler

const DataHandlerRoutine* FindRoutine(SInt16 selector)
{
    using namespace datahandler;
    if (selector < 0) {
        const int index = selector - kComponentVersionSelect;
        return index >= 0 ? Implemented(kStandardRoutines[index]) : nullptr;
    }
    const size_t index = static_cast<size_t>(selector);
    return index < std::size(kRoutines) ? Implemented(kRoutines[index]) : nullptr;
}

ComponentResult CallRoutine(const DataHandlerRoutine& routine, ComponentParameters* params,
                            void* storage)
{
    if (routine.procInfo == 0) {
        return badComponentSelector;
    }
    return CallComponentFunctionWithStorageProcInfo(storage, params, routine.function,
                                                    routine.procInfo);
}

ComponentResult VornPluginDataHandlerComponentDispatch(ComponentParameters* params, void* storage)
{
    const DataHandlerRoutine* const routine = FindRoutine(params->what);
    if (routine == nullptr) {
        return DelegateComponentCall(params, datahandler::DelegateOf(storage));
    }
    return CallRoutine(*routine, params, storage);
}
