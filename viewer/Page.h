// SPDX-License-Identifier: MIT
//
// The page: its objects in reading order, where they stand, and the port they draw in.
#pragma once

#include "viewer/EmbeddedObject.h"

#include <memory>
#include <vector>

namespace viewer
{

// Knows nothing of where the port is shown and how time passes: whoever runs the page calls
// IdleObjects, DrawChanges and ObserveObjects after each round of yields.
class Page
{
public:
    // Throws std::runtime_error if there is no memory for the port.
    Page(SInt16 width, SInt16 height);
    // The objects must have been freed.
    ~Page();
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    EmbeddedObject& Add(std::unique_ptr<EmbeddedObject> object);
    const std::vector<std::unique_ptr<EmbeddedObject>>& Objects() const { return objects_; }
    CGrafPtr Port() const { return port_; }

    // Gives every object time.
    void IdleObjects();
    // Lays the page out again if an object told its size, and draws what is new.
    void DrawChanges();
    // Notes what came of the round.
    void ObserveObjects();
    // How many objects with a size lie below the page's end, and where the lowest of them ends.
    struct Below {
        int objects = 0;
        SInt16 bottom = 0;
    };
    Below LookBelow() const;
    SInt16 Width() const { return width_; }
    // The object at a place of the page, null for none.
    EmbeddedObject* ObjectAt(Point place) const;
    // Offers an event to an object; true if it took it.
    bool Click(EmbeddedObject& object, const EventRecord& event);
    // Frees the plug-in objects in order. Their decoding must have ended.
    void FreeObjects();

private:
    void LayOut();
    void MoveObject(EmbeddedObject& object, const Rect& area);
    void DrawNewRows();
    void Display(EmbeddedObject& object, const Rect& clip);
    void PreparePort(const Rect& clip);
    void Fill(const Rect& rect, UInt8 grey);
    void DrawPlaceholder(const Rect& area);

    SInt16 width_;
    CGrafPtr port_ = nullptr;
    RgnHandle clip_ = nullptr;
    std::vector<std::unique_ptr<EmbeddedObject>> objects_;
    bool laidOut_ = false;
    SInt64 nextRowsDraw_ = 0;
};

} // namespace viewer
