// SPDX-License-Identifier: MIT
//
// Runs a page in a window, on the real clock.
#pragma once

#include "viewer/PageWork.h"
#include "viewer/Snapshots.h"
#include "viewer/text/Paragraphs.h"
#include "viewer/window/Captions.h"
#include "viewer/window/Notice.h"
#include "viewer/window/PageInput.h"
#include "viewer/window/PictureSaver.h"
#include "viewer/window/SoundDevice.h"
#include "viewer/window/StreamWatch.h"
#include "viewer/window/WindowFit.h"

namespace viewer
{

// Does rounds of work as long as anything moves, and sleeps in the event queue until something is
// due, the user does something, or a stream has bytes: a page on which nothing happens costs
// nothing.
class WindowRun : public HostTime
{
public:
    // Throws NoDisplay.
    WindowRun(const Options& options, const PluginFolder& plugins);
    ~WindowRun() override;

    // Runs until the user closes the window (or Options::until), frees the objects, and tells what
    // happened.
    PageReport Run();
    // A snapshot or a drag failed; the user has been told.
    bool OutputFailed() const { return snapshots_.Failed() || dragFailed_; }

    void LetTimePass() override;

private:
    void HandleEvents();
    void HandleWish();
    void DoRounds();
    void DoRound();
    bool IsAtRest() const;
    void Show();
    void FitWindow();
    bool IsOver() const;
    void Sleep();
    SInt64 NextInstant() const;
    bool IsAnyPaced() const;

    const Options& options_;
    WindowClock clock_;
    PageWindow window_;
    UInt32 wakeEvent_;
    StreamWatch watch_;
    std::unique_ptr<SoundDevice> sound_; // none if the page's sound goes to a file
    PageWork work_;
    Captions captions_;
    Paragraphs paragraphs_;
    WindowFit fit_;
    PageInput input_;
    PictureSaver saver_;
    Notice notice_;
    Snapshots snapshots_;
    bool dragFailed_ = false;
    bool mayFitWindow_;
    bool mayHaveEvents_ = true; // false right after a wait in vain
    int quietRounds_ = 0;
    bool hasFirstPicture_ = false; // and it has not been shown
    bool captionsAreStale_ = true;
    SInt64 captionsDue_ = 0;
};

} // namespace viewer
