// SPDX-License-Identifier: MIT
#include "viewer/UserActions.h"

#include <algorithm>

namespace viewer
{
namespace
{

// How long a user holds the button down.
constexpr SInt64 kClickDuration = 50'000;

// The controller of a movie: a bar of 16 pixels with a spare row below it, and from the left a
// volume button and the play button of 16 pixels each.
constexpr SInt16 kBarHeight = 16;
constexpr SInt16 kSpareRows = 1;
constexpr SInt16 kButtonWidth = 16;

EventRecord MakeEvent(UInt16 what, UInt32 message, Point where, bool buttonIsUp)
{
    EventRecord event{};
    event.what = what;
    event.message = message;
    event.when = TickCount();
    event.where = where;
    event.modifiers = buttonIsUp ? UInt16{btnState} : UInt16{0};
    return event;
}

} // namespace

Point PlayButtonOf(const Rect& drawn)
{
    return {static_cast<SInt16>(drawn.bottom - kSpareRows - kBarHeight / 2),
            static_cast<SInt16>(drawn.left + kButtonWidth + kButtonWidth / 2)};
}

UserActions::UserActions(Page& page, std::vector<UserEvent> events, bool playMovies)
    : page_(page), events_(std::move(events)), playMovies_(playMovies)
{
    std::stable_sort(events_.begin(), events_.end(),
                     [](const UserEvent& a, const UserEvent& b) { return a.at < b.at; });
    if (!page_.Objects().empty()) {
        focus_ = page_.Objects().front().get();
    }
}

void UserActions::SendDue(SInt64 now)
{
    while (next_ < events_.size() && events_[next_].at <= now) {
        SendReleases(events_[next_].at);
        Send(events_[next_++]);
    }
    SendReleases(now);
}

bool UserActions::PlayNewMovies()
{
    bool any = false;
    for (const auto& object : page_.Objects()) {
        if (playMovies_ && object->WasDisplayed() && object->Bundle()->PlaysMovies() &&
            played_.insert(object.get()).second) {
            const Point where = PlayButtonOf(object->DrawnRect());
            page_.Click(*object, MakeEvent(mouseDown, 0, where, false));
            page_.Click(*object, MakeEvent(mouseUp, 0, where, true));
            any = true;
        }
    }
    return any;
}

std::optional<SInt64> UserActions::NextTime() const
{
    std::optional<SInt64> next;
    if (next_ < events_.size()) {
        next = events_[next_].at;
    }
    if (!releases_.empty()) {
        next = std::min(next.value_or(INT64_MAX), releases_.front().at);
    }
    return next;
}

void UserActions::Send(const UserEvent& event)
{
    if (event.kind == UserEvent::Kind::kClick) {
        Press(event);
    } else {
        PressKey(event);
    }
}

void UserActions::SendReleases(SInt64 now)
{
    while (!releases_.empty() && releases_.front().at <= now) {
        const Release release = releases_.front();
        releases_.erase(releases_.begin());
        page_.Click(*release.object, MakeEvent(mouseUp, 0, release.where, true));
    }
}

void UserActions::Press(const UserEvent& event)
{
    EmbeddedObject* const object = page_.ObjectAt(event.where);
    if (object == nullptr) {
        return;
    }
    focus_ = object;
    page_.Click(*object, MakeEvent(mouseDown, 0, event.where, false));
    releases_.push_back({event.at + kClickDuration, object, event.where});
}

void UserActions::PressKey(const UserEvent& event)
{
    if (focus_ != nullptr) {
        page_.Click(*focus_, MakeEvent(keyDown, event.character, {}, true));
    }
}

} // namespace viewer
