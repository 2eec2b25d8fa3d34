// SPDX-License-Identifier: MIT
//
// A user who was written down beforehand: clicks and keys at given times.
#pragma once

#include "viewer/Options.h"
#include "viewer/Page.h"

#include <map>
#include <optional>
#include <vector>

namespace viewer
{

class UserActions
{
public:
    // `playMovies`: clicks the play button of each movie as soon as its controller is there.
    UserActions(Page& page, std::vector<UserEvent> events, bool playMovies);

    // Does what is due by the page's clock. What finds no object waits as long as one may still
    // appear, and what comes behind it waits too. Answers whether anything was done.
    bool SendDue(SInt64 now);
    // Clicks the play buttons that have appeared. Answers whether there were any.
    bool PlayNewMovies();
    // When something is due next; what waits for an object has no time.
    std::optional<SInt64> NextTime() const;
    // What was not done.
    size_t CountLeft() const { return events_.size() - next_; }

private:
    struct Release {
        SInt64 at;
        EmbeddedObject* object;
        Point where;
    };
    EmbeddedObject* KeyTaker() const;
    bool IsPossible(const UserEvent& event) const;
    void Send(const UserEvent& event, SInt64 now);
    bool SendReleases(SInt64 now);
    void Press(const UserEvent& event, SInt64 now);
    void PressKey(const UserEvent& event);

    Page& page_;
    std::vector<UserEvent> events_; // in the order of their times
    size_t next_ = 0;
    bool nextWaits_ = false;
    std::vector<Release> releases_; // buttons that are held down, in order
    bool playMovies_;
    std::map<const EmbeddedObject*, int> played_; // how often each had been made by then
    EmbeddedObject* focus_ = nullptr;             // the movie that was clicked last
};

// The middle of the play button of a movie that is drawn in that rectangle.
Point PlayButtonOf(const Rect& drawn);

} // namespace viewer
