// SPDX-License-Identifier: MIT
#pragma once

#include "src/datahandler/DataHandlerRegistration.h"
#include "src/datahandler/VornPluginDataHandlerComponent.h"
#include "tests/support/MovieTest.h"
#include "toolbox/Errors.h"
#include "toolbox/quicktime/DataHandler.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace test
{

// One call of a completion routine.
struct Completion {
    char* request;
    RefCon refCon;
    OSErr err;
    bool operator==(const Completion&) const = default;
};
using Completions = std::vector<Completion>;

// A movie plug-in and an instance of its data handler, opened and called through the Component
// Manager as QuickTime does. The object is no MPEG unless a test says so.
class DataHandlerTest : public MovieTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Makes the plug-in and opens the handler; `spooled` bytes have arrived by then.
    void Open(const char* mimeType = "video/quicktime",
              OSType fileType = FOUR_CHARS('M', 'o', 'o', 'V'), SInt32 spooled = 0);
    void OpenForMpeg(SInt32 spooled = 0);
    void Close();
    // The plug-in dies; the instance stays open.
    void KillPlugin();
    // Lets bytes be spooled and the listeners be told.
    void Arrive(SInt32 bytes);
    void ArriveCompletely();

    template <typename... Parameters>
    ComponentResult Call(SInt16 selector, Parameters... parameters)
    {
        ComponentParameters params{};
        params.what = selector;
        params.paramSize = sizeof...(parameters);
        size_t slot = 0;
        ((params.params[slot++] = Slot(parameters)), ...);
        return CallComponent(instance, &params);
    }

    // Asks for a read into `place` with a schedule record and a completion routine.
    ComponentResult Schedule(char* place, SInt32 offset, SInt32 size, RefCon refCon = 0);
    ComponentResult ReadAsync(char* place, UInt32 offset, UInt32 size, RefCon refCon = 0);
    bool Holds(const char* place, SInt32 offset, SInt32 size) const;

    // The completion routine: keeps the call, then runs `onCompletion`.
    static void Complete(char* request, RefCon refCon, OSErr err);
    static Completions completions;
    static std::function<void()> onCompletion;

    std::unique_ptr<VornMoviePlugin> plugin;
    ComponentInstance instance = nullptr;
    VornPluginDataHandlerComponent* handler = nullptr; // the instance's storage
    DataHScheduleRecord schedule{};
    char buffer[4096] = {};

private:
    template <typename Parameter>
    static ComponentSlot Slot(Parameter parameter)
    {
        if constexpr (std::is_pointer_v<Parameter>) {
            return reinterpret_cast<ComponentSlot>(parameter);
        } else if constexpr (std::is_null_pointer_v<Parameter>) {
            return 0;
        } else {
            return static_cast<ComponentSlot>(parameter);
        }
    }
};

} // namespace test
