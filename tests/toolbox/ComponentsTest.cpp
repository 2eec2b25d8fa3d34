// SPDX-License-Identifier: MIT
#include "toolbox/components/Components.h"

#include "tests/toolbox/FailingOperations.h"
#include "toolbox/Errors.h"
#include "toolbox/components/BuiltIns.h"
#include "toolbox/probe/Probe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace
{

using testing::ElementsAre;

constexpr OSType kTestType = FOUR_CHARS('t', 'e', 's', 't');

ComponentDescription Description(OSType subType, OSType manufacturer = 0, UInt32 flags = 0,
                                 UInt32 mask = 0)
{
    return {kTestType, subType, manufacturer, flags, mask};
}

struct Call {
    SInt16 what;
    UInt8 paramSize;
    ComponentSlot first;
    void* storage;

    bool operator==(const Call&) const = default;
};

std::vector<Call> gCalls;
ComponentResult gAnswer = 0;

// Notes every call and answers gAnswer.
ComponentResult NotingRoutine(ComponentParameters* params, void* storage)
{
    gCalls.push_back({params->what, params->paramSize, params->params[0], storage});
    return gAnswer;
}

Component Register(const ComponentDescription& description,
                   ComponentRoutineProc routine = NotingRoutine)
{
    return RegisterComponent(&description, NewComponentRoutineUPP(routine), 0, nullptr, nullptr,
                             nullptr);
}

std::vector<Component> FindAll(const ComponentDescription& looking)
{
    std::vector<Component> found;
    Component component = nullptr;
    while ((component = FindNextComponent(component, &looking)) != nullptr) {
        found.push_back(component);
    }
    return found;
}

ComponentSlot SlotOf(const void* pointer)
{
    return reinterpret_cast<ComponentSlot>(pointer);
}

class Components : public testing::Test
{
protected:
    Components()
    {
        gCalls.clear();
        gAnswer = 0;
    }
    ~Components() override { SetToolboxObserver(nullptr, nullptr); }

    ComponentInstance Open()
    {
        static const Component component = Register(Description(FOUR_CHARS('n', 'o', 't', 'e')));
        ComponentInstance instance = nullptr;
        EXPECT_EQ(noErr, OpenAComponent(component, &instance));
        gCalls.clear();
        return instance;
    }
};

TEST_F(Components, AreFoundInTheOrderOfTheirRegistration)
{
    const OSType subType = FOUR_CHARS('o', 'r', 'd', 'r');
    const Component first = Register(Description(subType));
    const Component second = Register(Description(subType));
    EXPECT_THAT(FindAll(Description(subType)), ElementsAre(first, second));
}

TEST_F(Components, ZeroFieldsFitAnything)
{
    const OSType manufacturer = FOUR_CHARS('z', 'e', 'r', 'o');
    const Component component = Register(Description(FOUR_CHARS('a', 'n', 'y', ' '), manufacturer));
    EXPECT_THAT(FindAll({0, 0, manufacturer, 0, 0}), ElementsAre(component));
    EXPECT_THAT(FindAll(Description(FOUR_CHARS('o', 't', 'h', 'r'), manufacturer)), ElementsAre());
}

TEST_F(Components, FlagsAreComparedUnderTheMask)
{
    const OSType subType = FOUR_CHARS('f', 'l', 'a', 'g');
    const Component reading = Register(Description(subType, 0, 1));
    const Component writing = Register(Description(subType, 0, 2));
    EXPECT_THAT(FindAll(Description(subType, 0, 1, 1)), ElementsAre(reading));
    EXPECT_THAT(FindAll(Description(subType, 0, 0, 1)), ElementsAre(writing));
    EXPECT_THAT(FindAll(Description(subType, 0, 3, 0)), ElementsAre(reading, writing));
}

TEST_F(Components, WithoutDescriptionOrRoutineAreNotRegistered)
{
    const ComponentDescription description = Description(0);
    EXPECT_EQ(nullptr, RegisterComponent(nullptr, NotingRoutine, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(nullptr, RegisterComponent(&description, nullptr, 0, nullptr, nullptr, nullptr));
}

TEST_F(Components, OpeningSendsTheInstanceToItself)
{
    const Component component = Register(Description(FOUR_CHARS('o', 'p', 'e', 'n')));
    ComponentInstance instance = nullptr;
    EXPECT_EQ(noErr, OpenAComponent(component, &instance));
    EXPECT_THAT(gCalls, ElementsAre(Call{kComponentOpenSelect, 1, SlotOf(instance), nullptr}));
    CloseComponent(instance);
}

TEST_F(Components, AFailedOpenLeavesNoInstance)
{
    const Component component = Register(Description(FOUR_CHARS('f', 'a', 'i', 'l')));
    const SInt32 before = CountLiveObjects(kLiveComponentInstances);
    gAnswer = -108;
    ComponentInstance instance = nullptr;
    EXPECT_EQ(-108, OpenAComponent(component, &instance));
    EXPECT_EQ(nullptr, instance);
    EXPECT_EQ(before, CountLiveObjects(kLiveComponentInstances));
}

TEST_F(Components, AThrowingOpenLeavesNoInstance)
{
    const Component component =
        Register(Description(FOUR_CHARS('t', 'h', 'r', 'w')),
                 [](ComponentParameters*, void*) -> ComponentResult { throw OSErr{-50}; });
    const SInt32 before = CountLiveObjects(kLiveComponentInstances);
    ComponentInstance instance = nullptr;
    EXPECT_THROW(OpenAComponent(component, &instance), OSErr);
    EXPECT_EQ(before, CountLiveObjects(kLiveComponentInstances));
}

TEST_F(Components, AnUnknownComponentIsNotOpened)
{
    ComponentInstance instance = nullptr;
    EXPECT_EQ(paramErr, OpenAComponent(nullptr, &instance));
}

TEST_F(Components, TheStorageThatWasSetComesWithEveryLaterCall)
{
    const ComponentInstance instance = Open();
    int storage = 0;
    SetComponentInstanceStorage(instance, &storage);
    CallComponentVersion(instance);
    EXPECT_THAT(gCalls, ElementsAre(Call{kComponentVersionSelect, 0, 0, &storage}));
    CloseComponent(instance);
}

TEST_F(Components, ClosingSendsTheInstanceAndReturnsTheComponentsResult)
{
    const SInt32 before = CountLiveObjects(kLiveComponentInstances);
    const ComponentInstance instance = Open();
    gAnswer = -7;
    EXPECT_EQ(-7, CloseComponent(instance));
    EXPECT_THAT(gCalls, ElementsAre(Call{kComponentCloseSelect, 1, SlotOf(instance), nullptr}));
    EXPECT_EQ(before, CountLiveObjects(kLiveComponentInstances));
}

TEST_F(Components, AClosedInstanceTakesNoCalls)
{
    const ComponentInstance instance = Open();
    CloseComponent(instance);
    gCalls.clear();
    ComponentParameters params{};
    EXPECT_EQ(badComponentInstance, CallComponent(instance, &params));
    EXPECT_EQ(static_cast<OSErr>(badComponentInstance), CloseComponent(instance));
    EXPECT_THAT(gCalls, ElementsAre());
}

TEST_F(Components, NullIsNoInstance)
{
    ComponentParameters params{};
    EXPECT_EQ(badComponentInstance, CallComponent(nullptr, &params));
    EXPECT_EQ(badComponentInstance, DelegateComponentCall(&params, nullptr));
    EXPECT_EQ(static_cast<OSErr>(badComponentInstance), CloseComponent(nullptr));
}

TEST_F(Components, TheTargetIsSentToTheInstance)
{
    const ComponentInstance instance = Open();
    const ComponentInstance target = Open();
    gAnswer = badComponentSelector;
    EXPECT_EQ(badComponentSelector, CallComponentTarget(instance, target));
    EXPECT_THAT(gCalls, ElementsAre(Call{kComponentTargetSelect, 1, SlotOf(target), nullptr}));
    gAnswer = 0;
    CloseComponent(target);
    CloseComponent(instance);
}

TEST_F(Components, AreAskedWhatTheyCanDo)
{
    const ComponentInstance instance = Open();
    gAnswer = 1;
    EXPECT_EQ(1, CallComponentCanDo(instance, 14));
    EXPECT_THAT(gCalls, ElementsAre(Call{kComponentCanDoSelect, 1, 14, nullptr}));
    gAnswer = 0;
    CloseComponent(instance);
}

TEST_F(Components, ADelegateGetsTheSameParametersWithItsOwnStorage)
{
    const ComponentInstance delegate = Open();
    int storage = 0;
    SetComponentInstanceStorage(delegate, &storage);
    ComponentParameters params{};
    params.what = 18;
    params.paramSize = 1;
    params.params[0] = 4711;
    gAnswer = -2000;
    EXPECT_EQ(-2000, DelegateComponentCall(&params, delegate));
    EXPECT_THAT(gCalls, ElementsAre(Call{18, 1, 4711, &storage}));
    gAnswer = 0;
    CloseComponent(delegate);
}

template <class... Slots>
ComponentResult SumOf(void* storage, Slots... slots)
{
    // Weighted, so that slots in another order give another sum.
    ComponentSlot weight = 1;
    ComponentSlot sum = *static_cast<ComponentSlot*>(storage);
    ((sum += slots * weight, weight *= 10), ...);
    return static_cast<ComponentResult>(sum);
}

template <class... Slots>
ComponentFunction SumRoutine()
{
    return reinterpret_cast<ComponentFunction>(&SumOf<Slots...>);
}

ComponentResult CallWithProcInfo(ComponentFunction function, ProcInfoType procInfo)
{
    ComponentSlot storage = 0;
    ComponentParameters params{};
    for (int slot = 0; slot < kComponentMaxSlots; ++slot) {
        params.params[slot] = slot + 1;
    }
    return CallComponentFunctionWithStorageProcInfo(&storage, &params, function, procInfo);
}

TEST(ComponentRoutines, GetAsManySlotsAsTheirProcInfoTells)
{
    using S = ComponentSlot;
    EXPECT_EQ(0, CallWithProcInfo(SumRoutine<>(), 0x0F0));
    EXPECT_EQ(1, CallWithProcInfo(SumRoutine<S>(), 0x3F0));
    EXPECT_EQ(21, CallWithProcInfo(SumRoutine<S, S>(), 0xFF0));
    EXPECT_EQ(321, CallWithProcInfo(SumRoutine<S, S, S>(), 0x3FF0));
    EXPECT_EQ(4321, CallWithProcInfo(SumRoutine<S, S, S, S>(), 0xFFF0));
    EXPECT_EQ(54321, CallWithProcInfo(SumRoutine<S, S, S, S, S>(), 0x3FFF0));
    EXPECT_EQ(654321, CallWithProcInfo(SumRoutine<S, S, S, S, S, S>(), 0xFFFF0));
    EXPECT_EQ(7654321, CallWithProcInfo(SumRoutine<S, S, S, S, S, S, S>(), 0x3FFFF0));
    EXPECT_EQ(87654321, CallWithProcInfo(SumRoutine<S, S, S, S, S, S, S, S>(), 0xFFFFF0));
}

TEST(ComponentRoutines, AnySizeCodeIsASlot)
{
    using S = ComponentSlot;
    EXPECT_EQ(1, CallWithProcInfo(SumRoutine<S>(), 0x2F0));
    EXPECT_EQ(21, CallWithProcInfo(SumRoutine<S, S>(), 0x7F0));
}

TEST(ComponentRoutines, KeepTheWholeWidthOfAPointerInASlot)
{
    ComponentParameters params{};
    params.params[0] = SlotOf(&params);
    const auto isSame = +[](void* storage, ComponentSlot slot) -> ComponentResult {
        return slot == SlotOf(storage);
    };
    EXPECT_EQ(1, CallComponentFunctionWithStorageProcInfo(
                     &params, &params, reinterpret_cast<ComponentFunction>(isSame), 0x3F0));
}

TEST(ComponentRoutines, WithoutProcInfoAreABadSelector)
{
    EXPECT_EQ(badComponentSelector, CallWithProcInfo(SumRoutine<>(), 0));
}

TEST(ComponentRoutines, WithMoreSlotsThanThereAreAreABadSelector)
{
    EXPECT_EQ(badComponentSelector, CallWithProcInfo(SumRoutine<>(), 0x3FFFFF0));
    EXPECT_EQ(badComponentSelector, CallWithProcInfo(SumRoutine<>(), 0xFFFFFFF0));
}

TEST_F(Components, ThatCannotBeRegisteredAreNull)
{
    const FailingOperations failing(-50);
    EXPECT_EQ(nullptr, Register(Description(FOUR_CHARS('n', 'o', 'n', 'e'))));
}

TEST_F(Components, ComponentsOfTheSystemAreThereBeforeTheFirstSearchUnheard)
{
    const OSType subType = FOUR_CHARS('b', 'u', 'i', 'l');
    toolbox::AddBuiltInRegistration([] { Register(Description(FOUR_CHARS('b', 'u', 'i', 'l'))); });
    static std::vector<std::string> heard;
    SetToolboxObserver(
        [](const char* operation, void*) {
            heard.emplace_back(operation);
            return OSErr{noErr};
        },
        nullptr);
    const ComponentDescription looking = Description(subType);
    EXPECT_NE(nullptr, FindNextComponent(nullptr, &looking));
    EXPECT_THAT(heard, ElementsAre("FindNextComponent"));
    EXPECT_EQ(1U, FindAll(looking).size());
}

} // namespace
