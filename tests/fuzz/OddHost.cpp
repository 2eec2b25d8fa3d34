// SPDX-License-Identifier: MIT
#include "tests/fuzz/OddHost.h"

#include "tests/fuzz/Require.h"
#include "toolbox/Errors.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

constexpr int kMostRequests = 300; // then nothing more comes
constexpr int kMostYields = 20000; // that a decoding takes to end

std::map<VornPlugin*, OddObject*>& Objects()
{
    static std::map<VornPlugin*, OddObject*> objects;
    return objects;
}

} // namespace

void RequireDocumented(OSErr result)
{
    constexpr OSErr kOwn[] = {kDataOutOfRangeErr,   kVornErrRenderFailed, kVornErrImageFailed,
                              kDataNotAvailableErr, kVornErrImageNoData,  kVornErrStillRendering,
                              kVornErrReserved1210};
    Require(result <= 0 || std::ranges::count(kOwn, result) == 1, "the result is documented");
}

OddObject::OddObject(const test::BuiltBundle& ownBundle, std::vector<UInt8> bytes, bool mayFail,
                     Decisions& decisions)
    : bundle_(ownBundle), bytes_(std::move(bytes)), mayFail_(mayFail), decisions_(decisions)
{
    const std::string name = decisions.Text(40);
    const std::string type = decisions.Text(20);
    const OSErr made =
        bundle_.makeNewObject(bundle_.bundle, &Calls(), FOUR_CHARS('M', 'P', 'E', 'G'), 0,
                              name.c_str(), type.c_str(), &object_);
    Require(made == noErr && object_ != nullptr, "an object is made");
    Objects()[object_] = this;
}

OddObject::~OddObject()
{
    isCancelled_ = true;
    int yields = 0;
    while (thread_ != kNoThreadID) {
        YieldToAnyThread();
        Require(++yields < kMostYields, "decoding ends when no more bytes come");
    }
    bundle_.freeObject(object_);
    Objects().erase(object_);
}

void OddObject::Decode()
{
    if (std::exchange(hasStarted_, true))
        return;
    const auto entry = [](void* self) -> void* {
        auto& object = *static_cast<OddObject*>(self);
        RequireDocumented(object.bundle_.decodeObject(object.object_));
        object.thread_ = kNoThreadID;
        return nullptr;
    };
    Require(NewThread(kCooperativeThread, entry, this, 0, 0, nullptr, &thread_) == noErr,
            "there is a thread");
}

OddObject* OddObject::Of(VornPlugin* object)
{
    const auto found = Objects().find(object);
    Require(found != Objects().end(), "the host knows who calls");
    return found->second;
}

// What the plug-in may not care for.
OSErr OddObject::OddResult()
{
    return static_cast<OSErr>(decisions_.Between(INT16_MIN, INT16_MAX));
}

// Bytes come with every turn: who waits may be the one that would bring them.
void OddObject::WaitFor(size_t offset, SInt32 count)
{
    const size_t enough = offset + static_cast<size_t>(count > 4096 ? 1 : count);
    YieldToAnyThread();
    while (std::min(arrived_, bytes_.size()) < enough && !HasEnded()) {
        YieldToAnyThread();
        Arrive(256);
    }
}

OSErr OddObject::GetData(void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                         unsigned char* dataComplete)
{
    isCancelled_ = isCancelled_ || ++requests_ > kMostRequests;
    const SInt32 wanted = *count;
    Require(wanted >= 0 && (buffer != nullptr || wanted == 0), "bytes are asked for with room");
    Require(offset >= 0 || wanted == 0, "and from where there may be some");
    WaitFor(static_cast<size_t>(std::max(offset, 0)), wanted);
    const auto end = static_cast<SInt32>(isCancelled_ ? 0 : std::min(arrived_, bytes_.size()));
    *count = std::clamp(end - std::max(offset, 0), 0, wanted);
    if (*count > 0)
        std::memcpy(buffer, bytes_.data() + offset, static_cast<size_t>(*count));
    *dataSize = end;
    *dataComplete = HasEnded() ? 1 : 0;
    const bool isOdd = decisions_.Below(32) == 1;
    if (isOdd) {
        *dataSize = decisions_.AnyLong();
        *dataComplete = decisions_.Byte();
    }
    if (wanted > 0 && *count == 0)
        // A code of its own may come back as the result, so it is one of the platform.
        return mayFail_ && decisions_.Below(8) == 1
                   ? static_cast<OSErr>(decisions_.Between(INT16_MIN, -1))
                   : OSErr{kDataNotAvailableErr};
    return noErr;
}

const VornPluginHostCalls& OddObject::Calls()
{
    static const VornPluginHostCalls calls = {
        [](VornPlugin* object, const Rect* rect) -> OSErr {
            Require(rect->top == 0 && rect->left == 0, "a size is told from its top left");
            return Of(object)->OddResult();
        },
        [](VornPlugin* object, OSErr err) -> OSErr {
            RequireDocumented(err);
            return Of(object)->OddResult();
        },
        [](VornPlugin* object, SInt16 first, SInt16 end) -> OSErr {
            Require(first >= 0 && first < end, "new rows are some");
            OddObject& told = *Of(object);
            const Rect area = {0, 0, 50, 60};
            if (told.decisions_.Chance())
                RequireDocumented(told.bundle_.displayObject(object, &area, 0));
            return told.OddResult();
        },
        [](VornPlugin* object, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
           unsigned char* dataComplete) -> OSErr {
            return Of(object)->GetData(buffer, offset, count, dataSize, dataComplete);
        },
        [](VornPlugin* object, SInt32* bytes) -> OSErr {
            *bytes = Of(object)->decisions_.AnyLong();
            return Of(object)->OddResult();
        }};
    return calls;
}
