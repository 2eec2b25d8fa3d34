// SPDX-License-Identifier: MIT
#include "tests/soak/SoakPage.h"

#include "viewer/Rects.h"
#include "viewer/UserActions.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

using viewer::EmbeddedObject;

namespace
{

constexpr SInt16 kPageSide = 1000;
constexpr SInt16 kCell = 64;
constexpr SInt16 kCellsInRow = 15;
// Some objects come at once, others take minutes.
constexpr SInt64 kLeastBytesPerSecond = 2'000;
constexpr SInt64 kMostBytesPerSecond = 500'000;
// So that a movie, of which only one at a time may be between its making and its opening, does not
// keep the others waiting for its bytes.
constexpr SInt32 kBytesToStartWith = 70'000;
// Of a hundred objects how many begin to go in a second, on average.
constexpr double kGoingInASecond = 3;
constexpr double kMicrosecondsPerSecond = 1e6;

// Bytes in memory that arrive from the source's making on.
class ArrivingMemory : public viewer::ByteSource
{
public:
    ArrivingMemory(std::shared_ptr<const std::string> bytes, SInt64 bytesPerSecond)
        : bytes_(std::move(bytes)), born_(ToolboxMicroseconds()), pace_(bytesPerSecond)
    {
    }

    void Pump(SInt32) override
    {
        received_ = std::min(static_cast<SInt32>(bytes_->size()),
                             pace_.BytesBy(ToolboxMicroseconds() - born_));
    }
    SInt32 Received() const override { return received_; }
    bool IsComplete() const override { return received_ == static_cast<SInt32>(bytes_->size()); }
    SInt32 EstimatedBytes() const override { return static_cast<SInt32>(bytes_->size()); }
    SInt32 Read(void* buffer, SInt32 offset, SInt32 count) override
    {
        std::memcpy(buffer, bytes_->data() + offset, static_cast<size_t>(count));
        return count;
    }

private:
    std::shared_ptr<const std::string> bytes_;
    SInt64 born_;
    viewer::ArrivalPace pace_;
    SInt32 received_ = 0;
};

} // namespace

SoakPage::SoakPage(const viewer::PluginFolder& plugins, std::vector<SoakMaterial> materials,
                   unsigned seed, size_t population)
    : plugins_(plugins), materials_(std::move(materials)), random_(seed), population_(population),
      clip_(NewRgn())
{
    const Rect bounds = {0, 0, kPageSide, kPageSide};
    if (clip_ == nullptr || CreateWindowPort(&bounds, &port_) != noErr) {
        throw std::runtime_error("there is no memory for the page");
    }
    SetPort(port_);
    while (residents_.size() < population_) {
        Come();
    }
}

SoakPage::~SoakPage()
{
    DisposeWindowPort(port_);
    DisposeRgn(clip_);
}

void SoakPage::Come()
{
    const SoakMaterial& material = materials_[random_() % materials_.size()];
    const SInt64 pace =
        std::uniform_int_distribution<SInt64>(kLeastBytesPerSecond, kMostBytesPerSecond)(random_);
    auto bytes = std::make_unique<viewer::ObjectBytes>(
        std::make_unique<ArrivingMemory>(material.bytes, pace), viewer::ArrivalPace(), *this);
    Resident resident;
    resident.object = std::make_unique<EmbeddedObject>(
        viewer::ObjectDescription{material.fileName, material.fileName,
                                  plugins_.TypeOf(material.fileName, material.mimeType), 0x1F,
                                  true},
        std::move(bytes));
    const auto place = static_cast<SInt16>(random_() % (kCellsInRow * kCellsInRow));
    const auto top = static_cast<SInt16>(place / kCellsInRow * kCell);
    const auto left = static_cast<SInt16>(place % kCellsInRow * kCell);
    resident.object->SetArea(
        {top, left, static_cast<SInt16>(top + kCell), static_cast<SInt16>(left + kCell)});
    residents_.push_back(std::move(resident));
}

void SoakPage::Round(SInt64 microseconds, bool turnover)
{
    clock_.AdvanceTo(clock_.Now() + microseconds);
    YieldToAnyThread();
    for (Resident& resident : residents_) {
        Idle(resident);
        Draw(resident);
        resident.object->Observe();
        PlayNew(resident);
    }
    JudgeOpening();
    for (Resident& resident : residents_) {
        Start(resident);
    }
    if (turnover) {
        std::poisson_distribution<int> going(static_cast<double>(population_) / 100 *
                                             kGoingInASecond * static_cast<double>(microseconds) /
                                             kMicrosecondsPerSecond);
        for (int left = going(random_); left > 0; --left) {
            SendAway();
        }
    }
    std::erase_if(residents_, [this](Resident& resident) { return HasGone(resident); });
    while (!comingHasEnded_ && residents_.size() < population_) {
        Come();
    }
}

