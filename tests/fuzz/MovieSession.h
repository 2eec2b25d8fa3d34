// SPDX-License-Identifier: MIT
#pragma once

#include "src/movie/VornMoviePlugin.h"
#include "tests/fuzz/Decisions.h"
#include "tests/support/CooperativeThread.h"
#include "toolbox/components/Components.h"
#include "toolbox/quicktime/DataHandler.h"

#include <memory>
#include <optional>

// A movie plug-in whose bytes arrive as they are told to, and an open instance of its data handler.
// Whoever waits for bytes gets more of them with every yield, until all are there.
class MovieSession
{
public:
    // What the object is and how long follow from the decisions.
    explicit MovieSession(Decisions& decisions);
    ~MovieSession();
    MovieSession(const MovieSession&) = delete;
    MovieSession& operator=(const MovieSession&) = delete;

    void Arrive(SInt32 count);
    void ArriveCompletely();
    void KillPlugin();
    ComponentResult Call(SInt16 selector, std::initializer_list<ComponentSlot> slots);

    bool HasPlugin() const { return plugin_ != nullptr; }
    bool IsComplete() const { return isComplete_; }
    bool IsMpeg() const { return isMpeg_; }
    SInt32 Spooled() const { return spooled_; }
    const std::string& FileName() const { return fileName_; }
    const char* MimeType() const { return isMpeg_ ? "video/mpeg" : "video/quicktime"; }

    SInt32 estimate = -1;

private:
    static MovieSession* current;
    static OSErr GetData(VornPlugin*, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                         unsigned char* dataComplete);
    void Feed();

    SInt32 size_;
    SInt32 arrived_ = 0;
    SInt32 spooled_ = 0;
    bool isComplete_ = false;
    bool isMpeg_;
    std::string fileName_;
    std::unique_ptr<VornMoviePlugin> plugin_;
    ComponentInstance instance_ = nullptr;
    std::optional<test::CooperativeThread> feeder_;
};
