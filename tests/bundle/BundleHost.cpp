// SPDX-License-Identifier: MIT
#include "tests/bundle/BundleHost.h"

#include "toolbox/Errors.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace
{

std::map<VornPlugin*, HostedObject*>& Objects()
{
    static std::map<VornPlugin*, HostedObject*> objects;
    return objects;
}

} // namespace

HostedObject::HostedObject(const test::BuiltBundle& bundle, std::string bytes, CGrafPtr port)
    : bundle_(bundle), bytes_(std::move(bytes)), port_(port)
{
    const OSErr err =
        bundle.makeNewObject(bundle.bundle, &Calls(), FOUR_CHARS('M', 'P', 'E', 'G'),
                             FOUR_CHARS('?', '?', '?', '?'), "clip.mpg", "video/mpeg", &object_);
    if (err != noErr) {
        throw std::runtime_error("no object: " + std::to_string(err));
    }
    Objects()[object_] = this;
}

HostedObject::~HostedObject()
{
    Cancel();
    while (IsDecoding()) {
        YieldToAnyThread();
    }
    SetPort(port_);
    bundle_.freeObject(object_);
    Objects().erase(object_);
}

void HostedObject::Decode()
{
    const auto entry = [](void* self) -> void* {
        auto* const object = static_cast<HostedObject*>(self);
        object->decodeResult = object->bundle_.decodeObject(object->object_);
        object->decoding = kNoThreadID;
        return nullptr;
    };
    void* const ownerBefore = GetStatisticsOwner();
    SetStatisticsOwner(this);
    SetPort(port_);
    const OSErr err = NewThread(kCooperativeThread, entry, this, 0, 0, nullptr, &decoding);
    SetStatisticsOwner(ownerBefore);
    if (err != noErr) {
        throw std::runtime_error("no thread: " + std::to_string(err));
    }
}

bool HostedObject::DisposeDecodingThread()
{
    if (!IsDecoding()) {
        return false;
    }
    DisposeThread(decoding, nullptr, 0);
    decoding = kNoThreadID;
    return isSpooling;
}

void HostedObject::Idle()
{
    SetPort(port_);
    idleResult = bundle_.idleObject(object_, &area_, 0);
    if (std::exchange(hasNewSize_, false)) {
        bundle_.displayObject(object_, &area_, 0);
    }
}

// The bar's second button; the object's rectangle ends one row below the bar.
void HostedObject::ClickPlay()
{
    EventRecord event{};
    event.what = mouseDown;
    event.where = Point{static_cast<SInt16>(area_.bottom - 1 - 8), 24};
    bundle_.handleObjectClick(object_, &area_, &event);
}

MovieStatistics HostedObject::Statistics()
{
    MovieStatistics statistics;
    GetMovieStatistics(this, &statistics);
    return statistics;
}

HostedObject& HostedObject::Of(VornPlugin* object)
{
    return *Objects().at(object);
}

OSErr HostedObject::GetData(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                            unsigned char* dataComplete)
{
    isSpooling = isSpooling || *count > 4096;
    YieldToAnyThread();
    const auto isEnd = [this] { return cancelled || arrived >= bytes_.size(); };
    const auto from = static_cast<size_t>(offset);
    const size_t enough = from + (*count > 4096 ? 1 : static_cast<size_t>(*count));
    while (std::min(arrived, bytes_.size()) < enough && !isEnd()) {
        YieldToAnyThread();
    }
    const size_t end = std::min(arrived, bytes_.size());
    const size_t given = from < end ? std::min(static_cast<size_t>(*count), end - from) : 0;
    if (buffer != nullptr) {
        std::memcpy(buffer, bytes_.data() + offset, given);
    }
    handedOut = std::max(handedOut, from + given);
    const bool isPastEnd = *count > 0 && given == 0;
    *count = static_cast<SInt32>(given);
    *dataSize = static_cast<SInt32>(end);
    *dataComplete = isEnd() ? 1 : 0;
    return isPastEnd ? OSErr{kDataNotAvailableErr} : OSErr{noErr};
}

const VornPluginHostCalls& HostedObject::Calls()
{
    static const VornPluginHostCalls calls = {
        [](VornPlugin* object, const Rect* rect) -> OSErr {
            Of(object).area_ = *rect;
            Of(object).hasNewSize_ = true;
            return noErr;
        },
        [](VornPlugin*, OSErr) -> OSErr { return noErr; },
        [](VornPlugin*, SInt16, SInt16) -> OSErr { return noErr; },
        [](VornPlugin* object, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
           unsigned char* dataComplete) -> OSErr {
            return Of(object).GetData(buffer, offset, count, dataSize, dataComplete);
        },
        [](VornPlugin* object, SInt32* bytes) -> OSErr {
            *bytes = static_cast<SInt32>(Of(object).bytes_.size());
            return noErr;
        }};
    return calls;
}
