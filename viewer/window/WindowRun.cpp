// SPDX-License-Identifier: MIT
#include "viewer/window/WindowRun.h"

#include "viewer/ObjectDrag.h"
#include "viewer/PageClock.h"
#include "viewer/StopRequest.h"
#include "viewer/window/ObjectState.h"
#include "viewer/window/OpeningSize.h"

#include <algorithm>
#include <utility>

namespace viewer
{
namespace
{

constexpr SInt64 kMicrosecondsPerMillisecond = 1000;
constexpr int kQuietRoundsAtRest = 2;
// The toolbox may need several turns for something to show; after so many it can wait a little.
constexpr int kMostQuietRounds = 50;
// The longest stretch of work without a look at what the user does.
constexpr SInt64 kLongestWork = 8000;
// Captions tell of progress, which nobody reads faster than this …
constexpr SInt64 kCaptionInterval = 100'000;
// … and they can wait this long for something else to wake the loop.
constexpr SInt64 kCaptionPatience = 100'000;
// How long a wait inside a bundle may take, in milliseconds.
constexpr int kShortWait = 5;
// What was saved where.
constexpr SInt64 kTimeToRead = 5'000'000;
// A time.
constexpr SInt64 kTimeToGlance = 2'000'000;

const StreamWatch* gWatch = nullptr;

void WakeWatch()
{
    if (const StreamWatch* const watch = gWatch) {
        watch->Wake();
    }
}

std::string TitleOf(const Options& options)
{
    const std::string& first = options.objects.front().location;
    const std::string name = NameToShow(first, first.substr(first.rfind('/') + 1));
    const size_t others = options.objects.size() - 1;
    return name + (others == 0 ? "" : " and " + std::to_string(others) + " more") + " - vornview";
}

bool CountsOnPlaces(const Options& options)
{
    const auto isClick = [](const UserEvent& event) {
        return event.kind == UserEvent::Kind::kClick;
    };
    return !options.snapshots.empty() ||
           std::any_of(options.events.begin(), options.events.end(), isClick);
}

} // namespace

WindowRun::WindowRun(const Options& options, const PluginFolder& plugins)
    : options_(options), window_(TitleOf(options), options.width, options.height),
      wakeEvent_(SDL_RegisterEvents(1)), watch_(wakeEvent_),
      sound_(options.wavPath.empty() ? std::make_unique<SoundDevice>() : nullptr),
      work_(options, plugins, *this), captions_(work_.ThePage()), paragraphs_(work_.ThePage()),
      fit_(work_.ThePage(), window_, !CountsOnPlaces(options)),
      input_(work_.ThePage(), window_, fit_), saver_(work_.ThePage(), options.picturesFolder),
      notice_(window_), snapshots_(options.snapshots),
      mayFitWindow_(!options.sizeIsGiven && !CountsOnPlaces(options))
{
    Page& page = work_.ThePage();
    page.SetStyle(StyleWithText(), Page::Height::kGrows);
    page.SetIdleRhythm(IdleRhythm::Kind::kSlackening);
    fit_.Open({options.width, options.height},
              mayFitWindow_ ? Page::Single::kInMiddle : Page::Single::kInRow, 1);
    gWatch = &watch_;
    SetStopAlarm(WakeWatch);
}

WindowRun::~WindowRun()
{
    SetStopAlarm(nullptr);
    gWatch = nullptr;
}

PageReport WindowRun::Run()
{
    work_.ThePage().DrawChanges();
    while (true) {
        HandleEvents();
        DoRounds();
        Show();
        FitWindow();
        snapshots_.TakeDue(work_.ThePage().Port(), clock_.Now());
        if (IsOver()) {
            break;
        }
        Sleep();
    }
    snapshots_.TakeLast(work_.ThePage().Port());
    dragFailed_ = !options_.drag.path.empty() && !DragOut(work_.ThePage(), options_.drag);
    PageReport report = work_.MakeReport();
    work_.TellOutcome();
    work_.EndObjects();
    MeasureProcess(report);
    return report;
}

void WindowRun::HandleEvents()
{
    SDL_Event event;
    while (mayHaveEvents_ && SDL_PollEvent(&event) != 0) {
        input_.Handle(event);
        quietRounds_ = 0;
        captionsAreStale_ = true;
        captionsDue_ = 0;
    }
    mayHaveEvents_ = true;
    HandleWish();
    if (work_.User().SendDue(clock_.Now())) {
        quietRounds_ = 0;
    }
}

void WindowRun::HandleWish()
{
    const std::optional<PageInput::Wish> wish = input_.TakeWish();
    if (wish) {
        const std::string told = wish == PageInput::Wish::kSavePicture
                                     ? saver_.SavePicture(input_.ObjectToSave())
                                     : saver_.SavePage();
        notice_.Show(told, clock_.Now() + kTimeToRead);
    }
    const EmbeddedObject* const sought = input_.TakeSought();
    if (sought != nullptr && work_.ThePage().CurrentShape().alone == sought) {
        notice_.Show(DescribeTime(sought->Statistics()), clock_.Now() + kTimeToGlance);
    }
}

// As long as anything moves, but not so long that the user would feel it. The first picture of all
// is what he waits for.
void WindowRun::DoRounds()
{
    work_.ThePage().SetView(window_.View());
    const SInt64 end = clock_.Now() + kLongestWork;
    do {
        DoRound();
    } while (!IsAtRest() && clock_.Now() < end && !std::exchange(hasFirstPicture_, false));
    if (sound_ != nullptr) {
        sound_->Tend(clock_);
    }
}

void WindowRun::DoRound()
{
    PageWork::Mark before = work_.Look();
    work_.DoRound();
    const PageWork::Mark after = work_.Look();
    hasFirstPicture_ = before.pictures == 0 && after.pictures > 0;
    before.soundFrames = after.soundFrames; // sound comes with every microsecond that passes
    quietRounds_ = after == before ? quietRounds_ + 1 : 0;
    captionsAreStale_ = captionsAreStale_ || quietRounds_ == 0;
}

// While objects are decoded, a thread may take one turn to get to where its next one shows.
bool WindowRun::IsAtRest() const
{
    if (PageWork::IsToolboxBusy()) {
        return quietRounds_ >= kMostQuietRounds;
    }
    return work_.IsLoaded() || quietRounds_ >= kQuietRoundsAtRest;
}

void WindowRun::Show()
{
    Page& page = work_.ThePage();
    window_.SetContentHeight(page.ContentHeight());
    paragraphs_.Update();
    const SInt64 now = clock_.Now();
    captionsAreStale_ = captionsAreStale_ || work_.IsAnyPlaying(); // they tell the time
    if (captionsAreStale_ && now >= captionsDue_) {
        captions_.Update(input_.Focus());
        captionsAreStale_ = false;
        captionsDue_ = now + kCaptionInterval;
    }
    notice_.Tend(now);
    window_.Present(page.Port(), page.TakeChanges());
}

// An object that is all there is gets a window of its size. Not before it is shown as the window
// is: that would come later.
void WindowRun::FitWindow()
{
    const Page& page = work_.ThePage();
    const auto& objects = page.Objects();
    if (!mayFitWindow_ || objects.size() != 1 || !objects[0]->WasDisplayed()) {
        return;
    }
    mayFitWindow_ = false;
    const Page::Shape& shape = page.CurrentShape();
    const bool isAsOpened = shape.width == options_.width && shape.height == options_.height &&
                            shape.zoom == 1 && shape.alone == nullptr;
    if (!isAsOpened || !page.Texts().Blocks().empty()) {
        return;
    }
    const EmbeddedObject& object = *objects[0];
    const OpeningSize opening =
        OpeningSizeFor(object.NaturalSize(), object.RowsOfController(), object.MayScale(),
                       window_.RoomOnScreen(), page.Style());
    window_.Resize(opening.window);
    fit_.Open(opening.window, Page::Single::kInMiddle, opening.zoom);
}

bool WindowRun::IsOver() const
{
    return input_.WantsToQuit() || StopWasAsked() ||
           (options_.until && clock_.Now() >= *options_.until);
}

void WindowRun::Sleep()
{
    if (!IsAtRest()) {
        return;
    }
    watch_.Watch(work_.AwaitedStreams());
    const SInt64 next = NextInstant();
    if (next == INT64_MAX) {
        mayHaveEvents_ = SDL_WaitEvent(nullptr) != 0;
        return;
    }
    const SInt64 wait = clock_.RealDuration(next - clock_.Now());
    const SInt64 milliseconds =
        (wait + kMicrosecondsPerMillisecond - 1) / kMicrosecondsPerMillisecond;
    const auto timeout = static_cast<int>(std::clamp<SInt64>(milliseconds, 1, INT32_MAX));
    mayHaveEvents_ = SDL_WaitEventTimeout(nullptr, timeout) != 0;
}

// By the page's clock; the highest number for none.
SInt64 WindowRun::NextInstant() const
{
    const SInt64 now = clock_.Now();
    SInt64 next = options_.until.value_or(INT64_MAX);
    const auto consider = [&](std::optional<SInt64> time) {
        next = std::min(next, time.value_or(INT64_MAX));
    };
    if (const SInt64 deadline = NextToolboxDeadline(); deadline >= 0) {
        consider(deadline);
    }
    consider(work_.ThePage().NextTime());
    consider(const_cast<PageWork&>(work_).User().NextTime());
    consider(snapshots_.NextTime());
    consider(notice_.NextTime());
    if (captionsAreStale_) {
        consider(captionsDue_ + kCaptionPatience);
    }
    consider(work_.Starter().NextDeadline());
    if (sound_ != nullptr && sound_->NextTime()) {
        consider(now + std::max<SInt64>(0, *sound_->NextTime() - WindowClock::RealNow()));
    }
    // Bytes arrive with every tick; and where nobody is waited for, something is to be done.
    if (!work_.IsLoaded() && (IsAnyPaced() || work_.AwaitedStreams().empty())) {
        consider(now + kTickMicroseconds);
    }
    return next;
}

bool WindowRun::IsAnyPaced() const
{
    const auto& objects = work_.ThePage().Objects();
    return std::any_of(objects.begin(), objects.end(), [](const auto& each) {
        return each->HasBytes() && each->Bytes().IsPaced() && !each->IsSettled();
    });
}

void WindowRun::LetTimePass()
{
    std::vector<pollfd> streams = work_.AwaitedStreams();
    poll(streams.data(), streams.size(), kShortWait);
    SDL_PumpEvents();
}

} // namespace viewer
