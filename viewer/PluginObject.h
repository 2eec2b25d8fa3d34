// SPDX-License-Identifier: MIT
//
// An object inside a bundle, called through the bundle's entry points.
#pragma once

#include "viewer/ObjectDescription.h"

namespace viewer
{

class EmbeddedObject;

// What its movies do during a call from the application thread is counted for `owner`, which also
// gets the calls that come back. Before it is made, calls change nothing.
class PluginObject
{
public:
    explicit PluginObject(EmbeddedObject& owner) : owner_(owner) {}
    // It must have been freed.
    ~PluginObject();
    PluginObject(const PluginObject&) = delete;
    PluginObject& operator=(const PluginObject&) = delete;

    OSErr Make(const PluginBundle& bundle, const ObjectDescription& description);
    bool IsMade() const { return plugin_ != nullptr; }
    // On a thread of its own; returns when all bytes are in.
    OSErr Decode();
    void Display(const Rect& area);
    // Asks nothing of the bundle where they are what they were.
    void SetDisplayFlags(UInt32 flags);
    OSErr Idle(const Rect& area);
    bool Click(const Rect& area, const EventRecord& event);
    // Adds what it can be dragged as, with its image, to the drag. The current port is the page's.
    // In any case followed by CleanUpDrag.
    OSErr PrepareDrag(const Rect& area, DragRef drag, UInt32 item);
    void CleanUpDrag();
    // Its data, a handle that passes to the caller or null, and their type.
    OSErr GetData(OSType& type, Handle& data);
    // Where in the area it draws.
    Rect DrawnRect(const Rect& area) const;
    std::string Comment() const;
    // After its decoding has returned.
    void Free();

    // The bundle it was last made by, also if that failed; null before.
    const PluginBundle* Bundle() const { return bundle_; }
    void ForgetBundle() { bundle_ = nullptr; }

private:
    EmbeddedObject& owner_;
    const PluginBundle* bundle_ = nullptr;
    VornPlugin* plugin_ = nullptr;
    UInt32 displayFlags_ = 0;
};

} // namespace viewer
