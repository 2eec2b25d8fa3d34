// SPDX-License-Identifier: MIT
#include "viewer/HeadlessRun.h"

#include "viewer/Console.h"
#include "viewer/PageBuilding.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <poll.h>

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

volatile std::sig_atomic_t gStopWasAsked = 0;

SInt64 RealMicroseconds()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

HeadlessRun::HeadlessRun(const Options& options, const PluginFolder& plugins)
    : options_(options), page_(options.width, options.height), snapshots_(options.snapshots)
{
    AddObjects(page_, options, plugins, *this);
    starter_ = std::make_unique<ObjectStarter>(page_, plugins);
    user_ = std::make_unique<UserActions>(page_, options.events, options.play);
}

HeadlessRun::~HeadlessRun()
{
    EndObjects();
}

void HeadlessRun::AskToStop()
{
    gStopWasAsked = 1;
}

PageReport HeadlessRun::Run()
{
    page_.DrawChanges();
    while (true) {
        FinishInstant();
        while (user_->SendDue(clock_.Now())) {
            FinishInstant(); // what the user does has its effect at once
        }
        snapshots_.TakeDue(page_.Port(), clock_.Now());
        if (IsOver()) {
            break;
        }
        ShowProgress();
        MoveClock();
    }
    snapshots_.TakeLast(page_.Port());
    PageReport report = MakeReport();
    TellOutcome();
    EndObjects();
    MeasureProcess(report);
    return report;
}

// Rounds of work until nothing moves any more at this instant.
void HeadlessRun::FinishInstant()
{
    int quietRounds = 0;
    Mark before = LookAtWork();
    while (quietRounds < kQuietRoundsAtRest ||
           (IsToolboxBusy() && quietRounds < kMostQuietRounds)) {
        DoRound();
        const Mark after = LookAtWork();
        quietRounds = after == before ? quietRounds + 1 : 0;
        before = after;
        ShowProgress();
    }
}

// In a round every object takes at most one portion of bytes, and what they make possible is seen
// before the next one is taken.
void HeadlessRun::DoRound()
{
    YieldToAnyThread();
    page_.IdleObjects();
    page_.DrawChanges();
    page_.ObserveObjects();
    user_->PlayNewMovies();
    starter_->Step();
}

HeadlessRun::Mark HeadlessRun::LookAtWork()
{
    Mark mark;
    mark.steps = starter_->CountSteps();
    for (const auto& object : page_.Objects()) {
        const MovieStatistics statistics = object->Statistics();
        mark.bytes += object->HasBytes() ? object->Bytes().HandedOut() : 0;
        mark.pictures += statistics.picturesShown + statistics.picturesDropped;
        mark.soundFrames += statistics.soundFrames;
        mark.duration += statistics.durationSeconds;
        mark.states += statistics.loadState + statistics.movies + statistics.playing +
                       static_cast<SInt64>(object->CurrentState()) + object->HasDimensions() +
                       object->IsSettled();
    }
    return mark;
}

bool HeadlessRun::IsToolboxBusy() const
{
    const SInt64 deadline = NextToolboxDeadline();
    return deadline >= 0 && deadline <= clock_.Now();
}

bool HeadlessRun::IsOver()
{
    if (gStopWasAsked != 0 || (options_.until && clock_.Now() >= *options_.until)) {
        return true;
    }
    return !options_.until && !user_->NextTime() && !snapshots_.NextTime() && IsLoaded() &&
           !IsAnyPlaying();
}

bool HeadlessRun::IsLoaded() const
{
    const auto& objects = page_.Objects();
    return starter_->IsDone() && std::all_of(objects.begin(), objects.end(),
                                             [](const auto& each) { return each->IsSettled(); });
}

