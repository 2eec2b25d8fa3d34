// SPDX-License-Identifier: MIT
//
// The C boundary: objects of all bundles, called in any order, by a host that is odd where it may.
#include "tests/decoders/GifBuilder.h"
#include "tests/decoders/JpegFiles.h"
#include "tests/decoders/PngFiles.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/LiveObjects.h"
#include "tests/fuzz/OddHost.h"
#include "tests/fuzz/Require.h"
#include "tests/support/ArrivingData.h"
#include "tests/support/ManualClock.h"
#include "tests/support/MemoryLimit.h"
#include "toolbox/Errors.h"
#include "toolbox/quickdraw/QDOffscreen.h"

#include <list>

namespace
{

constexpr size_t kMostObjects = 4;
constexpr int kMostSteps = 80;

struct Kind {
    test::BuiltBundle bundle;
    FuzzInput file;
    bool mayFail = true;
};

FuzzInput BytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

FuzzInput AnimatedGif()
{
    return BytesOf(test::GifBuilder(8, 6, {0xFF0000, 0x00FF00})
                       .Repeats(3)
                       .Image({.width = 8, .height = 6, .indices = std::string(48, '\1')})
                       .Control({.disposal = 3, .delay = 2, .transparent = 1, .userInput = true})
                       .Image({.left = 2,
                               .top = 1,
                               .width = 3,
                               .height = 3,
                               .indices = std::string("\0\1\0\1\0\1\0\1\0", 9)})
                       .Bytes());
}

const Kind& AnyKind(Decisions& decisions)
{
    static const Kind kinds[] = {
        {test::BuiltBundle("VornMovie"), BytesOf(ReadWholeFile(VORN_CLIPS "/tiny.mpg")), false},
        {test::BuiltBundle("VornGIF"), AnimatedGif()},
        {test::BuiltBundle("VornPNG"),
         test::WritePng({.width = 9, .height = 8, .colorType = PNG_COLOR_TYPE_RGBA})},
        {test::BuiltBundle("VornJPEG"),
         test::WriteJpeg({.width = 17, .height = 9, .isProgressive = true})},
    };
    return kinds[decisions.Below(std::size(kinds))];
}

CGrafPtr Port()
{
    static const CGrafPtr port = [] {
        const Rect bounds = {0, 0, 120, 150};
        CGrafPtr made = nullptr;
        Require(CreateWindowPort(&bounds, &made) == noErr, "there is a port");
        return made;
    }();
    return port;
}

class Session
{
public:
    explicit Session(std::span<const UInt8> input) : decisions_(input) { SetPort(Port()); }
    ~Session()
    {
        objects_.clear();
        SetPort(nullptr);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void Run()
    {
        for (int step = 0; step < kMostSteps && !decisions_.HaveEnded(); ++step) {
            SetPort(Port());
            Step();
        }
    }

private:
    void Step()
    {
        constexpr void (Session::*kGeneral[])() = {&Session::Make, &Session::Free,
                                                   &Session::AskWhatItCan, &Session::RefuseTable,
                                                   &Session::PassTime};
        constexpr void (Session::*kOfObject[])(OddObject&) = {
            &Session::Decode, &Session::Decode,   &Session::Arrive,      &Session::Display,
            &Session::Idle,   &Session::Idle,     &Session::Click,       &Session::Drag,
            &Session::Take,   &Session::AskPlace, &Session::AskForState, &Session::SetFlags};
        const UInt32 choice = decisions_.Below(std::size(kGeneral) + std::size(kOfObject));
        if (choice < std::size(kGeneral)) {
            (this->*kGeneral[choice])();
        } else if (!objects_.empty()) {
            auto object = objects_.begin();
            std::advance(object, decisions_.Below(static_cast<UInt32>(objects_.size())));
            (this->*kOfObject[choice - std::size(kGeneral)])(*object);
        }
    }

    void Make()
    {
        if (objects_.size() == kMostObjects)
            return;
        const Kind& kind = AnyKind(decisions_);
        FuzzInput file = kind.file;
        switch (decisions_.Below(4)) {
        case 0:
            file.resize(decisions_.Below(static_cast<UInt32>(file.size()) + 1));
            break;
        case 1:
            file[decisions_.Below(static_cast<UInt32>(file.size()))] = decisions_.Byte();
            break;
        default:
            break;
        }
        objects_.emplace_back(kind.bundle, file, kind.mayFail, decisions_);
    }
    void Free()
    {
        if (!objects_.empty())
            objects_.erase(objects_.begin());
    }
    void AskWhatItCan()
    {
        const Kind& kind = AnyKind(decisions_);
        const FuzzInput bytes = decisions_.Bytes(8);
        const std::string type = decisions_.Text(20);
        const std::string name = decisions_.Text(20);
        const Boolean can = kind.bundle.canHandleData(kind.bundle.bundle, bytes.data(),
                                                      static_cast<SInt32>(bytes.size()),
                                                      type.c_str(), name.c_str());
        Require(can == 0 || can == 1, "it can or cannot");
    }
    void RefuseTable()
    {
        const Kind& kind = AnyKind(decisions_);
        VornPluginHostCalls calls = OddObject::Calls();
        calls.getEstimatedObjectBytes = nullptr;
        auto* object = reinterpret_cast<VornPlugin*>(this);
        Require(kind.bundle.makeNewObject(kind.bundle.bundle, &calls, 0, 0, "", "", &object) ==
                        paramErr &&
                    object == nullptr,
                "a table with a null slot is refused");
        // It is in force nevertheless, and nobody could be called through it.
        object = nullptr;
        kind.bundle.makeNewObject(kind.bundle.bundle, &OddObject::Calls(), 0, 0, "", "", &object);
        kind.bundle.freeObject(object);
    }
    void PassTime()
    {
        clock_.GoToTick(ticks_ += decisions_.Byte());
        YieldToAnyThread();
    }

    void Decode(OddObject& object)
    {
        object.Decode();
        YieldToAnyThread();
    }
    void Arrive(OddObject& object)
    {
        object.Arrive(size_t{1} << decisions_.Below(17));
        YieldToAnyThread();
    }
    Rect Area()
    {
        if (decisions_.Below(4) != 0)
            return {0, 0, static_cast<SInt16>(decisions_.Byte()),
                    static_cast<SInt16>(decisions_.Byte())};
        const auto coordinate = [this] { return static_cast<SInt16>(decisions_.AnyLong()); };
        const SInt16 top = coordinate();
        const SInt16 left = coordinate();
        const SInt16 bottom = coordinate();
        return {top, left, bottom, coordinate()};
    }
    void Display(OddObject& object)
    {
        const Rect area = Area();
        RequireDocumented(object.Bundle().displayObject(object.Get(), &area, decisions_.Byte()));
    }
    void Idle(OddObject& object)
    {
        const Rect area = Area();
        clock_.GoToTick(ticks_ += decisions_.Below(10));
        RequireDocumented(object.Bundle().idleObject(object.Get(), &area, decisions_.Byte()));
    }
    void Click(OddObject& object)
    {
        const Rect area = Area();
        EventRecord event{};
        event.what = static_cast<UInt16>(decisions_.Below(16));
        event.message = static_cast<UInt32>(decisions_.AnyLong());
        event.modifiers = static_cast<UInt16>(decisions_.Byte() << 8);
        event.where =
            Point{static_cast<SInt16>(decisions_.Byte()), static_cast<SInt16>(decisions_.Byte())};
        const Boolean taken = object.Bundle().handleObjectClick(object.Get(), &area, &event);
        Require(taken == 0 || taken == 1, "an event is taken or not");
    }
    void Drag(OddObject& object)
    {
        const Rect area = Area();
        DragRef drag = nullptr;
        Require(NewDrag(&drag) == noErr, "there is a drag");
        unsigned char isAllowed = 0;
        RequireDocumented(object.Bundle().prepareDrag(object.Get(), drag, 1, &area,
                                                      decisions_.Chance() ? &isAllowed : nullptr));
        RequireDocumented(object.Bundle().cleanupDrag(object.Get()));
        Require(DisposeDrag(drag) == noErr, "it is over");
    }
    void Take(OddObject& object)
    {
        UInt32 type = 0;
        Handle data = nullptr;
        RequireDocumented(object.Bundle().getObjectData(object.Get(), &type,
                                                        decisions_.Chance() ? &data : nullptr));
        DisposeHandle(data);
    }
    void AskPlace(OddObject& object)
    {
        const Rect area = Area();
        Rect place{};
        object.Bundle().getDisplayRect(object.Get(), &area, &place);
    }
    void AskForState(OddObject& object)
    {
        OSErr error = 1;
        object.Bundle().getRenderingError(object.Get(), &error);
        RequireDocumented(error);
        const Boolean have = object.Bundle().haveDimensions(object.Get());
        Require(have == 0 || have == 1, "it has a size or not");
        // With exactly the room that it is promised.
        const UInt32 most = decisions_.Below(300);
        std::vector<char> comment(size_t{most} + 1, '#');
        object.Bundle().getComment(object.Get(), comment.data(), most);
        Require(std::ranges::count(comment, '\0') >= 1, "a comment has an end");
    }
    void SetFlags(OddObject& object)
    {
        const auto flags = static_cast<UInt32>(decisions_.AnyLong());
        object.Bundle().setDisplayFlags(object.Get(), flags);
        Require(object.Bundle().getDisplayFlags(object.Get()) == flags, "flags are kept");
    }

    Decisions decisions_;
    test::ManualClock clock_;
    UInt32 ticks_ = 1;
    std::list<OddObject> objects_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    const test::MemoryLimit limit(1 << 20);
    Port();
    Decisions none({});
    AnyKind(none);
    const LiveObjects before;
    Session({bytes, size}).Run();
    Require(LiveObjects() == before, "nothing is left behind");
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    // An object of each kind lives its life, and then each step is taken often.
    constexpr UInt8 kStepsOfObject = 5;
    std::vector<FuzzInput> seeds;
    for (UInt8 kind = 0; kind < 4; ++kind) {
        for (UInt8 step = 0; step < 17; ++step) {
            FuzzInput seed = {0, kind, 3, 1, 'a', 1, 'b', kStepsOfObject, 0};
            for (UInt8 i = 0; i < 12; ++i)
                seed.insert(seed.end(), {4,    9,  kStepsOfObject + 2,
                                         0,    16, kStepsOfObject + 4,
                                         0,    1,  90,
                                         99,   2,  0,
                                         step, 0,  i,
                                         1,    50, 60,
                                         2,    3});
            seeds.push_back(seed);
        }
    }
    return seeds;
}
