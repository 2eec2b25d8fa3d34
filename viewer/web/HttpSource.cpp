// SPDX-License-Identifier: MIT
#include "viewer/web/HttpSource.h"

#include "viewer/DeclaredType.h"

#include <algorithm>
#include <utility>

namespace viewer
{
namespace
{

constexpr long kOk = 200;
constexpr long kPartialContent = 206;
// Time in which nobody looked says nothing about the server.
constexpr std::chrono::milliseconds kLongestGap(1000);

SourceFailure FailureFromStatus(long status)
{
    const std::string number = " (HTTP status " + std::to_string(status) + ")";
    switch (status) {
    case 404:
    case 410:
        return {fnfErr, "the server has nothing at this address" + number};
    case 401:
    case 403:
    case 407:
        return {permErr, "the server does not give it out" + number};
    default:
        return {ioErr, (status >= 500 ? "the server has a problem" : "the server did not send it") +
                           number};
    }
}

const char* MeaningOf(CURLcode result)
{
    switch (result) {
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
        return "this address cannot be used";
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return "there is no such server";
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
        return "the server cannot be reached";
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ISSUER_ERROR:
        return "there is no secure connection to the server";
    case CURLE_TOO_MANY_REDIRECTS:
        return "the server redirects without end";
    default:
        return "the connection broke";
    }
}

OSErr ErrorFrom(CURLcode result)
{
    switch (result) {
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
        return paramErr;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return fnfErr;
    case CURLE_OUT_OF_MEMORY:
        return memFullErr;
    default:
        return ioErr;
    }
}

} // namespace

HttpSource::HttpSource(std::string url, std::chrono::milliseconds patience)
    : url_(std::move(url)), patience_(patience), lastLook_(Clock::now())
{
    StartTransfer();
}

void HttpSource::StartTransfer()
{
    HttpRequest request{url_, Received(), ""};
    if (answer_) {
        request.ifRange = answer_->entityTag.empty() ? answer_->lastModified : answer_->entityTag;
    }
    headerIsTaken_ = false;
    isHeld_ = false;
    silence_ = {};
    transfer_ = std::make_unique<HttpTransfer>(
        request, [this](const char* bytes, size_t count) { return TakeBody(bytes, count); });
}

void HttpSource::Pump(SInt32 end)
{
    wanted_ = end;
    const bool wasBehind = std::exchange(isBehind_, false);
    if (!wasBehind) {
        silence_ = {};
        lastLook_ = Clock::now();
    }
    if (transfer_ != nullptr && Received() < end && std::exchange(isHeld_, false)) {
        transfer_->GoOn();
        NoteEnd();
    }
    while (transfer_ != nullptr && Received() < end && transfer_->Work()) {
        NoteEnd();
    }
    isBehind_ = transfer_ != nullptr && Received() < end;
    if (isBehind_) {
        WatchSilence();
    }
}

// Called by the library, so nothing may be thrown, and the transfer has to live on.
HttpTransfer::Taking HttpSource::TakeBody(const char* bytes, size_t count)
{
    if (!TakeAnswer()) {
        return HttpTransfer::Taking::kRefused;
    }
    if (Received() >= wanted_) {
        isHeld_ = true;
        return HttpTransfer::Taking::kLater;
    }
    return Keep(bytes, count) ? HttpTransfer::Taking::kTaken : HttpTransfer::Taking::kRefused;
}

// Looks at the header once it is there. False if its body is of no use.
bool HttpSource::TakeAnswer()
{
    if (std::exchange(headerIsTaken_, true)) {
        return refusal_.error == noErr;
    }
    const HttpAnswer answer = transfer_->Answer();
    return broken_.empty() ? AcceptStart(answer) : AcceptRest(answer);
}

bool HttpSource::AcceptStart(const HttpAnswer& answer)
{
    if (answer.status != kOk) {
        refusal_ = FailureFromStatus(answer.status);
        return false;
    }
    if (answer.length >= kObjectSizeLimit) {
        refusal_ = TooLargeFailure();
        return false;
    }
    answer_ = answer;
    return true;
}

bool HttpSource::AcceptRest(const HttpAnswer& answer)
{
    if (answer.status != kOk && answer.status != kPartialContent) {
        const SourceFailure failure = FailureFromStatus(answer.status);
        return Refuse(failure.error, "; when asked for the rest, " + failure.text);
    }
    if (!IsSameResource(answer)) {
        return Refuse(ioErr, "; what the server has there now is something else");
    }
    if (answer.status == kOk || answer.rangeStart != Received()) {
        return Refuse(ioErr, "; the server does not send the rest alone");
    }
    return true;
}

// Where the server names no version, the length has to do.
bool HttpSource::IsSameResource(const HttpAnswer& answer) const
{
    const SInt64 total = answer.status == kOk ? answer.length : answer.total;
    if (answer_->length >= 0 && total >= 0 && total != answer_->length) {
        return false;
    }
    return answer.entityTag == answer_->entityTag && answer.lastModified == answer_->lastModified;
}

bool HttpSource::Refuse(OSErr error, const std::string& text)
{
    refusal_ = {error, broken_ + text};
    return false;
}

void HttpSource::NoteEnd()
{
    if (!transfer_->IsEnded()) {
        return;
    }
    const CURLcode result = transfer_->Result();
    if (result == CURLE_OK) {
        TakeAnswer(); // of a body without a byte nobody was told
    }
    if (refusal_.error != noErr) {
        End(refusal_);
    } else if (result == CURLE_OK) {
        Complete();
    } else if (!IsComplete()) { // what came could not be kept
        TakeBreak(ErrorFrom(result),
                  std::string(MeaningOf(result)) + " (" + transfer_->Problem() + ")");
    }
    if (IsComplete()) {
        transfer_.reset();
    }
}

void HttpSource::WatchSilence()
{
    const Clock::time_point now = Clock::now();
    const auto gap = std::chrono::duration_cast<std::chrono::milliseconds>(now - lastLook_);
    lastLook_ = now;
    if (std::exchange(activity_, transfer_->Activity()) != activity_) {
        silence_ = {};
        return;
    }
    silence_ += std::min(gap, kLongestGap);
    if (silence_ >= patience_) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience_).count();
        TakeBreak(ioErr, "no byte came for " + std::to_string(seconds) + " seconds");
        isBehind_ = transfer_ != nullptr;
    }
}

