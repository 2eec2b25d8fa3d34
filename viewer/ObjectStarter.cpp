// SPDX-License-Identifier: MIT
#include "viewer/ObjectStarter.h"

#include "toolbox/Errors.h"
#include "toolbox/events/Events.h"

#include <algorithm>

namespace viewer
{
namespace
{

// Enough to know a type by its first bytes.
constexpr SInt32 kBytesToStartWith = 512;
// How far a stream is read before its object is let in.
constexpr SInt32 kReadAhead = 1 << 20;

} // namespace

ObjectStarter::ObjectStarter(const Page& page, const PluginFolder& plugins, Unfold unfold)
    : plugins_(plugins), unfold_(std::move(unfold))
{
    for (const auto& bundle : plugins.Bundles()) {
        gates_.push_back({bundle.get(), {}, nullptr, false});
    }
    for (const auto& object : page.Objects()) {
        if (object->CurrentState() == EmbeddedObject::State::kWaiting) {
            Enqueue(*object, -1);
        }
    }
}

void ObjectStarter::Step()
{
    for (Gate& gate : gates_) {
        Judge(gate);
    }
    for (auto it = waiting_.begin(); it != waiting_.end();) {
        const bool isDocument = it->look == DocumentLook::kDocument;
        it->object->Bytes().Pump(isDocument ? INT32_MAX : kReadAhead);
        it = TryToUnfold(*it) || TryToStart(*it) ? waiting_.erase(it) : std::next(it);
    }
}

// A document is read as a whole: what is in it, and where, shows at its end only.
bool ObjectStarter::TryToUnfold(Waiting& waiting)
{
    EmbeddedObject& object = *waiting.object;
    if (waiting.look == DocumentLook::kNotYetKnown) {
        waiting.look = LookForDocument(object);
    }
    if (waiting.look != DocumentLook::kDocument || !object.Bytes().IsAtEnd()) {
        return false;
    }
    for (EmbeddedObject* const each : unfold_(object)) {
        Enqueue(*each, -1);
    }
    ++steps_;
    return true;
}

bool ObjectStarter::IsDone() const
{
    return waiting_.empty() && std::none_of(gates_.begin(), gates_.end(),
                                            [](const Gate& gate) { return gate.takingOut; });
}

std::optional<SInt64> ObjectStarter::NextDeadline() const
{
    std::optional<SInt64> next;
    for (const Gate& gate : gates_) {
        if (gate.admission.Current() == Admission::State::kOpening && IsAnyWorthStarting()) {
            const SInt64 stallsAt = gate.admission.StallsAt();
            next = next ? std::min(*next, stallsAt) : stallsAt;
        }
    }
    return next;
}

void ObjectStarter::Judge(Gate& gate)
{
    if (gate.takingOut) {
        FinishTakingOut(gate);
        return;
    }
    if (gate.opening == nullptr) {
        return;
    }
    EmbeddedObject& object = *gate.opening;
    gate.admission.Judge({object.HasDimensions(), object.IdleFailed(), object.IsSettled(),
                          object.Bytes().HandedOut()},
                         ToolboxMicroseconds());
    if (gate.admission.Current() == Admission::State::kFree) {
        gate.opening = nullptr;
    } else if (gate.admission.Current() == Admission::State::kStalled && IsAnyWorthStarting()) {
        TakeOut(gate);
    }
}

void ObjectStarter::TakeOut(Gate& gate)
{
    gate.takingOut = true;
    gate.opening->Cancel();
    ++steps_;
}

// It goes to the end of the queue, to be made anew with the bytes it has and those to come.
void ObjectStarter::FinishTakingOut(Gate& gate)
{
    EmbeddedObject& object = *gate.opening;
    if (!object.IsSettled()) {
        return;
    }
    object.Free();
    object.WaitAgain();
    Enqueue(object, object.Bytes().Arrived());
    gate.admission.End();
    gate.opening = nullptr;
    gate.takingOut = false;
    ++steps_;
}

// Answers whether the object has left the queue. A bundle whose gate is shut is asked later.
bool ObjectStarter::TryToStart(Waiting& waiting)
{
    if (!HasBytesToStartWith(waiting) || (!HasNewBytes(waiting) && IsAnyWorthStarting())) {
        return false;
    }
    waiting.object->LearnType(plugins_);
    bool allDeclined = true;
    for (size_t i = 0; i < gates_.size(); ++i) {
        if (!waiting.declined[i] && gates_[i].opening != nullptr) {
            allDeclined = false;
        } else if (!waiting.declined[i]) {
            if (waiting.object->IsAcceptedBy(*gates_[i].bundle)) {
                Start(waiting, gates_[i]);
                return true;
            }
            waiting.declined[i] = true;
        }
    }
    if (allDeclined) {
        waiting.object->GiveUpUnknownType();
        ++steps_;
    }
    return allDeclined;
}

void ObjectStarter::Start(Waiting& waiting, Gate& gate)
{
    waiting.object->Start(*gate.bundle);
    ++steps_;
    const bool started = waiting.object->CurrentState() != EmbeddedObject::State::kGivenUp;
    if (started && gate.bundle->PlaysMovies()) {
        gate.opening = waiting.object;
        gate.admission.Begin(ToolboxMicroseconds());
    }
}

void ObjectStarter::Enqueue(EmbeddedObject& object, SInt32 bytesWhenTakenOut)
{
    waiting_.push_back({&object, std::vector<bool>(gates_.size(), false), bytesWhenTakenOut});
}

bool ObjectStarter::IsAnyWorthStarting() const
{
    return std::any_of(waiting_.begin(), waiting_.end(), [](const Waiting& waiting) {
        return HasBytesToStartWith(waiting) && HasNewBytes(waiting);
    });
}

bool ObjectStarter::HasBytesToStartWith(const Waiting& waiting)
{
    const ObjectBytes& bytes = waiting.object->Bytes();
    return waiting.look == DocumentLook::kNoDocument &&
           (bytes.Arrived() >= kBytesToStartWith || bytes.IsAtEnd());
}

// An object that was taken out would only stall again while no byte has come.
bool ObjectStarter::HasNewBytes(const Waiting& waiting)
{
    const ObjectBytes& bytes = waiting.object->Bytes();
    return bytes.Arrived() > waiting.bytesWhenTakenOut || bytes.IsAtEnd();
}

} // namespace viewer
