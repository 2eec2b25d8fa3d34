// SPDX-License-Identifier: MIT
#include "toolbox/components/Components.h"

#include "toolbox/Errors.h"
#include "toolbox/components/BuiltIns.h"
#include "toolbox/probe/Announce.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

using toolbox::Announce;
using toolbox::BuiltInRegistration;
using toolbox::CountInLedger;

struct ComponentRecord {
    ComponentDescription description;
    ComponentRoutineUPP routine;
};

struct ComponentInstanceRecord {
    Component component;
    void* storage = nullptr;
};

namespace
{

// Never destroyed: components may still be closed while the process ends.
struct Registry {
    std::vector<std::unique_ptr<ComponentRecord>> components; // in the order of registration
    // Asked at every call, so that a page with many movies does not make each of them slower.
    std::unordered_map<ComponentInstance, std::unique_ptr<ComponentInstanceRecord>> instances;
    std::vector<BuiltInRegistration> builtIns; // not yet run
    bool registeringBuiltIns = false;
};

Registry& TheRegistry()
{
    static auto& registry = *new Registry;
    return registry;
}

auto FindRegistered(Component component)
{
    auto& components = TheRegistry().components;
    return std::find_if(components.begin(), components.end(),
                        [component](const auto& held) { return held.get() == component; });
}

bool IsRegistered(Component component)
{
    return FindRegistered(component) != TheRegistry().components.end();
}

bool IsOpen(ComponentInstance instance)
{
    return TheRegistry().instances.contains(instance);
}

void RegisterBuiltIns()
{
    Registry& registry = TheRegistry();
    registry.registeringBuiltIns = true;
    for (const BuiltInRegistration registration : std::exchange(registry.builtIns, {})) {
        registration();
    }
    registry.registeringBuiltIns = false;
}

// The system has its own components at all times: nobody hears of their registration.
OSErr AnnounceRegistration(const char* operation)
{
    return TheRegistry().registeringBuiltIns ? OSErr{noErr} : Announce(operation);
}

bool FitsCode(OSType wanted, OSType offered)
{
    return wanted == 0 || wanted == offered;
}

bool Fits(const ComponentDescription& wanted, const ComponentDescription& offered)
{
    return FitsCode(wanted.componentType, offered.componentType) &&
           FitsCode(wanted.componentSubType, offered.componentSubType) &&
           FitsCode(wanted.componentManufacturer, offered.componentManufacturer) &&
           ((wanted.componentFlags ^ offered.componentFlags) & wanted.componentFlagsMask) == 0;
}

ComponentResult Send(ComponentInstance instance, ComponentParameters& params)
{
    if (!IsOpen(instance)) {
        return badComponentInstance;
    }
    return instance->component->routine(&params, instance->storage);
}

ComponentResult SendSelector(ComponentInstance instance, SInt16 selector)
{
    ComponentParameters params{};
    params.what = selector;
    return Send(instance, params);
}

ComponentResult SendSelector(ComponentInstance instance, SInt16 selector, ComponentSlot slot)
{
    ComponentParameters params{};
    params.paramSize = 1;
    params.what = selector;
    params.params[0] = slot;
    return Send(instance, params);
}

void RemoveInstance(ComponentInstance instance)
{
    TheRegistry().instances.erase(instance);
    CountInLedger(kLiveComponentInstances, -1);
}

ComponentInstance AddInstance(Component component)
{
    auto made = std::make_unique<ComponentInstanceRecord>();
    made->component = component;
    const ComponentInstance instance = made.get();
    TheRegistry().instances.emplace(instance, std::move(made));
    CountInLedger(kLiveComponentInstances, 1);
    return instance;
}

// The instance is there while the component opens or closes it, and gone if it was not opened.
OSErr Open(Component component, ComponentInstance* instance)
{
    const ComponentInstance made = AddInstance(component);
    std::unique_ptr<ComponentInstanceRecord, void (*)(ComponentInstance)> guard(made,
                                                                                RemoveInstance);
    const ComponentResult result =
        SendSelector(made, kComponentOpenSelect, reinterpret_cast<ComponentSlot>(made));
    if (result == noErr) {
        *instance = guard.release();
    }
    return static_cast<OSErr>(result);
}

// A procInfo has the result's code in bits 4 and 5 and the storage's in bits 6 and 7.
size_t SlotsOf(ProcInfoType procInfo)
{
    size_t slots = 0;
    for (ProcInfoType codes = procInfo >> 8; (codes & 3) != 0; codes >>= 2) {
        ++slots;
    }
    return slots;
}

template <size_t>
using SlotAt = ComponentSlot;

using SlotCaller = ComponentResult (*)(ComponentFunction, void* storage, const ComponentSlot*);

// Calls a routine by its own type, that of a function with one slot for each index.
template <size_t... Index>
constexpr SlotCaller CallerFor(std::index_sequence<Index...>)
{
    const auto call = [](ComponentFunction function, void* storage,
                         [[maybe_unused]] const ComponentSlot* slots) {
        using Routine = ComponentResult (*)(void*, SlotAt<Index>...);
        return reinterpret_cast<Routine>(function)(storage, slots[Index]...);
    };
    return call;
}

template <size_t... Count>
constexpr auto CallersFor(std::index_sequence<Count...>)
{
    return std::array{CallerFor(std::make_index_sequence<Count>())...};
}

// By the number of slots.
constexpr auto kSlotCallers = CallersFor(std::make_index_sequence<kComponentMaxSlots + 1>());

} // namespace

