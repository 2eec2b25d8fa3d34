// SPDX-License-Identifier: MIT
//
// The standard movie controller: the picture and, below it, a bar of 16 pixels with, from the
// left, a volume button, play or pause, a slider with the loaded part and a thumb, one step back,
// one step forward.
#pragma once

#include "toolbox/quicktime/Movies.h"

#include <optional>

// Where the parts of the bar are. A part for which a narrow bar has no room is empty: first the
// steps give way, then the slider, then the volume; play is always there.
struct ControllerLayout {
    static constexpr SInt16 kBarHeight = 16;
    static constexpr SInt16 kButtonWidth = 16;
    static constexpr SInt16 kThumbWidth = 8;
    static constexpr SInt16 kLeastSliderWidth = 3 * kThumbWidth;

    explicit ControllerLayout(const Rect& bounds);
    // The thumb's left edge for a share of the movie between 0 and 1, and the share for a place.
    SInt16 ThumbAt(double share) const;
    double ShareAt(SInt16 h) const;

    Rect picture{};
    Rect bar{};
    Rect volume{};
    Rect play{};
    Rect slider{};
    Rect stepBack{};
    Rect stepForward{};
};

struct MovieControllerRecord {
public:
    MovieControllerRecord(Movie movie, const Rect& box);
    ~MovieControllerRecord();
    MovieControllerRecord(const MovieControllerRecord&) = delete;
    MovieControllerRecord& operator=(const MovieControllerRecord&) = delete;

    const Rect& Bounds() const { return bounds_; }
    void SetBounds(const Rect& bounds);
    void SetClip(RgnHandle clip);
    // Draws picture and bar.
    void Draw();
    // A slice for the movie; then what has changed in the bar is drawn, if it ever was.
    void Idle();
    bool HandleEvent(const EventRecord& event);
    bool IsFor(Movie movie) const { return movie_ == movie; }

private:
    // What the bar shows; drawn again when it differs.
    struct Face {
        bool isPlaying = false;
        SInt16 thumb = 0;
        SInt16 loadedEnd = 0;
        int volume = 0;
        bool operator==(const Face&) const = default;
    };
    Face CurrentFace() const;
    void DrawBar(const Face& face);
    void DrawVolume(const Face& face, CGrafPort& port);
    void DrawPlay(const Face& face, CGrafPort& port);
    void DrawSlider(const Face& face, CGrafPort& port);
    void DrawStep(const Rect& box, bool isForward, CGrafPort& port);
    Point PlaceInPort(Point onScreen) const;
    bool Press(Point at);
    void DragTo(Point at);
    bool HandleKey(char key, UInt16 modifiers);
    void Seek(SInt32 seconds);
    void TogglePlaying();

    Movie movie_;
    Rect bounds_{};
    ControllerLayout layout_;
    std::optional<Face> drawn_; // none before the first draw action
    bool isDragging_ = false;
    bool wasPlaying_ = false; // before the drag
};
