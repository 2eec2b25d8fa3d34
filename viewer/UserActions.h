// SPDX-License-Identifier: MIT
//
// A user who was written down beforehand: clicks and keys at given times.
#pragma once

#include "viewer/Options.h"
#include "viewer/Page.h"

#include <optional>
#include <set>
#include <vector>

namespace viewer
{

class UserActions
{
public:
    // `playMovies`: clicks the play button of each movie as soon as its controller is there.
    UserActions(Page& page, std::vector<UserEvent> events, bool playMovies);

    // Does what is due by the page's clock.
    void SendDue(SInt64 now);
    // Clicks the play buttons that have appeared. Answers whether there were any.
    bool PlayNewMovies();
    // When something is due next.
    std::optional<SInt64> NextTime() const;

private:
    struct Release {
        SInt64 at;
        EmbeddedObject* object;
        Point where;
    };
    void Send(const UserEvent& event);
    void SendReleases(SInt64 now);
    void Press(const UserEvent& event);
    void PressKey(const UserEvent& event);

    Page& page_;
    std::vector<UserEvent> events_; // in the order of their times
    size_t next_ = 0;
    std::vector<Release> releases_; // buttons that are held down, in order
    bool playMovies_;
    std::set<const EmbeddedObject*> played_;
    EmbeddedObject* focus_ = nullptr; // takes the keys
};

// The middle of the play button of a movie that is drawn in that rectangle.
Point PlayButtonOf(const Rect& drawn);

} // namespace viewer
