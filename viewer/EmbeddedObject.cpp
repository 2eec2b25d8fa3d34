// SPDX-License-Identifier: MIT
#include "viewer/EmbeddedObject.h"

#include "src/plugin/VornPluginABI.h"
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
constexpr UInt32 kShrinkOnly = kVornDisplayShrinkOnly;
constexpr UInt32 kKeepAspect = kVornDisplayKeepAspect;
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
    bytesTellType_ = !guess.empty();
    const std::string type = bytesTellType_ ? guess : bytes_->DeclaredType();
    if (!type.empty()) {
        description_.type = plugins.TypeOf(description_.fileName, type);
    }
}

bool EmbeddedObject::IsAcceptedBy(const PluginBundle& bundle)
{
    std::array<UInt8, kBytesForTypeCheck> start{};
    const SInt32 length = bytes_->Peek(start.data(), kBytesForTypeCheck);
    // A wrong extension must not lead to another bundle than the one for what it is.
    const char* const fileName = bytesTellType_ ? "" : description_.fileName.c_str();
    const BundleCall call(this);
    return bundle.Calls().canHandleData(bundle.Reference(), start.data(), length,
                                        description_.type.mimeType.c_str(), fileName) != 0;
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
    startError_ = error;
    startProblem_ = why;
    state_ = State::kGivenUp;
    if (bytes_ != nullptr) {
        bytes_->StopReceiving(); // whoever sends the bytes need not go on
    }
    Console::Tell(Name(), Problem());
}

