// SPDX-License-Identifier: MIT
#include "tests/fuzz/MovieSession.h"

#include "src/datahandler/DataHandlerRegistration.h"
#include "src/datasource/VornPluginDataSource.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/StreamHost.h"
#include "toolbox/Errors.h"
#include "toolbox/gestalt/Gestalt.h"

#include <algorithm>
#include <cstring>

MovieSession* MovieSession::current = nullptr;

MovieSession::MovieSession(Decisions& decisions)
    : size_(decisions.Between(0, 12000)), isMpeg_(decisions.Chance()),
      fileName_("clip" + decisions.Text(20))
{
    current = this;
    constexpr SInt32 kVersions[] = {0x04008000, 0x04108000, 0x05008000, 0x07008000};
    SetGestaltValue(gestaltQuickTime, kVersions[decisions.Below(4)]);
    const VornPluginHostCalls calls = {
        [](VornPlugin*, const Rect*) -> OSErr { return 0; },
        [](VornPlugin*, OSErr) -> OSErr { return 0; },
        [](VornPlugin*, SInt16, SInt16) -> OSErr { return 0; }, GetData,
        [](VornPlugin*, SInt32* bytes) -> OSErr { return *bytes = current->estimate, OSErr{0}; }};
    SetupPluginHostCalls(&calls);
    Require(EnsureDataHandlerRegistered() == noErr, "the data handler is registered");
    plugin_ = std::make_unique<VornMoviePlugin>(nullptr);
    plugin_->dataSource = new VornPluginDataSource(*plugin_);
    plugin_->Initialize(FOUR_CHARS('M', 'o', 'o', 'V'), 0, fileName_.c_str(), MimeType());
    plugin_->CreateMovieFile();
    Arrive(decisions.Between(0, 3000));
    Require(OpenAComponent(gDataHandlerComponent, &instance_) == noErr, "the handler opens");
    feeder_.emplace([this] {
        for (;;) {
            YieldToAnyThread();
            Feed();
        }
    });
}

MovieSession::~MovieSession()
{
    feeder_.reset();
    Require(CloseComponent(instance_) == noErr, "the handler closes");
    KillPlugin();
}

void MovieSession::Arrive(SInt32 count)
{
    if (plugin_ == nullptr || isComplete_)
        return;
    arrived_ = std::min(size_, arrived_ + count);
    while (plugin_->bytesSpooled < arrived_)
        plugin_->SpoolMovieToFile();
    spooled_ = plugin_->bytesSpooled;
    plugin_->NotifyListenersProgress(spooled_);
}

void MovieSession::ArriveCompletely()
{
    if (plugin_ == nullptr || isComplete_)
        return;
    Arrive(size_);
    isComplete_ = true;
    while (!plugin_->allDataSpooled)
        plugin_->SpoolMovieToFile();
    plugin_->CloseMovieFile();
    plugin_->NotifyListenersComplete(spooled_);
}

void MovieSession::KillPlugin()
{
    if (plugin_ != nullptr)
        plugin_->CloseMovieFile();
    plugin_.reset();
}

ComponentResult MovieSession::Call(SInt16 selector, std::initializer_list<ComponentSlot> slots)
{
    ComponentParameters params{};
    params.what = selector;
    params.paramSize = static_cast<UInt8>(slots.size());
    std::ranges::copy(slots, params.params);
    return CallComponent(instance_, &params);
}

void MovieSession::Feed()
{
    if (arrived_ < size_)
        Arrive(1000);
    else
        ArriveCompletely();
}

OSErr MovieSession::GetData(VornPlugin*, void* buffer, SInt32 offset, SInt32* count,
                            SInt32* dataSize, unsigned char* dataComplete)
{
    const SInt32 there = std::clamp(current->arrived_ - offset, 0, *count);
    if (buffer != nullptr && there > 0)
        std::memcpy(buffer, StreamHost::BytesAt(offset, there).data(), static_cast<size_t>(there));
    const bool isPastEnd = current->isComplete_ && *count > 0 && there == 0;
    *count = there;
    *dataSize = current->arrived_;
    *dataComplete = current->isComplete_ ? 1 : 0;
    return isPastEnd ? OSErr{kDataNotAvailableErr} : OSErr{noErr};
}
