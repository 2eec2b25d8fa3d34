// SPDX-License-Identifier: MIT
//
// What the user does to the page with mouse and keyboard.
#pragma once

#include "viewer/Page.h"
#include "viewer/window/WindowFit.h"

#include <optional>
#include <utility>

namespace viewer
{

// Press, motion and release go to the object under the pointer; keys go to the one that has the
// focus, and to the page if that has no use for them.
class PageInput
{
public:
    PageInput(Page& page, PageWindow& window, WindowFit& fit)
        : page_(page), window_(window), fit_(fit)
    {
    }

    void Handle(const SDL_Event& event);

    const EmbeddedObject* Focus() const { return focus_; }
    bool WantsToQuit() const { return wantsToQuit_; }
    // What was asked for since the last call, to be done by others.
    enum class Wish { kSavePicture, kSavePage };
    std::optional<Wish> TakeWish();
    // The movie that a key has sent elsewhere since the last call, null for none.
    EmbeddedObject* TakeSought() { return std::exchange(sought_, nullptr); }
    // The object that S is meant for; null if there is none.
    EmbeddedObject* ObjectToSave() const;

private:
    void HandleWindow(const SDL_WindowEvent& event);
    void Press(const SDL_MouseButtonEvent& button);
    void Move(const SDL_MouseMotionEvent& motion);
    void Release(const SDL_MouseButtonEvent& button);
    void Roll(const SDL_MouseWheelEvent& wheel);

    void HandleKey(const SDL_Keysym& key, bool isRepeated);
    bool HandleCommand(const SDL_Keysym& key);
    bool HandleScrolling(SDL_Keycode key);
    bool OfferKey(SDL_Keycode key, bool isRepeated);
    EmbeddedObject* KeyTaker(UInt8 character) const;
    void MoveFocus(int step);
    void SetFocus(EmbeddedObject* object);
    void Leave();

    void ShowAlone(EmbeddedObject* object);
    void ToggleKeys();
    void ShowKeys();
    EventRecord MakeEvent(UInt16 what, UInt32 message, Point where) const;

    Page& page_;
    PageWindow& window_;
    WindowFit& fit_;
    EmbeddedObject* focus_ = nullptr;
    EmbeddedObject* pressed_ = nullptr; // takes motion and release
    EmbeddedObject* sought_ = nullptr;
    bool isScrolling_ = false; // by the scroll bar
    bool keysAreShown_ = false;
    bool wantsToQuit_ = false;
    double wheelRest_ = 0;
    SInt16 topBeforeAlone_ = 0;
    std::optional<Wish> wish_;
};

} // namespace viewer
