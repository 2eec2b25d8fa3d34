// SPDX-License-Identifier: MIT
#include "viewer/window/PageInput.h"

#include "viewer/Rects.h"
#include "viewer/window/KeysPanel.h"

#include <algorithm>
#include <utility>

namespace viewer
{
namespace
{

constexpr SInt32 kScrollStep = 48;
constexpr double kZoomStep = 1.25;
constexpr UInt32 kMouseMoved = UInt32{kMouseMovedMessage} << 24;

UInt8 CharacterOf(SDL_Keycode key)
{
    switch (key) {
    case SDLK_SPACE:
        return kSpaceCharCode;
    case SDLK_LEFT:
        return kLeftArrowCharCode;
    case SDLK_RIGHT:
        return kRightArrowCharCode;
    case SDLK_UP:
        return kUpArrowCharCode;
    case SDLK_DOWN:
        return kDownArrowCharCode;
    default:
        return key > SDLK_SPACE && key < SDLK_DELETE ? static_cast<UInt8>(key) : UInt8{0};
    }
}

// What a key that is held down does again and again: what goes on by steps.
bool MayRepeat(SDL_Keycode key)
{
    constexpr SDL_Keycode kSteps[] = {SDLK_LEFT,    SDLK_RIGHT,    SDLK_UP,       SDLK_DOWN,
                                      SDLK_PAGEUP,  SDLK_PAGEDOWN, SDLK_PLUS,     SDLK_EQUALS,
                                      SDLK_KP_PLUS, SDLK_MINUS,    SDLK_KP_MINUS, SDLK_TAB};
    return std::find(std::begin(kSteps), std::end(kSteps), key) != std::end(kSteps);
}

} // namespace

void PageInput::Handle(const SDL_Event& event)
{
    switch (event.type) {
    case SDL_QUIT:
        wantsToQuit_ = true;
        break;
    case SDL_WINDOWEVENT:
        HandleWindow(event.window);
        break;
    case SDL_MOUSEBUTTONDOWN:
        Press(event.button);
        break;
    case SDL_MOUSEMOTION:
        Move(event.motion);
        break;
    case SDL_MOUSEBUTTONUP:
        Release(event.button);
        break;
    case SDL_MOUSEWHEEL:
        Roll(event.wheel);
        break;
    case SDL_KEYDOWN:
        if (event.key.repeat == 0 || MayRepeat(event.key.keysym.sym)) {
            HandleKey(event.key.keysym, event.key.repeat != 0);
        }
        break;
    default:
        break;
    }
}

void PageInput::HandleWindow(const SDL_WindowEvent& event)
{
    if (event.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
        if (fit_.TakeWindowSize()) {
            ShowKeys();
        }
    } else if (event.event == SDL_WINDOWEVENT_EXPOSED) {
        window_.Invalidate();
    } else if (event.event == SDL_WINDOWEVENT_CLOSE) {
        wantsToQuit_ = true;
    }
}

EventRecord PageInput::MakeEvent(UInt16 what, UInt32 message, Point where) const
{
    EventRecord event{};
    event.what = what;
    event.message = message;
    event.when = TickCount();
    event.where = where;
    const SDL_Keymod keys = SDL_GetModState();
    const auto modifier = [&](int held, int bit) { return (keys & held) != 0 ? bit : 0; };
    const bool isDown = what == mouseDown || (pressed_ != nullptr && what != mouseUp);
    event.modifiers =
        static_cast<UInt16>((isDown ? 0 : btnState) | modifier(KMOD_SHIFT, shiftKey) |
                            modifier(KMOD_ALT, optionKey) | modifier(KMOD_CTRL | KMOD_GUI, cmdKey));
    return event;
}

void PageInput::Press(const SDL_MouseButtonEvent& button)
{
    if (button.button != SDL_BUTTON_LEFT) {
        return;
    }
    if (keysAreShown_) {
        ToggleKeys();
        return;
    }
    if (window_.IsOnScrollBar(button.x)) {
        isScrolling_ = true;
        window_.ScrollBarTo(button.y);
        return;
    }
    const Point where = window_.ToPage(button.x, button.y);
    EmbeddedObject* const object = page_.ObjectAt(where);
    SetFocus(object);
    if (object == nullptr) {
        return;
    }
    const bool isOnBar = object->Bundle() != nullptr && object->Bundle()->PlaysMovies() &&
                         where.v >= object->DrawnRect().bottom - kControllerRows;
    page_.Click(*object, MakeEvent(mouseDown, 0, where));
    pressed_ = object;
    if (button.clicks == 2 && !isOnBar && object->HasDimensions()) {
        page_.Click(*object, MakeEvent(mouseUp, 0, where));
        pressed_ = nullptr;
        ShowAlone(page_.CurrentShape().alone == nullptr ? object : nullptr);
    }
}

void PageInput::Move(const SDL_MouseMotionEvent& motion)
{
    if (isScrolling_) {
        window_.ScrollBarTo(motion.y);
    } else if (pressed_ != nullptr) {
        page_.Click(*pressed_, MakeEvent(osEvt, kMouseMoved, window_.ToPage(motion.x, motion.y)));
    }
}

void PageInput::Release(const SDL_MouseButtonEvent& button)
{
    if (button.button != SDL_BUTTON_LEFT) {
        return;
    }
    isScrolling_ = false;
    if (EmbeddedObject* const object = std::exchange(pressed_, nullptr)) {
        page_.Click(*object, MakeEvent(mouseUp, 0, window_.ToPage(button.x, button.y)));
    }
}

void PageInput::Roll(const SDL_MouseWheelEvent& wheel)
{
    if ((SDL_GetModState() & KMOD_CTRL) != 0) {
        fit_.ZoomBy(wheel.y > 0 ? kZoomStep : 1 / kZoomStep);
        return;
    }
    wheelRest_ += static_cast<double>(wheel.preciseY) * kScrollStep;
    const auto pixels = static_cast<SInt32>(wheelRest_);
    wheelRest_ -= pixels;
    window_.ScrollTo(window_.Top() - pixels);
}

void PageInput::HandleKey(const SDL_Keysym& key, bool isRepeated)
{
    if (HandleCommand(key) || OfferKey(key.sym, isRepeated)) {
        return;
    }
    HandleScrolling(key.sym);
}

bool PageInput::HandleCommand(const SDL_Keysym& key)
{
    switch (key.sym) {
    case SDLK_q:
        wantsToQuit_ = true;
        return true;
    case SDLK_F1:
        ToggleKeys();
        return true;
    case SDLK_ESCAPE:
        Leave();
        return true;
    case SDLK_TAB:
        MoveFocus((key.mod & KMOD_SHIFT) != 0 ? -1 : 1);
        return true;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
    case SDLK_F11:
        ShowAlone(page_.CurrentShape().alone == nullptr ? ObjectToSave() : nullptr);
        return true;
    case SDLK_PLUS:
    case SDLK_EQUALS:
    case SDLK_KP_PLUS:
        fit_.ZoomBy(kZoomStep);
        return true;
    case SDLK_MINUS:
    case SDLK_KP_MINUS:
        fit_.ZoomBy(1 / kZoomStep);
        return true;
    case SDLK_0:
    case SDLK_KP_0:
        fit_.ResetZoom();
        return true;
    case SDLK_s:
        wish_ = Wish::kSavePicture;
        return true;
    case SDLK_p:
        wish_ = Wish::kSavePage;
        return true;
    default:
        return false;
    }
}

bool PageInput::HandleScrolling(SDL_Keycode key)
{
    const SInt32 screen = std::max<SInt32>(kScrollStep, window_.Height() - kScrollStep);
    switch (key) {
    case SDLK_UP:
        window_.ScrollTo(window_.Top() - kScrollStep);
        return true;
    case SDLK_DOWN:
        window_.ScrollTo(window_.Top() + kScrollStep);
        return true;
    case SDLK_PAGEUP:
        window_.ScrollTo(window_.Top() - screen);
        return true;
    case SDLK_PAGEDOWN:
        window_.ScrollTo(window_.Top() + screen);
        return true;
    case SDLK_HOME:
        window_.ScrollTo(0);
        return true;
    case SDLK_END:
        window_.ScrollTo(INT16_MAX);
        return true;
    default:
        return false;
    }
}

// An object that has no use for a key says so.
bool PageInput::OfferKey(SDL_Keycode key, bool isRepeated)
{
    const UInt8 character = CharacterOf(key);
    EmbeddedObject* const object = character == 0 ? nullptr : KeyTaker(character);
    const bool isTaken =
        object != nullptr &&
        page_.Click(*object, MakeEvent(isRepeated ? autoKey : keyDown, character, {}));
    if (isTaken && (key == SDLK_LEFT || key == SDLK_RIGHT)) {
        sought_ = object;
    }
    return isTaken;
}

// Without a focus, keys that are of no use to the page are for the first movie that can be seen.
EmbeddedObject* PageInput::KeyTaker(UInt8 character) const
{
    const bool isForMovie = character == kSpaceCharCode || character == kLeftArrowCharCode ||
                            character == kRightArrowCharCode;
    if (focus_ != nullptr || !isForMovie) {
        return focus_;
    }
    for (const auto& object : page_.Objects()) {
        const bool isSeen = !IsEmpty(Intersection(object->Area(), window_.View()));
        if (isSeen && object->HasDimensions() && object->Bundle()->PlaysMovies()) {
            return object.get();
        }
    }
    return nullptr;
}

void PageInput::MoveFocus(int step)
{
    const auto& objects = page_.Objects();
    if (objects.empty() || page_.CurrentShape().alone != nullptr) {
        return;
    }
    const auto count = static_cast<int>(objects.size());
    const auto found = std::find_if(objects.begin(), objects.end(),
                                    [&](const auto& each) { return each.get() == focus_; });
    const int start = found != objects.end() ? static_cast<int>(found - objects.begin())
                      : step > 0             ? -1
                                             : count;
    const int next = (start + step + count) % count;
    SetFocus(objects[static_cast<size_t>(next)].get());
    Rect shown = focus_->Area();
    const PageStyle& style = page_.Style();
    shown.top = static_cast<SInt16>(shown.top - style.margin);
    shown.bottom = static_cast<SInt16>(std::min(shown.bottom + style.captionHeight, INT16_MAX));
    window_.ScrollToShow(shown);
}

void PageInput::SetFocus(EmbeddedObject* object)
{
    focus_ = object;
}

void PageInput::Leave()
{
    if (keysAreShown_) {
        ToggleKeys();
    } else if (page_.CurrentShape().alone != nullptr) {
        ShowAlone(nullptr);
    } else {
        SetFocus(nullptr);
    }
}

void PageInput::ShowAlone(EmbeddedObject* object)
{
    if (object == page_.CurrentShape().alone || (object != nullptr && !object->HasDimensions())) {
        return;
    }
    if (object != nullptr) {
        topBeforeAlone_ = window_.Top();
        focus_ = object;
    }
    if (fit_.ShowAlone(object)) {
        ShowKeys();
    }
    page_.DrawChanges();
    window_.SetContentHeight(page_.ContentHeight());
    window_.ScrollTo(object != nullptr ? 0 : topBeforeAlone_);
}

void PageInput::ToggleKeys()
{
    keysAreShown_ = !keysAreShown_;
    ShowKeys();
}

void PageInput::ShowKeys()
{
    window_.ShowPanel(keysAreShown_ ? MakeKeysPanel({window_.Width(), window_.Height()})
                                    : PageWindow::Panel());
}

std::optional<PageInput::Wish> PageInput::TakeWish()
{
    return std::exchange(wish_, std::nullopt);
}

EmbeddedObject* PageInput::ObjectToSave() const
{
    if (focus_ != nullptr) {
        return focus_;
    }
    for (const auto& object : page_.Objects()) {
        if (object->HasDimensions() && !IsEmpty(Intersection(object->Area(), window_.View()))) {
            return object.get();
        }
    }
    return nullptr;
}

} // namespace viewer
