// SPDX-License-Identifier: MIT
//
// The data handler, called through the Component Manager in any order, while bytes arrive and after
// its movie plug-in has died.
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/LiveObjects.h"
#include "tests/fuzz/MovieSession.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/StreamHost.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <cstring>
#include <list>

namespace
{

constexpr char kUntouched = '#';
constexpr SInt32 kMostBytes = 13000; // more than an object has

template <class Pointed>
ComponentSlot Slot(Pointed* pointer)
{
    return reinterpret_cast<ComponentSlot>(pointer);
}

void RequireDocumented(ComponentResult result)
{
    constexpr ComponentResult kResults[] = {noErr,    eofErr,     posErr,
                                            paramErr, memFullErr, notEnoughDataErr};
    Require(std::ranges::count(kResults, result) == 1, "the result is a documented one");
}

// One read that was asked for.
struct Request {
    Request(SInt32 from, SInt32 count, RefCon reference)
        : offset(from), size(count), refCon(reference),
          bytes(static_cast<size_t>(std::clamp(count, 1, kMostBytes)), kUntouched)
    {
    }
    char* Place() { return bytes.data(); }
    bool IsUntouched() const
    {
        return std::ranges::all_of(bytes, [](char c) { return c == kUntouched; });
    }
    // As many bytes of the object as there are on disk.
    bool HoldsTheObject(SInt32 spooled) const
    {
        const auto count =
            static_cast<SInt32>(std::clamp<SInt64>(SInt64{spooled} - offset, 0, std::max(size, 0)));
        const auto wanted = StreamHost::BytesAt(offset, count);
        return wanted.empty() || std::memcmp(wanted.data(), bytes.data(), wanted.size()) == 0;
    }

    SInt32 offset;
    SInt32 size;
    RefCon refCon;
    std::vector<char> bytes;
    int completions = 0;
    bool isCancelled = false;
    bool isQueued = false;
};

class Run
{
public:
    explicit Run(std::span<const UInt8> input) : decisions_(input), session_(decisions_)
    {
        current = this;
    }
    ~Run() { current = nullptr; }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void ToEnd()
    {
        for (int step = 0; step < 60 && !decisions_.HaveEnded(); ++step)
            Step();
    }

private:
    void Step()
    {
        constexpr void (Run::*kSteps[])() = {&Run::Arrive,      &Run::Schedule,     &Run::Schedule,
                                             &Run::Finish,      &Run::ReadAsync,    &Run::Poll,
                                             &Run::Task,        &Run::GetData,      &Run::AskSizes,
                                             &Run::AskForTexts, &Run::AskWhatItCan, &Run::End};
        (this->*kSteps[decisions_.Below(std::size(kSteps))])();
    }

    void Arrive() { session_.Arrive(decisions_.Between(0, 4000)); }
    void End()
    {
        switch (decisions_.Below(4)) {
        case 0:
            session_.KillPlugin();
            break;
        case 1:
            session_.ArriveCompletely();
            break;
        default:
            Arrive();
        }
    }

    Request& NewRequest()
    {
        const SInt32 offset =
            decisions_.Below(8) == 0 ? decisions_.AnyLong() : decisions_.Between(0, 13000);
        const SInt32 size =
            decisions_.Below(8) == 0 ? decisions_.AnyLong() : decisions_.Between(0, 5000);
        requests_.emplace_back(offset, size, static_cast<RefCon>(requests_.size() + 1));
        requests_.back().isCancelled = isCancellingAll_;
        return requests_.back();
    }
    ComponentSlot Completion() { return decisions_.Below(8) == 0 ? 0 : Slot(Complete); }

