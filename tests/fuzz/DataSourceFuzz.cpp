// SPDX-License-Identifier: MIT
//
// The stream data source, beside a model of it.
#include "src/datasource/VornPluginDataSource.h"
#include "src/plugin/VornPluginABI.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/SourceModel.h"
#include "tests/support/TestPlugin.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Probe.h"

#include <algorithm>
#include <cstring>

namespace
{

// Of the run that is under way.
struct Stream {
    StreamHost host;
    std::vector<StreamHost::Request> requests;
    bool hasMemory = true;
};
Stream* gStream = nullptr;

OSErr GetData(VornPlugin*, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
              unsigned char* dataComplete)
{
    gStream->requests.push_back({buffer != nullptr, offset, *count});
    const StreamHost::Answer answer = gStream->host.AnswerTo(gStream->requests.back());
    if (!answer.bytes.empty())
        std::memcpy(buffer, answer.bytes.data(), answer.bytes.size());
    if (answer.tellsCount)
        *count = static_cast<SInt32>(answer.bytes.size());
    if (answer.tellsSize) {
        *dataSize = gStream->host.toldSize;
        *dataComplete = gStream->host.toldComplete;
    }
    return answer.result;
}

OSErr FailWithoutMemory(const char* operation, void*)
{
    const bool isAllocation = std::strcmp(operation, "NewHandle") == 0;
    return isAllocation && !gStream->hasMemory ? OSErr{memFullErr} : OSErr{noErr};
}

// Runs an operation that answers an Outcome or throws.
template <class Operation>
Outcome OutcomeOf(const Operation& operation)
{
    try {
        return operation();
    } catch (OSErr code) {
        return {.code = code, .isThrown = true};
    }
}

class Run
{
public:
    explicit Run(std::span<const UInt8> input) : decisions_(input)
    {
        gStream = &stream_;
        const VornPluginHostCalls calls = {[](VornPlugin*, const Rect*) -> OSErr { return 0; },
                                           [](VornPlugin*, OSErr) -> OSErr { return 0; },
                                           [](VornPlugin*, SInt16, SInt16) -> OSErr { return 0; },
                                           GetData,
                                           [](VornPlugin*, SInt32*) -> OSErr { return 0; }};
        SetupPluginHostCalls(&calls);
        SetToolboxObserver(FailWithoutMemory, nullptr);
    }
    ~Run() { SetToolboxObserver(nullptr, nullptr); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void ToEnd()
    {
        constexpr void (Run::*kSteps[])() = {
            &Run::Arrive,     &Run::Prepare,    &Run::Create,    &Run::Remove,     &Run::Fetch,
            &Run::GetBytes,   &Run::GetAddress, &Run::ReadBlock, &Run::ReadBlock,  &Run::ReadNumber,
            &Run::ReadNumber, &Run::Skip,       &Run::SkipTo,    &Run::SkipFromEnd};
        while (!decisions_.HaveEnded()) {
            (this->*kSteps[decisions_.Below(std::size(kSteps))])();
            CompareState();
        }
    }

private:
    void Arrive() { stream_.host.Change(decisions_); }

    void Prepare()
    {
        stream_.hasMemory = decisions_.Below(4) != 0;
        const Outcome wanted = model_.CreateCache(0, 4096, stream_.hasMemory);
        const Outcome got = OutcomeOf([&] {
            source_.PrepareDataSource();
            return Outcome{};
        });
        Require(got.isThrown == wanted.isThrown, "preparing throws what the host said");
        Require(!got.isThrown || got.code == wanted.code, "and nothing else");
    }
    void Create()
    {
        stream_.hasMemory = decisions_.Below(8) != 0;
        const SInt32 offset = AnyOffset();
        const SInt32 size = decisions_.Between(-2, 6000);
        const Outcome wanted = model_.CreateCache(offset, size, stream_.hasMemory);
        Compare(OutcomeOf([&] { return Outcome{.code = source_.CreateDataCache(offset, size)}; }),
                wanted);
    }
    void Remove()
    {
        source_.TerminateDataSource();
        model_.RemoveCache();
    }
    void Fetch()
    {
        const SInt32 offset = AnyOffset();
        const bool isQuestion = decisions_.Below(4) == 0;
        const SInt32 count = isQuestion ? 0 : AnyCount();
        const bool mustHaveAll = decisions_.Chance();
        SInt32 counted = count;
        std::vector<UInt8> buffer = Buffer(count);
        Outcome got = OutcomeOf([&] {
            return Outcome{.code = source_.FetchDataFromSource(isQuestion ? nullptr : buffer.data(),
                                                               offset, &counted, mustHaveAll)};
        });
        got.count = counted;
        CompareBlock(got, model_.Fetch(!isQuestion, offset, count, mustHaveAll), offset, buffer);
    }
    void GetBytes()
    {
        const SInt32 offset = AnyOffset();
        const SInt32 count = AnyCount();
        SInt32 counted = count;
        std::vector<UInt8> buffer = Buffer(count);
        Outcome got = OutcomeOf(
            [&] { return Outcome{.code = source_.GetBytes(buffer.data(), offset, &counted)}; });
        got.count = counted;
        CompareBlock(got, model_.GetBytes(offset, count), offset, buffer);
    }
    void GetAddress()
    {
        const SInt32 offset = AnyOffset();
        const auto length = static_cast<SInt32>(decisions_.Below(5000));
        const UInt8* address = nullptr;
        const Outcome got = OutcomeOf([&] {
            address = source_.GetBytesDataPtr(offset, length);
            return Outcome{.isNull = address == nullptr};
        });
        Compare(got, model_.GetAddress(offset, length));
        if (address != nullptr && length > 0)
            RequireBytes({address, static_cast<size_t>(length)}, offset, length);
    }
    void ReadBlock()
    {
        const SInt32 offset = source_.readOffset;
        const SInt32 count = AnyCount();
        const bool advance = decisions_.Chance();
        const bool isStream = decisions_.Chance();
        SInt32 counted = count;
        std::vector<UInt8> buffer = Buffer(count);
        Outcome got = OutcomeOf([&] {
            return Outcome{
                .code = isStream ? source_.ReadByteStream(&counted, buffer.data(), advance)
                                 : source_.ReadAvailableBytes(&counted, buffer.data(), advance)};
        });
        got.count = counted;
        CompareBlock(got, model_.ReadBlock(count, advance || isStream), offset, buffer);
    }
    void ReadNumber()
    {
        const SInt32 offset = source_.readOffset;
        const bool advance = decisions_.Chance();
        UInt32 number = 0;
        const SInt32 width = SInt32{1} << decisions_.Below(3);
        const Outcome got = OutcomeOf([&] {
            number = Number(width, advance);
            return Outcome{};
        });
        Compare(got, model_.ReadNumber(width, advance));
        if (got.isThrown)
            return;
        UInt32 wanted = 0;
        for (int shift = 0; const UInt8 byte : StreamHost::BytesAt(offset, width)) {
            wanted |= UInt32{byte} << shift;
            shift += 8;
        }
        Require(number == wanted, "numbers are little-endian");
    }
    void Skip()
    {
        const SInt32 n = decisions_.AnyLong();
        if (decisions_.Chance()) {
            source_.SkipBytes(n);
            model_.Skip(n);
        } else {
            source_.SkipToOffset(n);
            model_.readOffset = n;
        }
    }
    void SkipTo()
    {
        const UInt8 target = decisions_.Byte();
        const bool advance = decisions_.Chance();
        // It goes on for ever where the byte does not come.
        SourceModel trial = model_;
        const std::optional<Outcome> wanted = trial.SkipTo(target, advance);
        model_.searchSteps = trial.searchSteps;
        if (!wanted)
            return;
        model_ = trial;
        Compare(OutcomeOf([&] {
                    Outcome outcome;
                    source_.SkipTo(target, &outcome.count, advance);
                    return outcome;
                }),
                *wanted);
    }
    void SkipFromEnd()
    {
        const SInt32 n = decisions_.AnyLong();
        const Outcome got = OutcomeOf([&] {
            source_.SkipToOffsetFromBufferEnd(n);
            return Outcome{};
        });
        Compare(got, model_.SkipToOffsetFromEnd(n));
    }

    SInt32 AnyOffset()
    {
        return decisions_.Chance() ? decisions_.Between(-100, 13000) : decisions_.AnyLong();
    }
    SInt32 AnyCount() { return decisions_.Between(-5, decisions_.Chance() ? 10 : 9000); }
    // With exactly the room that a count promises, but never null.
    static std::vector<UInt8> Buffer(SInt32 count)
    {
        return std::vector<UInt8>(static_cast<size_t>(std::max(count, 1)));
    }

    UInt32 Number(SInt32 width, bool advance)
    {
        UInt8 one = 0;
        UInt16 two = 0;
        UInt32 four = 0;
        switch (width) {
        case 1:
            source_.ReadUChar(&one, advance);
            return one;
        case 2:
            source_.ReadUShort(&two, advance);
            return two;
        default:
            source_.ReadULong(&four, advance);
            return four;
        }
    }

    static void Compare(const Outcome& got, const Outcome& wanted)
    {
        Require(got.isThrown == wanted.isThrown, "it throws what it must throw");
        Require(got.code == wanted.code, "its result is that of the model");
        Require(got.isNull == wanted.isNull, "it gives an address where there is one");
        Require(got.isThrown || got.count == wanted.count, "it counts what it read");
    }
    static void CompareBlock(const Outcome& got, const Outcome& wanted, SInt32 offset,
                             const std::vector<UInt8>& buffer)
    {
        Compare(got, wanted);
        RequireBytes(buffer, offset, wanted.copied);
    }
    static void RequireBytes(std::span<const UInt8> bytes, SInt32 offset, SInt32 count)
    {
        const auto wanted = StreamHost::BytesAt(offset, count);
        Require(static_cast<SInt32>(wanted.size()) == count &&
                    std::equal(wanted.begin(), wanted.end(), bytes.begin()),
                "the bytes are those of the object");
    }

    void CompareState()
    {
        Require(source_.readOffset == model_.readOffset, "the read offset");
        Require(source_.dataSize == model_.dataSize, "the data's size");
        Require(source_.lastError == model_.lastError, "the last error");
        Require(source_.dataComplete == model_.dataComplete, "whether the data are complete");
        Require(source_.cacheStart == model_.cacheStart, "the cache's start");
        Require(source_.cacheCapacity == model_.cacheCapacity, "the cache's capacity");
        Require(source_.cacheLength == model_.cacheLength, "the cache's length");
        Require(stream_.requests == model_.requests, "the host is asked for the same");
        Require(source_.cacheHandle == nullptr || HGetState(source_.cacheHandle) == 0,
                "the block is not left locked");
        stream_.requests.clear();
        model_.requests.clear();
    }

    Decisions decisions_;
    Stream stream_;
    test::TestPlugin plugin_{nullptr};
    VornPluginDataSource source_{plugin_};
    SourceModel model_{stream_.host};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    Run({bytes, size}).ToEnd();
    Require(CountLiveObjects(kLiveHandles) == handles, "no block is left behind");
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    // Data arrive, the cache is made, then each of the steps.
    std::vector<FuzzInput> seeds;
    for (UInt8 step = 0; step < 14; ++step)
        seeds.push_back({0, 0x20, 0x20, 1, 1, 1, 1,    1, step, 1, 2, 3, 4,    5, 6, 7,
                         0, 0x2E, 0x20, 0, 1, 1, step, 8, 9,    1, 1, 1, step, 0, 0, 1});
    return seeds;
}
