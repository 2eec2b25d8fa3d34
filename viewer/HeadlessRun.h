// SPDX-License-Identifier: MIT
//
// Runs a page without a window: on a clock that goes as fast as the work is done.
#pragma once

#include "viewer/HostTime.h"
#include "viewer/ObjectStarter.h"
#include "viewer/Options.h"
#include "viewer/PageClock.h"
#include "viewer/Snapshots.h"
#include "viewer/UserActions.h"

namespace viewer
{

// At each instant of the page's clock everything is done that can be done; then the clock moves to
// the next instant at which something may happen. While a stream has not sent what is wanted of
// it, the clock goes no faster than the real one, so that it is the stream that is slow.
class HeadlessRun : public HostTime
{
public:
    HeadlessRun(const Options& options, const PluginFolder& plugins);
    ~HeadlessRun() override;

    // Runs to the end, frees the objects, and tells what happened. Messages and snapshots have
    // been written by then.
    PageReport Run();
    bool SnapshotFailed() const { return snapshots_.Failed(); }

    void LetTimePass() override;

    // May be called from a signal handler: the page ends at the next instant.
    static void AskToStop();

private:
    // What there is to be seen of the work; equal when nothing moved.
    struct Mark {
        SInt64 bytes = 0;
        SInt64 pictures = 0;
        SInt64 soundFrames = 0;
        SInt64 states = 0;
        double duration = 0;
        SInt32 steps = 0;
        bool operator==(const Mark&) const = default;
    };
    Mark LookAtWork();
    void FinishInstant();
    void DoRound();
    bool IsToolboxBusy() const;
    bool WaitsForStream() const;

    bool IsOver();
    bool IsLoaded() const;
    bool IsAnyPlaying();
    void MoveClock();
    SInt64 NextInstant();
    void WaitForStreams(SInt64 until);
    bool NeedsTicks() const;

    void ShowProgress();
    PageReport MakeReport();
    void TellOutcome();
    void EndObjects();

    const Options& options_;
    PageClock clock_;
    Page page_;
    std::unique_ptr<ObjectStarter> starter_;
    std::unique_ptr<UserActions> user_;
    Snapshots snapshots_;
};

} // namespace viewer