void EmbeddedObject::GiveUpUnknownType()
{
    const std::string& type = description_.type.mimeType;
    if (IsMovieType(type) && !QuickTimePresent() && !bytes_->IsEmpty()) {
        GiveUp(noCodecErr, MeaningOf(noCodecErr));
    } else {
        GiveUp(paramErr, type.empty() ? "its type is unknown, nothing here can show it"
                                      : "nothing here can show its type, " + type);
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
    renderingError_ = noErr;
    decodeError_ = noErr;
    idleError_ = noErr;
    roundsSinceDecoded_ = 0;
    natural_ = {};
    sizeChanged_ = hasDimensions_;
    hasDimensions_ = false;
    wasDisplayed_ = false;
    firstPicture_.reset();
    newRows_.Forget();
    hasPixels_ = false;
    renderingDone_ = false;
    framesDrawn_ = 0;
    statistics_ = {};
    moviesDeadline_ = -1;
}

void EmbeddedObject::Observe()
{
    if (state_ == State::kDecoded) {
        ++roundsSinceDecoded_;
    }
    if (!firstPicture_ && plugin_.IsMade() && !IsImage() && Statistics().picturesShown > 0) {
        firstPicture_ = Now();
    }
}

FirstPicture EmbeddedObject::Now() const
{
    const double now = static_cast<double>(ToolboxMicroseconds()) / kMicrosecondsPerSecond;
    return {now, bytes_->HandedOut()};
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
    plugin_.SetDisplayFlags(FlagsForArea());
    plugin_.Display(area_);
    wasDisplayed_ = plugin_.IsMade();
    LookAtMovies();
}

// A movie's own proportions are those with its controller, which is as high at any size: at
// another than its own it takes the area as it is, which the picture's proportions have made.
UInt32 EmbeddedObject::FlagsForArea() const
{
    UInt32 flags = description_.displayFlags;
    if (enlarged_) {
        flags = (flags & ~kShrinkOnly) | kVornDisplayScale;
    }
    const bool isOfOwnSize =
        area_.right - area_.left == natural_.width && area_.bottom - area_.top == natural_.height;
    return RowsOfController() > 0 && !isOfOwnSize ? flags & ~kKeepAspect : flags;
}

void EmbeddedObject::Idle()
{
    const OSErr error = plugin_.Idle(area_);
    idleError_ = idleError_ == noErr ? error : idleError_;
    LookAtMovies();
}

bool EmbeddedObject::Click(const EventRecord& event)
{
    const bool taken = plugin_.Click(area_, event);
    LookAtMovies();
    return taken;
}

// Before there are pixels an image may draw, but there is nothing to be seen.
void EmbeddedObject::NoteDrawing(Drawing drawing)
{
    if (!IsImage() || !hasPixels_) {
        return;
    }
    rhythm_.Changed(ToolboxMicroseconds());
    framesDrawn_ += drawing == Drawing::kByItself ? 1 : 0;
    if (!firstPicture_) {
        firstPicture_ = Now();
    }
}

bool EmbeddedObject::IsIdleDue(SInt64 now, bool isInView) const
{
    if (!plugin_.IsMade()) {
        return false;
    }
    if (!IsImage() || !hasDimensions_) {
        const bool moviesAreDue = moviesDeadline_ >= 0 && moviesDeadline_ <= now;
        return !IsSettled() || moviesAreDue || rhythm_.IsDue(now);
    }
    return isInView && !needsDisplay_ && (!MayMove() || rhythm_.IsDue(now));
}

bool EmbeddedObject::MayMove() const
{
    return renderingDone_ && wasDisplayed_ && !needsDisplay_;
}

void EmbeddedObject::NoteIdle(SInt64 now, IdleRhythm::Kind kind)
{
    if (!IsImage() || (IsSettled() && !hasDimensions_)) {
        rhythm_.Idled(now, IdleRhythm::Kind::kEveryTick);
    } else if (MayMove()) {
        rhythm_.Idled(now, kind);
    }
}

std::optional<SInt64> EmbeddedObject::NextIdle() const
{
    return IsImage() && MayMove() ? std::optional<SInt64>(rhythm_.Next()) : std::nullopt;
}

SInt32 EmbeddedObject::ImagePicturesShown() const
{
    return std::max(framesDrawn_, firstPicture_ ? 1 : 0);
}

// A controller bar is never scaled: on a page that is too narrow its end is cut off.
AreaSize EmbeddedObject::WantedArea(SInt16 pageWidth, double zoom) const
{
    if (!hasDimensions_) {
        return kPlaceholder;
    }
    if (IsSoundOnly()) {
        return natural_;
    }
    const AreaSize picture = PictureSize();
    const AreaSize area = AreaForPicture(MayScale() ? Zoomed(picture, zoom) : picture,
                                         description_.displayFlags, pageWidth);
    return WithRows(area, RowsOfController());
}

bool EmbeddedObject::IsSoundOnly() const
{
    return natural_.height <= kControllerRows && plugin_.Bundle()->PlaysMovies();
}

bool EmbeddedObject::MayScale() const
{
    return (description_.displayFlags & kVornDisplayScale) != 0 && !IsSoundOnly();
}

SInt16 EmbeddedObject::RowsOfController() const
{
    const bool isMovie = hasDimensions_ && plugin_.Bundle()->PlaysMovies();
    return isMovie && !IsSoundOnly() ? kControllerRows : SInt16{0};
}

AreaSize EmbeddedObject::PictureSize() const
{
    return WithRows(natural_, static_cast<SInt16>(-RowsOfController()));
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
    hasPixels_ = true;
}

void EmbeddedObject::TakeRenderingDone(OSErr error)
{
    renderingError_ = error;
    renderingDone_ = true;
    hasPixels_ = hasPixels_ || error == noErr;
    needsDisplay_ = true;
}

// Once everything has been decoded, movies change in these calls only: there may be a thousand that
// nobody has to ask in every round.
void EmbeddedObject::LookAtMovies()
{
    if (!IsImage()) {
        GetMovieStatistics(this, &statistics_);
        moviesDeadline_ = NextMovieDeadline(this);
    }
}

MovieStatistics EmbeddedObject::Statistics() const
{
    if (IsSettled() || !plugin_.IsMade()) {
        return statistics_;
    }
    MovieStatistics statistics{};
    GetMovieStatistics(const_cast<EmbeddedObject*>(this), &statistics);
    return statistics;
}

OSErr EmbeddedObject::Error() const
{
    for (const OSErr error : {startError_, renderingError_, decodeError_, idleError_}) {
        if (error != noErr) {
            return error;
        }
    }
    if (bytes_ != nullptr && bytes_->Failure().error != noErr) {
        return bytes_->Failure().error;
    }
    return IsSettled() && !hasDimensions_ ? NothingInIt() : OSErr{noErr};
}

OSErr EmbeddedObject::NothingInIt() const
{
    return IsImage() ? OSErr{kVornErrImageNoData} : OSErr{noMovieFound};
}

// A damaged image may have something to show; one that lies below the page cannot draw.
bool EmbeddedObject::IsShown() const
{
    const bool isFine = hasDimensions_ && Error() == noErr;
    return IsImage() ? firstPicture_.has_value() || (isFine && IsSettled()) : isFine;
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
    report.wholeBytes = bytes_ == nullptr ? -1 : bytes_->EstimatedBytes();
    if (hasDimensions_ && !IsSoundOnly()) {
        const AreaSize picture = PictureSize();
        report.width = picture.width;
        report.height = picture.height;
    }
    report.comment = plugin_.Comment();
    report.firstPicture = firstPicture_;
    report.picturesShown = IsImage() ? ImagePicturesShown() : statistics.picturesShown;
    report.picturesDropped = statistics.picturesDropped;
    report.soundSamples = statistics.soundFrames;
    report.durationSeconds = statistics.durationSeconds;
    report.shown = IsShown();
    return report;
}

std::string EmbeddedObject::Problem() const
{
    const OSErr error = Error();
    if (error == noErr) {
        return "";
    }
    // The number would only tell who noticed it.
    const bool isForWantOfBytes = error == paramErr || error == NothingInIt();
    if (isForWantOfBytes && bytes_ != nullptr && bytes_->IsEmpty()) {
        return "it is empty";
    }
    if (state_ == State::kGivenUp) {
        return startProblem_ + " (error " + std::to_string(error) + ")";
    }
    // An image only knows that its data ended: the source knows why.
    if (const SourceFailure& failure = bytes_->Failure();
        failure.error != noErr && (error == failure.error || error == kDataNotAvailableErr ||
                                   error == kVornErrImageNoData || error == kVornErrImageFailed)) {
        return failure.text + " (error " + std::to_string(failure.error) + ")";
    }
    return DescribeError(error);
}

void EmbeddedObject::TellOutcome()
{
    if (state_ == State::kGivenUp || (Error() == noErr && IsShown())) {
        return;
    }
    const std::string problem = Problem();
    Console::Tell(Name(),
                  problem.empty() ? "the end came before there was anything to show" : problem);
}

} // namespace viewer
