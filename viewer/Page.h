// SPDX-License-Identifier: MIT
//
// The page: its objects in reading order, where they stand, and the port they draw in.
#pragma once

#include "viewer/EmbeddedObject.h"
#include "viewer/PagePort.h"
#include "viewer/PageTexts.h"

#include <memory>
#include <vector>

namespace viewer
{

// Objects, and paragraphs that count them from the first of these.
struct PageContent {
    std::vector<std::unique_ptr<EmbeddedObject>> objects;
    std::vector<TextBlock> texts;
};

// Knows nothing of where the port is shown and how time passes: whoever runs the page calls
// IdleObjects, DrawChanges and ObserveObjects after each round of yields.
class Page
{
public:
    // Throws std::runtime_error if there is no memory for the port.
    Page(SInt16 width, SInt16 height);
    // The objects must have been freed.
    ~Page() = default;
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    EmbeddedObject& Add(std::unique_ptr<EmbeddedObject> object);
    void Add(PageContent content);
    // Puts something else into the place of an object that has not been started. The object leaves
    // the page, but stays where it is in memory: somebody may still point to it. Answers the new
    // ones.
    std::vector<EmbeddedObject*> Replace(const EmbeddedObject& object, PageContent content);
    const std::vector<std::unique_ptr<EmbeddedObject>>& Objects() const { return objects_; }
    // What stands above, between and below the objects.
    PageTexts& Texts() { return texts_; }
    const PageTexts& Texts() const { return texts_; }
    CGrafPtr Port() const { return port_.Get(); }

    // The part of the page that can be seen; all of it if nobody says so. Images elsewhere stand
    // still, movies go on playing.
    void SetView(const Rect& view) { view_ = view; }
    // How often images are given time (in every tick, if nobody says so).
    void SetIdleRhythm(IdleRhythm::Kind rhythm) { rhythm_ = rhythm; }
    // Gives time to every object that needs it.
    void IdleObjects();
    // When images need time or want to draw, however often IdleObjects is called until then. May
    // have passed.
    std::optional<SInt64> NextTime() const;
    // Lays the page out again if an object told its size, and draws what is new.
    void DrawChanges();
    // Where the port has changed since the last call.
    std::vector<Rect> TakeChanges() { return port_.TakeChanges(); }
    // Notes what came of the round.
    void ObserveObjects();
    // How many objects with a size lie below the page's end, how many it cuts off, and where the
    // lowest of them ends.
    struct Below {
        int objects = 0;
        int cut = 0;
        SInt16 bottom = 0;
    };
    Below LookBelow() const;
    SInt16 Width() const { return width_; }
    // Where the last paragraph, or the last object with its caption, ends with its margin.
    SInt16 ContentHeight() const { return contentHeight_; }

    // What is left free, and whether the port grows with the page. Everything is laid out anew.
    enum class Height { kStays, kGrows };
    void SetStyle(const PageStyle& style, Height height);
    const PageStyle& Style() const { return style_; }
    // How an object stands on a page that has no other, and no text: in its row, in the window's
    // middle, or there and as large as the window lets it be.
    enum class Single { kInRow, kInMiddle, kFitted };
    // The size of the window, how much the objects are enlarged, and the only one that is shown,
    // as large as the window (null: all are).
    struct Shape {
        SInt16 width = 0;
        SInt16 height = 0;
        double zoom = 1;
        const EmbeddedObject* alone = nullptr;
        Single single = Single::kInRow;
        bool operator==(const Shape&) const = default;
    };
    const Shape& CurrentShape() const { return shape_; }
    // How much the objects are enlarged: the shape's zoom, or what makes the only one fit.
    double Zoom() const;
    // The page's only object stands in its middle.
    bool HasObjectInMiddle() const;
    void Reshape(const Shape& shape);
    // How often objects were given their places.
    int CountLayouts() const { return layouts_; }
    // For what the page shows besides its objects: the port's pixels, of which that part counts as
    // changed.
    UInt8* PixelsToDraw(const Rect& changed, SInt32& rowBytes)
    {
        return port_.PixelsToDraw(changed, rowBytes);
    }
    // Gives a part of the page its background again.
    void Wipe(const Rect& rect);
    // The object at a place of the page, null for none.
    EmbeddedObject* ObjectAt(Point place) const;
    // Offers an event to an object; true if it took it.
    bool Click(EmbeddedObject& object, const EventRecord& event);
    // Frees the plug-in objects in order. Their decoding must have ended.
    void FreeObjects();

private:
    void LayOut();
    PagePlaces Place();
    PagePlaces PlaceAll();
    PagePlaces PlaceInMiddle(EmbeddedObject& object);
    Rect PlaceAlone(const EmbeddedObject& object) const;
    void HoldUpTo(int end);
    void FitPort();
    Rect Surroundings(const Rect& area) const;
    void WipeOldPlace(const EmbeddedObject& object, const Rect& area, const Rect& caption);
    void MoveObject(EmbeddedObject& object, const Rect& area);
    void DrawNewRows();
    void Display(EmbeddedObject& object, const Rect& clip);
    void DrawPlaceholder(const Rect& area);
    void Idle(EmbeddedObject& object, SInt64 now);
    bool IsInView(const EmbeddedObject& object) const;

    SInt16 width_;
    PagePort port_; // outlives the objects
    std::vector<std::unique_ptr<EmbeddedObject>> replaced_;
    std::vector<std::unique_ptr<EmbeddedObject>> objects_;
    PageTexts texts_;
    bool laidOut_ = false;
    PageStyle style_;
    bool grows_ = false;
    Shape shape_;
    int layouts_ = 0;
    SInt16 contentHeight_ = 0;
    Rect view_;
    IdleRhythm::Kind rhythm_ = IdleRhythm::Kind::kEveryTick;
    SInt64 nextRowsDraw_ = 0;
};

} // namespace viewer
