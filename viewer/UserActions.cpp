// SPDX-License-Identifier: MIT
#include "viewer/UserActions.h"

#include <algorithm>
#include <utility>

namespace viewer
{
namespace
{

// How long a user holds the button down.
constexpr SInt64 kClickDuration = 50'000;

// From the left the bar has a volume button and the play button.
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
    return {static_cast<SInt16>(drawn.bottom - kControllerSpareRows - kControllerBarHeight / 2),
            static_cast<SInt16>(drawn.left + kButtonWidth + kButtonWidth / 2)};
}

UserActions::UserActions(Page& page, std::vector<UserEvent> events, bool playMovies)
    : page_(page), events_(std::move(events)), playMovies_(playMovies)
{
    std::stable_sort(events_.begin(), events_.end(),
                     [](const UserEvent& a, const UserEvent& b) { return a.at < b.at; });
}

bool UserActions::SendDue(SInt64 now)
{
    const auto isDue = [&] { return next_ < events_.size() && events_[next_].at <= now; };
    bool any = false;
    while (isDue() && IsPossible(events_[next_])) {
        SendReleases(events_[next_].at);
        Send(events_[next_++], now);
        any = true;
    }
    nextWaits_ = isDue();
    return SendReleases(now) || any;
}

// Images take no keys: the movie that was clicked last, else the first object that is no image.
EmbeddedObject* UserActions::KeyTaker() const
{
    const auto& objects = page_.Objects();
    const auto first = std::find_if(objects.begin(), objects.end(),
                                    [](const auto& each) { return !each->IsImage(); });
    return focus_ == nullptr && first != objects.end() ? first->get() : focus_;
}

// A place without an object may get one as long as the layout is not final.
bool UserActions::IsPossible(const UserEvent& event) const
{
    if (event.kind == UserEvent::Kind::kKey) {
        return KeyTaker() == nullptr || !KeyTaker()->MayAppear();
    }
    const EmbeddedObject* const object = page_.ObjectAt(event.where);
    return (object != nullptr && object->WasDisplayed()) ||
           std::none_of(page_.Objects().begin(), page_.Objects().end(),
                        [](const auto& each) { return each->MayAppear(); });
}

bool UserActions::PlayNewMovies()
{
    bool any = false;
    for (const auto& object : page_.Objects()) {
        if (playMovies_ && object->WasDisplayed() && object->Bundle()->PlaysMovies() &&
            std::exchange(played_[object.get()], object->TimesStarted()) !=
                object->TimesStarted()) {
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
    if (next_ < events_.size() && !nextWaits_) {
        next = events_[next_].at;
    }
    if (!releases_.empty()) {
        next = std::min(next.value_or(INT64_MAX), releases_.front().at);
    }
    return next;
}

void UserActions::Send(const UserEvent& event, SInt64 now)
{
    if (event.kind == UserEvent::Kind::kClick) {
        Press(event, now);
    } else {
        PressKey(event);
    }
}

bool UserActions::SendReleases(SInt64 now)
{
    bool any = false;
    while (!releases_.empty() && releases_.front().at <= now) {
        const Release release = releases_.front();
        releases_.erase(releases_.begin());
        page_.Click(*release.object, MakeEvent(mouseUp, 0, release.where, true));
        any = true;
    }
    return any;
}

// There is one button: it is let go before it is pressed again.
void UserActions::Press(const UserEvent& event, SInt64 now)
{
    SendReleases(INT64_MAX);
    EmbeddedObject* const object = page_.ObjectAt(event.where);
    if (object == nullptr) {
        return;
    }
    page_.Click(*object, MakeEvent(mouseDown, 0, event.where, false));
    if (object->IsImage()) {
        return; // it would take the release for another click
    }
    focus_ = object;
    releases_.push_back({now + kClickDuration, object, event.where});
}

void UserActions::PressKey(const UserEvent& event)
{
    if (EmbeddedObject* const object = KeyTaker()) {
        EventRecord key = MakeEvent(keyDown, event.character, {}, true);
        key.modifiers = static_cast<UInt16>(key.modifiers | event.modifiers);
        page_.Click(*object, key);
    }
}

} // namespace viewer