void toolbox::AddBuiltInRegistration(BuiltInRegistration registration)
{
    TheRegistry().builtIns.push_back(registration);
}

ComponentRoutineUPP NewComponentRoutineUPP(ComponentRoutineProc routine)
{
    AnnounceRegistration("NewComponentRoutineUPP");
    return routine;
}

Component RegisterComponent(const ComponentDescription* description, ComponentRoutineUPP routine,
                            SInt16 /*global*/, Handle /*name*/, Handle /*info*/, Handle /*icon*/)
{
    if (AnnounceRegistration("RegisterComponent") != noErr || description == nullptr ||
        routine == nullptr) {
        return nullptr;
    }
    try {
        auto& components = TheRegistry().components;
        components.push_back(
            std::make_unique<ComponentRecord>(ComponentRecord{*description, routine}));
        return components.back().get();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

Component FindNextComponent(Component after, const ComponentDescription* looking)
{
    if (Announce("FindNextComponent") != noErr || looking == nullptr) {
        return nullptr;
    }
    RegisterBuiltIns();
    auto& components = TheRegistry().components;
    auto candidate = components.begin();
    if (after != nullptr) {
        candidate = FindRegistered(after);
        candidate += candidate != components.end() ? 1 : 0;
    }
    candidate = std::find_if(candidate, components.end(), [looking](const auto& offered) {
        return Fits(*looking, offered->description);
    });
    return candidate != components.end() ? candidate->get() : nullptr;
}

OSErr OpenAComponent(Component component, ComponentInstance* instance)
{
    const OSErr err = Announce("OpenAComponent");
    if (instance == nullptr) {
        return paramErr;
    }
    *instance = nullptr;
    if (err != noErr || !IsRegistered(component)) {
        return err != noErr ? err : OSErr{paramErr};
    }
    try {
        return Open(component, instance);
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
}

OSErr CloseComponent(ComponentInstance instance)
{
    if (const OSErr err = Announce("CloseComponent")) {
        return err;
    }
    if (!IsOpen(instance)) {
        return static_cast<OSErr>(badComponentInstance);
    }
    const std::unique_ptr<ComponentInstanceRecord, void (*)(ComponentInstance)> guard(
        instance, RemoveInstance);
    return static_cast<OSErr>(
        SendSelector(instance, kComponentCloseSelect, reinterpret_cast<ComponentSlot>(instance)));
}

void SetComponentInstanceStorage(ComponentInstance instance, void* storage)
{
    Announce("SetComponentInstanceStorage");
    if (IsOpen(instance)) {
        instance->storage = storage;
    }
}

ComponentResult CallComponentTarget(ComponentInstance instance, ComponentInstance target)
{
    if (const OSErr err = Announce("CallComponentTarget")) {
        return err;
    }
    return SendSelector(instance, kComponentTargetSelect, reinterpret_cast<ComponentSlot>(target));
}

ComponentResult CallComponentCanDo(ComponentInstance instance, SInt16 selector)
{
    if (Announce("CallComponentCanDo") != noErr) {
        return 0;
    }
    return SendSelector(instance, kComponentCanDoSelect, selector);
}

ComponentResult CallComponentVersion(ComponentInstance instance)
{
    if (const OSErr err = Announce("CallComponentVersion")) {
        return err;
    }
    return SendSelector(instance, kComponentVersionSelect);
}

ComponentResult DelegateComponentCall(ComponentParameters* params, ComponentInstance instance)
{
    if (const OSErr err = Announce("DelegateComponentCall")) {
        return err;
    }
    return params != nullptr ? Send(instance, *params) : paramErr;
}

ComponentResult CallComponentFunctionWithStorageProcInfo(void* storage, ComponentParameters* params,
                                                         ComponentFunction function,
                                                         ProcInfoType procInfo)
{
    if (const OSErr err = Announce("CallComponentFunctionWithStorageProcInfo")) {
        return err;
    }
    if (params == nullptr || function == nullptr || procInfo == 0) {
        return badComponentSelector;
    }
    const size_t slots = SlotsOf(procInfo);
    return slots < kSlotCallers.size() ? kSlotCallers[slots](function, storage, params->params)
                                       : ComponentResult{badComponentSelector};
}

ComponentResult CallComponent(ComponentInstance instance, ComponentParameters* params)
{
    if (const OSErr err = Announce("CallComponent")) {
        return err;
    }
    return params != nullptr ? Send(instance, *params) : paramErr;
}
