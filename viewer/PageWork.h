// SPDX-License-Identifier: MIT
//
// The work on a page, whoever runs it and by whatever clock.
#pragma once

#include "viewer/HostTime.h"
#include "viewer/ObjectStarter.h"
#include "viewer/Options.h"
#include "viewer/UserActions.h"

#include <poll.h>
#include <vector>

namespace viewer
{

// Holds a page with what brings its objects to life, and does a round of work on it whenever it is
// told to. When that is to be, and what else happens then, is up to the one who runs the page.
class PageWork
{
public:
    // `time` outlives the object.
    PageWork(const Options& options, const PluginFolder& plugins, HostTime& time);
    // Ends the objects, if that was not done.
    ~PageWork();
    PageWork(const PageWork&) = delete;
    PageWork& operator=(const PageWork&) = delete;

    Page& ThePage() { return page_; }
    const Page& ThePage() const { return page_; }
    UserActions& User() { return user_; }
    const ObjectStarter& Starter() const { return starter_; }

    // In a round every object takes at most one portion of bytes, and what they make possible is
    // seen before the next one is taken.
    void DoRound();
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
    Mark Look() const;

    // Everything has been decoded or given up.
    bool IsLoaded() const;
    // A movie plays, and something is pending for it.
    bool IsAnyPlaying() const;
    // The toolbox needs time now.
    static bool IsToolboxBusy();
    // The streams of which somebody wants what they have not sent yet.
    std::vector<pollfd> AwaitedStreams() const;

    // One line on how far loading has come.
    std::string DescribeProgress() const;
    PageReport MakeReport() const;
    // Tells the user of what was not shown and what was not done.
    void TellOutcome() const;
    // Objects that still wait for bytes are told that there are no more, and all are freed.
    void EndObjects();

private:
    Page page_;
    ObjectStarter starter_;
    UserActions user_;
};

} // namespace viewer
