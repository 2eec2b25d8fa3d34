// SPDX-License-Identifier: MIT
#include "viewer/HeadlessRun.h"

#include "viewer/Console.h"
#include "viewer/ObjectDrag.h"
#include "viewer/StopRequest.h"
#include "viewer/ViewerPart.h"

#include <algorithm>
#include <chrono>

namespace viewer
{
namespace
{

constexpr SInt64 kMicrosecondsPerSecond = 1'000'000;
constexpr SInt64 kMicrosecondsPerMillisecond = 1000;
// The toolbox may say that it needs time now and yet have nothing to show for it; after so many
// rounds the clock goes on.
constexpr int kMostQuietRounds = 1000;
// A thread may take one turn to get to where its next one shows.
constexpr int kQuietRoundsAtRest = 2;
// How long a wait inside a bundle may take.
constexpr SInt64 kShortWait = 5000;

SInt64 RealMicroseconds()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::string DescribeHidden(const Page::Below& below)
{
    const auto count = [](int objects, const char* one, const char* several) {
        const std::string number = std::to_string(objects);
        return objects == 0 ? "" : ", " + number + " " + (objects == 1 ? one : several);
    };
    return count(below.cut, "object is cut off", "objects are cut off") +
           count(below.objects, "object lies below", "objects lie below");
}

} // namespace

HeadlessRun::HeadlessRun(const Options& options, const PluginFolder& plugins)
    : options_(options), work_(options, plugins, *this), snapshots_(options.snapshots)
{
}

PageReport HeadlessRun::Run()
{
    const CGrafPtr port = work_.ThePage().Port();
    MakeTextWriter();
    work_.ThePage().DrawChanges();
    while (true) {
        FinishInstant();
        while (work_.User().SendDue(clock_.Now())) {
            FinishInstant(); // what the user does has its effect at once
        }
        snapshots_.TakeDue(port, clock_.Now());
        if (IsOver()) {
            break;
        }
        ShowProgress();
        MoveClock();
    }
    snapshots_.TakeLast(port);
    dragFailed_ = !options_.drag.path.empty() && !DragOut(work_.ThePage(), options_.drag);
    PageReport report = work_.MakeReport();
    TellOutcome();
    work_.EndObjects();
    MeasureProcess(report);
    return report;
}

// Rounds of work until nothing moves any more at this instant.
void HeadlessRun::FinishInstant()
{
    int quietRounds = 0;
    PageWork::Mark before = work_.Look();
    while (quietRounds < kQuietRoundsAtRest ||
           (PageWork::IsToolboxBusy() && quietRounds < kMostQuietRounds)) {
        MakeTextWriter();
        work_.DoRound();
        const PageWork::Mark after = work_.Look();
        quietRounds = after == before ? quietRounds + 1 : 0;
        before = after;
        ShowProgress();
    }
    if (text_ != nullptr) {
        text_->Update();
    }
}

// Once there is text, and not before: most pages have none, and need neither the libraries nor the
// room for it. It stands where it does in a window.
void HeadlessRun::MakeTextWriter()
{
    Page& page = work_.ThePage();
    if (isTextWriterSought_ || options_.info || page.Texts().Blocks().empty()) {
        return;
    }
    isTextWriterSought_ = true;
    try {
        const ViewerPart part("VornText");
        part.Find<decltype(VornMakeTextWriter)>("VornMakeTextWriter")(page, text_);
        textProblem_ = "there is no font";
    } catch (const PartMissing& problem) {
        textProblem_ = problem.what();
    }
    if (text_ != nullptr) {
        page.SetStyle(StyleWithText(), Page::Height::kStays);
    }
}

bool HeadlessRun::IsOver()
{
    if (StopWasAsked() || (options_.until && clock_.Now() >= *options_.until)) {
        return true;
    }
    return !options_.until && !work_.User().NextTime() && !snapshots_.NextTime() &&
           work_.IsLoaded() && !work_.IsAnyPlaying();
}

void HeadlessRun::MoveClock()
{
    const SInt64 next = NextInstant();
    if (WaitsForStream()) {
        WaitForStreams(std::min(next, clock_.Now() + kTickMicroseconds));
    } else {
        clock_.AdvanceTo(next);
    }
}

SInt64 HeadlessRun::NextInstant()
{
    const SInt64 now = clock_.Now();
    const SInt64 tick = NextTickAfter(now);
    SInt64 next = options_.until.value_or(INT64_MAX);
    const auto consider = [&](std::optional<SInt64> time) {
        next = std::min(next, time.value_or(INT64_MAX));
    };
    if (const SInt64 deadline = NextToolboxDeadline(); deadline >= 0) {
        consider(deadline > now ? deadline : tick);
    }
    if (!work_.IsLoaded()) {
        consider(tick); // bytes arrive with every tick
    }
    consider(work_.ThePage().NextTime());
    consider(work_.User().NextTime());
    consider(snapshots_.NextTime());
    consider(work_.Starter().NextDeadline());
    return next == INT64_MAX ? tick : std::max(next, now + 1);
}

// Lets as much time pass on the page's clock as it takes until bytes come, or less.
void HeadlessRun::WaitForStreams(SInt64 until)
{
    std::vector<pollfd> streams = work_.AwaitedStreams();
    const SInt64 start = RealMicroseconds();
    const SInt64 milliseconds =
        (until - clock_.Now() + kMicrosecondsPerMillisecond - 1) / kMicrosecondsPerMillisecond;
    poll(streams.data(), streams.size(), static_cast<int>(milliseconds));
    clock_.AdvanceTo(std::min(until, clock_.Now() + RealMicroseconds() - start));
}

void HeadlessRun::LetTimePass()
{
    if (WaitsForStream()) {
        WaitForStreams(clock_.Now() + kShortWait);
    } else {
        clock_.AdvanceTo(clock_.Now() + kTickMicroseconds);
    }
}

void HeadlessRun::ShowProgress()
{
    if (Console::IsProgressDue()) {
        Console::ShowProgress(work_.DescribeProgress() + ", at " +
                              std::to_string(clock_.Now() / kMicrosecondsPerSecond) + " s");
    }
}

void HeadlessRun::TellOutcome()
{
    work_.TellOutcome();
    if (!options_.info) {
        TellWhatIsBelow();
        TellOfTextNotDrawn();
    }
}

// What is cut off matters to who looks at the page only.
void HeadlessRun::TellWhatIsBelow() const
{
    const Page& page = work_.ThePage();
    const Page::Below below = page.LookBelow();
    const int cut = options_.snapshots.empty() ? 0 : below.cut;
    const bool isTextBelow = text_ != nullptr && page.Texts().Bottom() > options_.height;
    if (below.objects == 0 && cut == 0 && !isTextBelow) {
        return;
    }
    const int bottom = isTextBelow ? page.ContentHeight() : below.bottom;
    const int hidden = bottom - options_.height;
    Console::Tell("", "the page is " + std::to_string(hidden) + (hidden == 1 ? " row" : " rows") +
                          " higher than what is shown of it" + DescribeHidden(below) + "; --size " +
                          std::to_string(page.Width()) + "x" + std::to_string(bottom) +
                          " shows all");
}

void HeadlessRun::TellOfTextNotDrawn() const
{
    const size_t texts = work_.ThePage().Texts().Blocks().size();
    if (texts > 0 && text_ == nullptr) {
        Console::Tell("", std::to_string(texts) +
                              (texts == 1 ? " paragraph of text is" : " paragraphs of text are") +
                              " not drawn: " + textProblem_);
    }
}

} // namespace viewer
