// SPDX-License-Identifier: MIT
//
// Runs a page without a window: on a clock that goes as fast as the work is done.
#pragma once

#include "viewer/PageClock.h"
#include "viewer/PageWork.h"
#include "viewer/Snapshots.h"
#include "viewer/text/TextPart.h"

#include <string>

namespace viewer
{

// At each instant of the page's clock everything is done that can be done; then the clock moves to
// the next instant at which something may happen. While a stream has not sent what is wanted of
// it, the clock goes no faster than the real one, so that it is the stream that is slow.
class HeadlessRun : public HostTime
{
public:
    HeadlessRun(const Options& options, const PluginFolder& plugins);

    // Runs to the end, frees the objects, and tells what happened. Messages and snapshots have
    // been written by then.
    PageReport Run();
    // A snapshot or a drag failed; the user has been told.
    bool OutputFailed() const { return snapshots_.Failed() || dragFailed_; }

    void LetTimePass() override;

private:
    void FinishInstant();
    void MakeTextWriter();
    bool WaitsForStream() const { return !work_.AwaitedStreams().empty(); }

    bool IsOver();
    void MoveClock();
    SInt64 NextInstant();
    void WaitForStreams(SInt64 until);

    void ShowProgress();
    void TellOutcome();
    void TellWhatIsBelow() const;
    void TellOfTextNotDrawn() const;

    const Options& options_;
    PageClock clock_;
    PageWork work_;
    std::unique_ptr<TextWriter> text_;
    bool isTextWriterSought_ = false;
    std::string textProblem_; // why there is no writer
    Snapshots snapshots_;
    bool dragFailed_ = false;
};

} // namespace viewer
