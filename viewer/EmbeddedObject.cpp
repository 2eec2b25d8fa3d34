// SPDX-License-Identifier: MIT
#include "viewer/EmbeddedObject.h"

#include "toolbox/Errors.h"
#include "viewer/BundleCall.h"
#include "viewer/Console.h"
#include "viewer/MimeTypeGuess.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

namespace viewer
{
namespace
{

constexpr Size kDecodingStackSize = 512 * 1024;
constexpr SInt32 kBytesForTypeCheck = 4096;
constexpr AreaSize kPlaceholder = {160, 120};
constexpr double kMicrosecondsPerSecond = 1e6;

} // namespace

EmbeddedObject::EmbeddedObject(ObjectDescription description, std::unique_ptr<ObjectBytes> bytes)
    : description_(std::move(description)), bytes_(std::move(bytes)), plugin_(*this)
{
}

void EmbeddedObject::LearnType(const PluginFolder& plugins)
{
    if (std::exchange(description_.typeIsKnown, true)) {
        return;
    }
    std::array<UInt8, kBytesForTypeCheck> start{};
    const SInt32 length = bytes_->Peek(start.data(), kBytesForTypeCheck);
    const std::string guess = GuessMimeType(start.data(), static_cast<size_t>(length));
    if (!guess.empty()) {
        description_.type = plugins.TypeOf(description_.fileName, guess);
    }
}

bool EmbeddedObject::IsAcceptedBy(const PluginBundle& bundle)
{
    std::array<UInt8, kBytesForTypeCheck> start{};
    const SInt32 length = bytes_->Peek(start.data(), kBytesForTypeCheck);
    const BundleCall call(this);
    return bundle.Calls().canHandleData(bundle.Reference(), start.data(), length,
                                        description_.type.mimeType.c_str(),
                                        description_.fileName.c_str()) != 0;
}

void EmbeddedObject::Start(const PluginBundle& bundle)
{
    ++timesStarted_;
    const BundleCall call(this);
    if (const OSErr error = plugin_.Make(bundle, description_); error != noErr) {
        GiveUp(error, "its plug-in could not be started");
        return;
    }
    state_ = State::kDecoding;
    ThreadID thread = kNoThreadID;
    decodeError_ = NewThread(kCooperativeThread, NewThreadEntryUPP(DecodeOnThread), this,
                             kDecodingStackSize, 0, nullptr, &thread);
    if (decodeError_ != noErr) {
        state_ = State::kDecoded;
    }
}

void* EmbeddedObject::DecodeOnThread(void* object)
{
    static_cast<EmbeddedObject*>(object)->Decode();
    return nullptr;
}

void EmbeddedObject::Decode()
{
    SetStatisticsOwner(this);
    decodeError_ = plugin_.Decode();
    state_ = State::kDecoded;
}

void EmbeddedObject::GiveUp(OSErr error, const std::string& why)
{
    GiveUpSilently(error);
    Console::Tell(Name(), why + " (error " + std::to_string(error) + ")");
}

void EmbeddedObject::GiveUpUnknownType()
{
    const std::string& type = description_.type.mimeType;
    if (bytes_->IsEmpty()) {
        GiveUp(paramErr, "it is empty");
        return;
    }
    GiveUpSilently(paramErr);
    Console::Tell("", "nothing here can show " + Name() + " (type " +
                          (type.empty() ? "unknown" : type) + ", error " +
                          std::to_string(startError_) + ")");
}

// Whoever sends the bytes need not go on.
void EmbeddedObject::GiveUpSilently(OSErr error)
{
    startError_ = error;
    state_ = State::kGivenUp;
    if (bytes_ != nullptr) {
        bytes_->StopReceiving();
    }
}

void EmbeddedObject::Cancel()
{
    if (bytes_ != nullptr) {
        bytes_->Cancel();
    }
}

void EmbeddedObject::Free()
{
    assert(state_ != State::kDecoding);
    plugin_.Free();
}

void EmbeddedObject::WaitAgain()
{
    bytes_->StartAnew();
    state_ = State::kWaiting;
    plugin_.ForgetBundle();
    decodeError_ = noErr;
    idleError_ = noErr;
    roundsSinceDecoded_ = 0;
    natural_ = {};
    sizeChanged_ = hasDimensions_;
    hasDimensions_ = false;
    wasDisplayed_ = false;
    firstPicture_.reset();
    newRows_.Forget();
}

void EmbeddedObject::Observe()
{
    if (state_ == State::kDecoded) {
        ++roundsSinceDecoded_;
    }
    if (!firstPicture_ && plugin_.IsMade() && Statistics().picturesShown > 0) {
        const double now = static_cast<double>(ToolboxMicroseconds()) / kMicrosecondsPerSecond;
        firstPicture_ = FirstPicture{now, bytes_->HandedOut()};
    }
}

// The first round that is observed may have begun before decoding ended in it.
bool EmbeddedObject::IsSettled() const
{
    return state_ == State::kGivenUp || roundsSinceDecoded_ > 1;
}

// A stream that nobody reads would have something to read at every look.
int EmbeddedObject::DescriptorToWaitOn() const
{
    const bool isRead = bytes_ != nullptr && (state_ == State::kWaiting || bytes_->IsWaitedFor());
    return isRead ? bytes_->DescriptorToWaitOn() : -1;
}

void EmbeddedObject::Display()
{
    needsDisplay_ = false;
    newRows_.Forget();
    plugin_.Display(area_);
    wasDisplayed_ = plugin_.IsMade();
}

void EmbeddedObject::Idle()
{
    const OSErr error = plugin_.Idle(area_);
    idleError_ = idleError_ == noErr ? error : idleError_;
}

bool EmbeddedObject::Click(const EventRecord& event)
{
    return plugin_.Click(area_, event);
}

// A controller bar is never scaled: on a page that is too narrow its end is cut off.
AreaSize EmbeddedObject::WantedArea(SInt16 pageWidth) const
{
    if (!hasDimensions_) {
        return kPlaceholder;
    }
    return IsSoundOnly() ? natural_
                         : AreaForPicture(natural_, description_.displayFlags, pageWidth);
}

bool EmbeddedObject::IsSoundOnly() const
{
    return natural_.height <= kControllerRows && plugin_.Bundle()->PlaysMovies();
}

Rect EmbeddedObject::DrawnRect() const
{
    return plugin_.DrawnRect(area_);
}

bool EmbeddedObject::TakeSizeChange()
{
    return std::exchange(sizeChanged_, false);
}

std::optional<Rect> EmbeddedObject::TakeNewRows()
{
    return newRows_.IsEmpty() || !hasDimensions_
               ? std::nullopt
               : newRows_.TakeWithin(DrawnRect(), natural_.height);
}

void EmbeddedObject::TakeDisplayRect(const Rect& rect)
{
    natural_ = {static_cast<SInt16>(rect.right - rect.left),
                static_cast<SInt16>(rect.bottom - rect.top)};
    hasDimensions_ = true;
    sizeChanged_ = true;
    needsDisplay_ = true;
}

void EmbeddedObject::TakeDecodedRows(SInt16 first, SInt16 end)
{
    newRows_.Add(first, end);
}

void EmbeddedObject::TakeRenderingDone()
{
    needsDisplay_ = true;
}

MovieStatistics EmbeddedObject::Statistics()
{
    MovieStatistics statistics{};
    GetMovieStatistics(this, &statistics);
    return statistics;
}

OSErr EmbeddedObject::Error() const
{
    for (const OSErr error : {startError_, decodeError_, idleError_}) {
        if (error != noErr) {
            return error;
        }
    }
    if (bytes_ != nullptr && bytes_->Failure().error != noErr) {
        return bytes_->Failure().error;
    }
    return IsSettled() && !hasDimensions_ ? OSErr{noMovieFound} : OSErr{noErr};
}

ObjectReport EmbeddedObject::Report()
{
    const MovieStatistics statistics = Statistics();
    ObjectReport report;
    report.name = description_.name;
    report.type = description_.type.mimeType;
    report.plugin = Bundle() == nullptr ? "" : Bundle()->Name();
    report.bytes = bytes_ == nullptr ? 0 : bytes_->HandedOut();
    report.complete = bytes_ != nullptr && bytes_->IsComplete();
    report.error = Error();
    report.rect = hasDimensions_ ? area_ : Rect{};
    report.comment = plugin_.Comment();
    report.firstPicture = firstPicture_;
    report.picturesShown = statistics.picturesShown;
    report.picturesDropped = statistics.picturesDropped;
    report.soundSamples = statistics.soundFrames;
    report.durationSeconds = statistics.durationSeconds;
    report.shown = hasDimensions_ && report.error == noErr;
    return report;
}

void EmbeddedObject::TellOutcome()
{
    const OSErr error = Error();
    if (state_ == State::kGivenUp || (error == noErr && hasDimensions_)) {
        return;
    }
    if (error == noErr) {
        Console::Tell(Name(), "the end came before there was anything to show");
    } else if (error == noMovieFound && bytes_->IsEmpty()) {
        Console::Tell(Name(), "it is empty (error " + std::to_string(error) + ")");
    } else if (bytes_->Failure().error == error) {
        Console::Tell(Name(), bytes_->Failure().text + " (error " + std::to_string(error) + ")");
    } else {
        Console::Tell(Name(), DescribeError(error));
    }
}

} // namespace viewer