    void Schedule()
    {
        Request& request = NewRequest();
        DataHScheduleRecord record{};
        // Without a record it waits, which whoever brings the bytes must not.
        const bool mayWait = depth_ == 0 && decisions_.Below(4) == 0;
        const ComponentSlot recordSlot = mayWait ? 0 : Slot(&record);
        const wide where = {decisions_.AnyLong(), static_cast<UInt32>(request.offset)};
        const bool isWide = decisions_.Chance();
        const ComponentSlot completion = Completion();
        const ComponentResult result = session_.Call(
            isWide ? kDataHScheduleData64Select : kDataHScheduleDataSelect,
            {Slot(request.Place()), isWide ? Slot(&where) : ComponentSlot{request.offset},
             request.size, request.refCon, recordSlot, completion});
        RequireDocumented(result);
        RequireCompletedAtMostOnce(request);
        Require(result == noErr || request.completions == 0, "an error is not completed, too");
        request.isQueued = result == noErr && request.completions == 0 && completion != 0;
    }
    void ReadAsync()
    {
        Request& request = NewRequest();
        const wide where = {0, static_cast<UInt32>(request.offset)};
        const ComponentResult result =
            session_.Call(kDataHReadAsyncSelect, {Slot(request.Place()), request.size, Slot(&where),
                                                  Completion(), request.refCon});
        RequireDocumented(result);
        RequireCompletedAtMostOnce(request);
    }
    Request* AnyRequest()
    {
        if (requests_.empty())
            return nullptr;
        auto found = requests_.begin();
        std::advance(found, decisions_.Below(static_cast<UInt32>(requests_.size())));
        return &*found;
    }
    void Finish()
    {
        Request* const request = decisions_.Below(4) == 0 ? nullptr : AnyRequest();
        const bool isCancelled = decisions_.Chance();
        // Those that a completion asks for meanwhile may be among them.
        isCancellingAll_ = isCancelled && request == nullptr;
        for (Request& each : requests_)
            each.isCancelled |= isCancellingAll_ || (isCancelled && &each == request);
        RequireDocumented(
            session_.Call(kDataHFinishDataSelect, {request == nullptr ? 0 : Slot(request->Place()),
                                                   ComponentSlot{isCancelled}}));
        isCancellingAll_ = false;
    }
    void Poll()
    {
        Request* const request = AnyRequest();
        UInt32 soFar = 0;
        RequireDocumented(session_.Call(
            kDataHPollReadSelect, {request == nullptr ? 0 : Slot(request->Place()), Slot(&soFar)}));
        Require(request != nullptr || soFar == 0, "nothing comes of nothing");
    }
    void Task()
    {
        RequireDocumented(session_.Call(kDataHTaskSelect, {}));
        for (const Request& request : requests_) {
            const bool isDue =
                request.isQueued && SInt64{request.offset} + request.size <= session_.Spooled();
            Require(!isDue || depth_ > 0 || !session_.HasPlugin() || request.completions == 1,
                    "nobody waits for bytes that are there");
        }
    }