void SoakPage::RemoveAll()
{
    comingHasEnded_ = true;
    for (Resident& resident : residents_) {
        resident.isLeaving = true;
        resident.object->Cancel();
    }
    while (!residents_.empty()) {
        Round(viewer::kTickMicroseconds, false);
    }
}

void SoakPage::SendAway()
{
    Resident& resident = residents_[random_() % residents_.size()];
    resident.isLeaving = true;
    resident.object->Cancel();
}

// What is between creation and opening must have got there before another of its kind is freed.
bool SoakPage::HasGone(Resident& resident)
{
    EmbeddedObject& object = *resident.object;
    const bool isBeingOpened = opening_ != nullptr && opening_ != &object;
    if (!resident.isLeaving || object.CurrentState() == EmbeddedObject::State::kDecoding ||
        (object.Bundle() != nullptr && object.Bundle()->PlaysMovies() && isBeingOpened)) {
        return false;
    }
    if (opening_ == &object) {
        admission_.End();
        opening_ = nullptr;
    }
    SetPort(port_);
    object.Free();
    ++gone_;
    return true;
}

void SoakPage::Idle(Resident& resident)
{
    EmbeddedObject& object = *resident.object;
    if (object.CurrentState() == EmbeddedObject::State::kWaiting ||
        !object.IsIdleDue(clock_.Now(), true)) {
        return;
    }
    SetPort(port_);
    RectRgn(clip_, &object.Area());
    SetClip(clip_);
    object.Idle();
    if (TakeDirtyRegion(port_, nullptr) != 0) {
        object.NoteDrawing(EmbeddedObject::Drawing::kByItself);
    }
    object.NoteIdle(clock_.Now(), viewer::IdleRhythm::Kind::kEveryTick);
}

void SoakPage::Draw(Resident& resident)
{
    EmbeddedObject& object = *resident.object;
    object.TakeSizeChange();
    if (object.NeedsDisplay()) {
        Display(object, object.Area());
    } else if (const std::optional<Rect> band = object.TakeNewRows()) {
        Display(object, viewer::Intersection(*band, object.Area()));
    }
}

void SoakPage::Display(EmbeddedObject& object, const Rect& clip)
{
    SetPort(port_);
    RectRgn(clip_, &clip);
    SetClip(clip_);
    object.Display();
    if (TakeDirtyRegion(port_, nullptr) != 0) {
        object.NoteDrawing(EmbeddedObject::Drawing::kAsDisplayed);
    }
}

// Every other movie is played.
void SoakPage::PlayNew(Resident& resident)
{
    EmbeddedObject& object = *resident.object;
    if (resident.wasShown || !object.WasDisplayed()) {
        return;
    }
    resident.wasShown = true;
    ++shown_;
    if (!object.IsImage() && shown_ % 2 == 0) {
        EventRecord event{};
        event.what = mouseDown;
        event.where = viewer::PlayButtonOf(object.DrawnRect());
        SetPort(port_);
        object.Click(event);
    }
}

void SoakPage::Start(Resident& resident)
{
    EmbeddedObject& object = *resident.object;
    if (object.CurrentState() != EmbeddedObject::State::kWaiting || resident.isDeclined ||
        resident.isLeaving) {
        return;
    }
    object.Bytes().Pump(INT32_MAX);
    if (object.Bytes().Arrived() < kBytesToStartWith && !object.Bytes().IsAtEnd()) {
        return;
    }
    for (const auto& bundle : plugins_.Bundles()) {
        if (bundle->PlaysMovies() && opening_ != nullptr) {
            return; // asked again in a later round
        }
        if (object.IsAcceptedBy(*bundle)) {
            object.Start(*bundle);
            if (bundle->PlaysMovies()) {
                opening_ = &object;
                admission_.Begin(clock_.Now());
            }
            return;
        }
    }
    resident.isDeclined = true;
    ++unknown_;
}

void SoakPage::JudgeOpening()
{
    const auto found =
        std::find_if(residents_.begin(), residents_.end(), [this](const Resident& resident) {
            return resident.object.get() == opening_;
        });
    if (found == residents_.end()) {
        return;
    }
    EmbeddedObject& object = *found->object;
    admission_.Judge({object.HasDimensions(), object.IdleFailed(), object.IsSettled(),
                      object.Bytes().HandedOut()},
                     clock_.Now());
    if (admission_.Current() == viewer::Admission::State::kFree) {
        opening_ = nullptr;
    } else if (admission_.Current() == viewer::Admission::State::kStalled) {
        object.Cancel();
    }
}

void SoakPage::LetTimePass()
{
    clock_.AdvanceTo(clock_.Now() + viewer::kTickMicroseconds);
}
