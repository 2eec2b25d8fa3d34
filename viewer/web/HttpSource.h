// SPDX-License-Identifier: MIT
//
// An object at an http or https URL.
#pragma once

#include "viewer/SpooledSource.h"
#include "viewer/web/HttpTransfer.h"

#include <chrono>
#include <optional>

namespace viewer
{

// It is fetched as far as it is wanted; the connection holds back the rest. A connection that
// breaks in the middle is made anew once, for what is missing.
class HttpSource : public SpooledSource
{
public:
    // `patience` is how long nothing may come. Throws SourceFailure.
    explicit HttpSource(std::string url,
                        std::chrono::milliseconds patience = std::chrono::seconds(30));

    void Pump(SInt32 end) override;
    // What the server told, until all is there.
    SInt32 EstimatedBytes() const override;
    std::string ContentType() const override { return answer_ ? answer_->type : ""; }
    std::string DeclaredType() const override;
    int DescriptorToWaitOn() const override;
    // Closes the connection.
    void StopReceiving() override;

private:
    using Clock = std::chrono::steady_clock;

    void StartTransfer();
    HttpTransfer::Taking TakeBody(const char* bytes, size_t count);
    bool TakeAnswer();
    bool AcceptStart(const HttpAnswer& answer);
    bool AcceptRest(const HttpAnswer& answer);
    bool IsSameResource(const HttpAnswer& answer) const;
    bool Refuse(OSErr error, const std::string& text);
    void NoteEnd();
    void WatchSilence();
    void TakeBreak(OSErr error, const std::string& problem);
    bool CanResume() const;
    std::string Progress() const;

    std::string url_;
    std::chrono::milliseconds patience_;
    std::unique_ptr<HttpTransfer> transfer_;
    std::optional<HttpAnswer> answer_; // the first one
    std::string broken_;               // how the first connection ended, if it broke
    bool headerIsTaken_ = false;       // of the transfer under way
    bool isHeld_ = false;
    bool isBehind_ = false;
    SInt32 wanted_ = 0;
    SourceFailure refusal_;

    Clock::time_point lastLook_;
    std::chrono::milliseconds silence_{0};
    SInt64 activity_ = -1;
};

} // namespace viewer