// A movie that plays but has nothing pending will never go on.
bool HeadlessRun::IsAnyPlaying()
{
    const auto& objects = page_.Objects();
    return NextToolboxDeadline() >= 0 &&
           std::any_of(objects.begin(), objects.end(),
                       [](const auto& each) { return each->Statistics().playing != 0; });
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
    const SInt64 tick = now + kTickMicroseconds;
    SInt64 next = options_.until.value_or(INT64_MAX);
    const auto consider = [&](std::optional<SInt64> time) {
        next = std::min(next, time.value_or(INT64_MAX));
    };
    if (const SInt64 deadline = NextToolboxDeadline(); deadline >= 0) {
        consider(deadline > now ? deadline : tick);
    }
    if (NeedsTicks()) {
        consider(tick);
    }
    consider(user_->NextTime());
    consider(snapshots_.NextTime());
    consider(starter_->NextDeadline());
    return next == INT64_MAX ? tick : std::max(next, now + 1);
}

// Bytes arrive with every tick, and an image may be animated.
bool HeadlessRun::NeedsTicks() const
{
    const auto& objects = page_.Objects();
    return !IsLoaded() || std::any_of(objects.begin(), objects.end(), [](const auto& each) {
        return each->HasDimensions() && !each->Bundle()->PlaysMovies();
    });
}

// Lets as much time pass on the page's clock as it takes until bytes come, or less.
void HeadlessRun::WaitForStreams(SInt64 until)
{
    std::vector<pollfd> streams;
    for (const auto& object : page_.Objects()) {
        if (const int stream = object->DescriptorToWaitOn(); stream >= 0) {
            streams.push_back({stream, POLLIN, 0});
        }
    }
    const SInt64 start = RealMicroseconds();
    const SInt64 milliseconds =
        (until - clock_.Now() + kMicrosecondsPerMillisecond - 1) / kMicrosecondsPerMillisecond;
    poll(streams.data(), streams.size(), static_cast<int>(milliseconds));
    clock_.AdvanceTo(std::min(until, clock_.Now() + RealMicroseconds() - start));
}

bool HeadlessRun::WaitsForStream() const
{
    const auto& objects = page_.Objects();
    return std::any_of(objects.begin(), objects.end(),
                       [](const auto& each) { return each->DescriptorToWaitOn() >= 0; });
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
    if (!Console::IsProgressDue()) {
        return;
    }
    SInt64 bytes = 0;
    size_t loaded = 0;
    for (const auto& object : page_.Objects()) {
        bytes += object->HasBytes() ? object->Bytes().HandedOut() : 0;
        loaded += object->IsSettled() ? 1 : 0;
    }
    Console::ShowProgress("loaded " + std::to_string(loaded) + " of " +
                          std::to_string(page_.Objects().size()) + " objects, " +
                          std::to_string(bytes / 1024) + " KiB, at " +
                          std::to_string(clock_.Now() / kMicrosecondsPerSecond) + " s");
}

PageReport HeadlessRun::MakeReport()
{
    PageReport report;
    for (const auto& object : page_.Objects()) {
        report.objects.push_back(object->Report());
    }
    report.seconds = static_cast<double>(clock_.Now()) / kMicrosecondsPerSecond;
    return report;
}

void HeadlessRun::TellOutcome()
{
    for (const auto& object : page_.Objects()) {
        object->TellOutcome();
    }
    if (const Page::Below below = page_.LookBelow(); below.objects > 0) {
        Console::Tell("", std::to_string(below.objects) +
                              (below.objects == 1 ? " object lies" : " objects lie") +
                              " below the page; --size " + std::to_string(page_.Width()) + "x" +
                              std::to_string(below.bottom) + " shows more");
    }
    if (const size_t left = user_->CountLeft(); left > 0) {
        Console::Tell("", "the end came before " + std::to_string(left) +
                              (left == 1 ? " click or key" : " clicks and keys") +
                              " could be delivered");
    }
}

// An object that still waits for bytes is told that there are no more.
void HeadlessRun::EndObjects()
{
    const auto isDecoding = [](const auto& object) {
        return object->CurrentState() == EmbeddedObject::State::kDecoding;
    };
    for (const auto& object : page_.Objects()) {
        object->Cancel();
    }
    while (std::any_of(page_.Objects().begin(), page_.Objects().end(), isDecoding)) {
        YieldToAnyThread();
    }
    page_.FreeObjects();
    Console::ClearProgress();
}

} // namespace viewer
