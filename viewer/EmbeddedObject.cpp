// SPDX-License-Identifier: MIT
#include "viewer/EmbeddedObject.h"

#include "toolbox/Errors.h"
#include "viewer/BundleCall.h"
#include "viewer/Console.h"
#include "viewer/HostCallbacks.h"

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
constexpr OSType kUnknownCreator = FOUR_CHARS('?', '?', '?', '?');
constexpr double kMicrosecondsPerSecond = 1e6;

} // namespace

EmbeddedObject::EmbeddedObject(ObjectDescription description, std::unique_ptr<ObjectBytes> bytes)
    : description_(std::move(description)), bytes_(std::move(bytes))
{
}

EmbeddedObject::~EmbeddedObject()
{
    assert(!IsMade());
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
    bundle_ = &bundle;
    const BundleCall call(this);
    const OSErr error = bundle.Calls().makeNewObject(
        bundle.Reference(), &ViewerHostCalls(), description_.type.fileType, kUnknownCreator,
        description_.fileName.c_str(), description_.type.mimeType.c_str(), &plugin_);
    if (error != noErr) {
        GiveUp(error, "its plug-in could not be started");
        return;
    }
    RememberObject(plugin_, *this);
    bundle.Calls().setObjectDisplayFlags(plugin_, description_.displayFlags);
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
    decodeError_ = bundle_->Calls().decodeObject(plugin_);
    state_ = State::kDecoded;
}

void EmbeddedObject::GiveUp(OSErr error, const std::string& why)
{
    startError_ = error;
    state_ = State::kGivenUp;
    Console::Tell(Name(), why + " (error " + std::to_string(error) + ")");
}

void EmbeddedObject::GiveUpUnknownType()
{
    const std::string& type = description_.type.mimeType;
    startError_ = paramErr;
    state_ = State::kGivenUp;
    Console::Tell("", "nothing here can show " + Name() + " (type " +
                          (type.empty() ? "unknown" : type) + ", error " +
                          std::to_string(startError_) + ")");
}

void EmbeddedObject::Cancel()
{
    if (bytes_ != nullptr) {
        bytes_->Cancel();
    }
}

void EmbeddedObject::Free()
{
    if (!IsMade()) {
        return;
    }
    assert(state_ != State::kDecoding);
    {
        const BundleCall call(this);
        bundle_->Calls().freeObject(plugin_);
    }
    ForgetObject(plugin_);
    plugin_ = nullptr;
}

void EmbeddedObject::WaitAgain()
{
    bytes_->StartAnew();
    state_ = State::kWaiting;
    bundle_ = nullptr;
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
    if (!firstPicture_ && IsMade() && Statistics().picturesShown > 0) {
        const double now = static_cast<double>(ToolboxMicroseconds()) / kMicrosecondsPerSecond;
        firstPicture_ = FirstPicture{now, bytes_->HandedOut()};
    }
}

// The first round that is observed may have begun before decoding ended in it.
bool EmbeddedObject::IsSettled() const
{
    return state_ == State::kGivenUp || roundsSinceDecoded_ > 1;
}

void EmbeddedObject::Display()
{
    needsDisplay_ = false;
    newRows_.Forget();
    if (IsMade()) {
        const BundleCall call(this);
        bundle_->Calls().displayObject(plugin_, &area_, 0);
        wasDisplayed_ = true;
    }
}

void EmbeddedObject::Idle()
{
    if (!IsMade()) {
        return;
    }
    const BundleCall call(this);
    const OSErr error = bundle_->Calls().idleObject(plugin_, &area_, 0);
    idleError_ = idleError_ == noErr ? error : idleError_;
}

bool EmbeddedObject::Click(const EventRecord& event)
{
    if (!IsMade()) {
        return false;
    }
    const BundleCall call(this);
    return bundle_->Calls().handleObjectClick(plugin_, &area_, &event) != 0;
}

AreaSize EmbeddedObject::WantedArea(SInt16 pageWidth) const
{
    return hasDimensions_ ? AreaForPicture(natural_, description_.displayFlags, pageWidth)
                          : kPlaceholder;
}

Rect EmbeddedObject::DrawnRect() const
{
    Rect drawn = area_;
    if (IsMade()) {
        bundle_->Calls().getObjectDisplayRect(plugin_, &area_, &drawn);
    }
    return drawn;
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

std::string EmbeddedObject::Comment() const
{
    std::array<char, 257> comment{};
    if (IsMade()) {
        bundle_->Calls().getObjectComment(plugin_, comment.data(), comment.size() - 1);
    }
    return comment.data();
}

ObjectReport EmbeddedObject::Report()
{
    const MovieStatistics statistics = Statistics();
    ObjectReport report;
    report.name = description_.name;
    report.type = description_.type.mimeType;
    report.plugin = bundle_ == nullptr ? "" : bundle_->Name();
    report.bytes = bytes_ == nullptr ? 0 : bytes_->HandedOut();
    report.complete = bytes_ != nullptr && bytes_->IsComplete();
    report.error = Error();
    report.rect = hasDimensions_ ? area_ : Rect{};
    report.comment = Comment();
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
    } else if (bytes_->Failure().error == error) {
        Console::Tell(Name(), bytes_->Failure().text + " (error " + std::to_string(error) + ")");
    } else {
        Console::Tell(Name(), DescribeError(error));
    }
}

} // namespace viewer