    void GetData()
    {
        Handle handle = NewHandle(decisions_.Between(0, 100));
        const SInt32 at = decisions_.Between(0, 200);
        const SInt32 offset = decisions_.Between(0, 13000);
        const SInt32 size = decisions_.Between(0, 3000);
        const SInt32 room = std::max(GetHandleSize(handle), at + size);
        const ComponentResult result =
            session_.Call(kDataHGetDataSelect, {Slot(handle), at, offset, size});
        RequireDocumented(result);
        Require(GetHandleSize(handle) == room, "the handle is as large as need be");
        Require(HGetState(handle) == 0, "and not locked");
        const SInt32 count = std::clamp(session_.Spooled() - offset, 0, size);
        if (result == noErr && session_.HasPlugin()) {
            const auto wanted = StreamHost::BytesAt(offset, count);
            Require(count == 0 ||
                        std::memcmp(*handle + at, wanted.data(), static_cast<size_t>(count)) == 0,
                    "it holds the object's bytes");
        }
        DisposeHandle(handle);
    }
    void AskSizes()
    {
        session_.estimate = decisions_.Between(-1, 20000);
        SInt32 size = -7;
        SInt32 available = -7;
        wide wideSize = {7, 7};
        Require(session_.Call(kDataHGetFileSizeSelect, {Slot(&size)}) == noErr &&
                    session_.Call(kDataHGetFileSize64Select, {Slot(&wideSize)}) == noErr &&
                    session_.Call(kDataHGetAvailableFileSizeSelect, {Slot(&available)}) == noErr,
                "sizes are always told");
        Require(wideSize.hi == 0 && wideSize.lo == static_cast<UInt32>(size),
                "both sizes are the same");
        Require(!session_.IsComplete() || size == session_.Spooled(),
                "what is complete has its size");
        const bool isEstimate = session_.HasPlugin() && session_.IsComplete() && session_.IsMpeg();
        Require(isEstimate || available == session_.Spooled(), "what has arrived is available");
    }
    void AskForTexts()
    {
        Str255 text{};
        const auto textIs = [&](const std::string& wanted) {
            return std::string(text + 1, text + 1 + text[0]) ==
                   (session_.HasPlugin() ? wanted : std::string());
        };
        Require(session_.Call(kDataHGetFileNameSelect, {Slot(text)}) == noErr &&
                    textIs(session_.FileName()),
                "the name is the plug-in's");
        Require(session_.Call(kDataHGetMIMETypeSelect, {Slot(text)}) == noErr &&
                    textIs(session_.MimeType()),
                "so is the type");
        OSType type = 0;
        session_.Call(kDataHGetMacOSFileTypeSelect, {Slot(&type)});
        Require(type == (session_.HasPlugin() ? FOUR_CHARS('M', 'o', 'o', 'V') : 0),
                "and that of the file");
        UInt32 flags = 0;
        session_.Call(kDataHGetInfoFlagsSelect, {Slot(&flags)});
        Require(flags == kDataHInfoFlagNeedsNetworkBandwidth, "it needs a network");
        Require(session_.Call(kDataHFlushCacheSelect, {}) == noErr, "nothing is cached");
    }
    void AskWhatItCan()
    {
        const auto selector = static_cast<SInt16>(decisions_.Between(INT16_MIN, INT16_MAX));
        const ComponentResult can = session_.Call(kComponentCanDoSelect, {ComponentSlot{selector}});
        Require(can == 0 || can == 1, "it can or cannot");
        if (selector >= 100 || selector < -10)
            Require(can == 0 && session_.Call(selector, {}) == badComponentSelector,
                    "what nobody can is refused");
    }

    static void Complete(char* place, RefCon refCon, OSErr err)
    {
        Run& run = *current;
        const auto request = std::ranges::find_if(
            run.requests_, [&](Request& each) { return each.Place() == place; });
        Require(request != run.requests_.end(), "what is completed was asked for");
        ++request->completions;
        RequireCompletedAtMostOnce(*request);
        Require(refCon == request->refCon || refCon == 0, "with its reference constant");
        RequireDocumented(err);
        if (!run.session_.HasPlugin())
            Require(err == noErr, "without a plug-in nothing fails");
        else if (err == noErr && !request->isCancelled)
            Require(request->HoldsTheObject(run.session_.Spooled()), "it holds the object's bytes");
        run.CallBack();
    }
    // A completion routine may ask for more.
    void CallBack()
    {
        if (depth_ > 0 || decisions_.Below(4) != 0)
            return;
        ++depth_;
        switch (decisions_.Below(3)) {
        case 0:
            Task();
            break;
        case 1:
            Poll();
            break;
        default:
            Schedule();
        }
        --depth_;
    }
    static void RequireCompletedAtMostOnce(const Request& request)
    {
        Require(request.completions <= 1, "a request is completed once");
    }

    static Run* current;

    Decisions decisions_;
    std::list<Request> requests_; // outlive the session, which may copy into them
    MovieSession session_;
    int depth_ = 0;
    bool isCancellingAll_ = false;
};

Run* Run::current = nullptr;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    const LiveObjects before;
    Run({bytes, size}).ToEnd();
    Require(LiveObjects() == before, "nothing is left behind");
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    std::vector<FuzzInput> seeds;
    for (UInt8 step = 0; step < 12; ++step) {
        FuzzInput seed = {0x20, step, step, 3, 4, 'a', 'b', 'c', 'd', 3, 200};
        for (UInt8 i = 0; i < 12; ++i)
            seed.insert(seed.end(),
                        {step, 1, i, 17, 1, 5, 100, 1, 0, 0, 1, i, 2, 3, 1, 1, 0, 9, 1});
        seeds.push_back(seed);
    }
    return seeds;
}