// The first break in the middle is mended.
void HttpSource::TakeBreak(OSErr error, const std::string& problem)
{
    transfer_.reset();
    if (!CanResume()) {
        End({error, broken_.empty() ? problem + Progress()
                                    : broken_ + "; when asked for the rest, " + problem});
        return;
    }
    broken_ = problem + Progress();
    try {
        StartTransfer();
    } catch (const SourceFailure& failure) {
        End({failure.error, broken_ + "; " + failure.text});
    }
}

// Without any mark of its version, the rest could be that of something else.
bool HttpSource::CanResume() const
{
    return broken_.empty() && Received() > 0 && answer_ &&
           (answer_->length >= 0 || !answer_->entityTag.empty() || !answer_->lastModified.empty());
}

std::string HttpSource::Progress() const
{
    if (Received() == 0) {
        return "";
    }
    const bool isKnown = answer_ && answer_->length >= 0;
    return ", after " + std::to_string(Received()) +
           (isKnown ? " of " + std::to_string(answer_->length) : "") + " bytes";
}

SInt32 HttpSource::EstimatedBytes() const
{
    const bool isKnown = !IsComplete() && answer_ && answer_->length >= 0;
    return isKnown ? static_cast<SInt32>(answer_->length) : SpooledSource::EstimatedBytes();
}

std::string HttpSource::DeclaredType() const
{
    return ReadDeclaredType(ContentType());
}

int HttpSource::DescriptorToWaitOn() const
{
    return isBehind_ ? transfer_->Descriptor() : -1;
}

void HttpSource::StopReceiving()
{
    transfer_.reset();
    isBehind_ = false;
}

} // namespace viewer
