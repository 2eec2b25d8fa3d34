// SPDX-License-Identifier: MIT
//
// Brings the objects of a page to life: finds the bundle that shows each, and makes them in
// reading order as fast as the bundles' admissions allow.
#pragma once

#include "viewer/Admission.h"
#include "viewer/DocumentOpening.h"
#include "viewer/Page.h"

#include <functional>
#include <list>
#include <optional>
#include <vector>

namespace viewer
{

class ObjectStarter
{
public:
    // Puts what a document holds into its place on the page, and answers what is to be started.
    using Unfold = std::function<std::vector<EmbeddedObject*>(EmbeddedObject& document)>;
    // Takes the page's objects that wait. Both must outlive the starter.
    ObjectStarter(const Page& page, const PluginFolder& plugins, Unfold unfold);

    // To be called after each round of yields and an Idle. Starts what can be started, and takes
    // out an object that stalls while others could open.
    void Step();
    // No object waits, and none is being taken out.
    bool IsDone() const;
    // When Step has to be called again though nothing else happens.
    std::optional<SInt64> NextDeadline() const;
    // How often something was started or taken out: whether anything moves.
    SInt32 CountSteps() const { return steps_; }

private:
    struct Waiting {
        EmbeddedObject* object = nullptr;
        std::vector<bool> declined; // by each bundle
        SInt32 bytesWhenTakenOut = -1;
        DocumentLook look = DocumentLook::kNotYetKnown;
    };
    struct Gate {
        const PluginBundle* bundle = nullptr;
        Admission admission;
        EmbeddedObject* opening = nullptr;
        bool takingOut = false;
    };

    void Judge(Gate& gate);
    void TakeOut(Gate& gate);
    void FinishTakingOut(Gate& gate);
    bool TryToUnfold(Waiting& waiting);
    bool TryToStart(Waiting& waiting);
    void Start(Waiting& waiting, Gate& gate);
    void Enqueue(EmbeddedObject& object, SInt32 bytesWhenTakenOut);
    bool IsAnyWorthStarting() const;
    static bool HasBytesToStartWith(const Waiting& waiting);
    static bool HasNewBytes(const Waiting& waiting);

    const PluginFolder& plugins_;
    Unfold unfold_;
    std::vector<Gate> gates_;
    std::list<Waiting> waiting_;
    SInt32 steps_ = 0;
};

} // namespace viewer
