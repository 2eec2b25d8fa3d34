// SPDX-License-Identifier: MIT
//
// The movie bundle as it ships, on the toolbox as it ships, with real clips: what only the whole
// can show.
#include "tests/bundle/BundleHost.h"
#include "tests/support/ArrivingData.h"
#include "toolbox/Errors.h"
#include "toolbox/files/Files.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <vector>

namespace
{

constexpr SInt64 kTick = 1'000'000 / 60;

class WholeBundle : public testing::Test
{
protected:
    WholeBundle()
    {
        static test::BuiltBundle loaded("VornMovie");
        bundle = &loaded;
        SetToolboxClock([](void* self) { return static_cast<WholeBundle*>(self)->now; }, this);
        const Rect bounds = {0, 0, 400, 500};
        EXPECT_EQ(CreateWindowPort(&bounds, &port), noErr);
        SetPort(port);
        for (SInt32 kind = 0; kind < kLiveObjectKinds; ++kind) {
            before[static_cast<size_t>(kind)] = CountLiveObjects(kind);
        }
    }

    ~WholeBundle() override
    {
        for (SInt32 kind = 0; kind < kLiveObjectKinds; ++kind) {
            EXPECT_EQ(CountLiveObjects(kind), before[static_cast<size_t>(kind)]) << "kind " << kind;
        }
        DisposeWindowPort(port);
        SetPort(nullptr);
        SetToolboxClock(nullptr, nullptr);
    }

    std::unique_ptr<HostedObject> Make(const std::string& bytes)
    {
        auto object = std::make_unique<HostedObject>(*bundle, bytes, port);
        object->Decode();
        return object;
    }

    // A spool file that stays open for writing until the process ends.
    void NoteLeftOpen(bool isLeftOpen) { before[kLiveOpenFiles] += isLeftOpen ? 1 : 0; }

    // One round of the host: every thread has its turn, then the object is idled.
    void Round(HostedObject& object)
    {
        YieldToAnyThread();
        object.Idle();
        now += kTick;
    }

    static std::string Clip(const std::string& name)
    {
        return ReadWholeFile(VORN_CLIPS "/" + name);
    }

    // Whether the temporary folder holds an object's spool file: the first object's by default. An
    // object whose name is taken numbers its own, clip.2.mpg for the second one.
    static bool HasSpoolFile(const std::string& name = "clip.mpg")
    {
        CInfoPBRec info{};
        Str255 pascal = {static_cast<UInt8>(name.size())};
        std::copy(name.begin(), name.end(), pascal + 1);
        info.ioNamePtr = pascal;
        FindFolder(kOnSystemDisk, kTemporaryFolderType, kCreateFolder, &info.ioVRefNum,
                   &info.ioDirID);
        return PBGetCatInfoSync(&info) == noErr;
    }

    test::BuiltBundle* bundle = nullptr;
    CGrafPtr port = nullptr;
    SInt64 now = 0;
    std::array<SInt32, kLiveObjectKinds> before{};
};

TEST_F(WholeBundle, OpensTheMovieWithTheByteThatPassesTheGateAndNotBefore)
{
    const auto object = Make(Clip("mpeg1.mpg"));
    object->arrived = 65536;
    for (int i = 0; i < 20; ++i) {
        Round(*object);
    }
    EXPECT_EQ(object->Statistics().movies, 0);
    object->arrived = 65537;
    Round(*object);
    Round(*object);
    EXPECT_EQ(object->Statistics().movies, 1);
}

TEST_F(WholeBundle, ShowsItsFirstPictureBeforeEightyTwoKibibytesAreHandedOut)
{
    for (const char* const clip : {"mpeg1.mpg", "mpeg2.mpg", "video.m1v", "video.m2v"}) {
        const auto object = Make(Clip(clip));
        object->arrived = Clip(clip).size();
        while (object->Statistics().picturesShown == 0 && object->handedOut < object->arrived) {
            Round(*object);
        }
        EXPECT_EQ(object->Statistics().picturesShown, 1);
        EXPECT_LE(object->handedOut, 82 * 1024U) << clip;
    }
}

TEST_F(WholeBundle, PlaysAMovieBelowTheGateWhenItIsComplete)
{
    const auto object = Make(Clip("tiny.mpg"));
    object->arrived = Clip("tiny.mpg").size();
    for (int i = 0; i < 10; ++i) {
        Round(*object);
    }
    EXPECT_EQ(object->Statistics().picturesShown, 1);
    object->ClickPlay();
    for (int i = 0; i < 60; ++i) {
        Round(*object);
    }
    EXPECT_EQ(object->Statistics().picturesShown, std::stoi(Clip("tiny.mpg.pictures")));
}

TEST_F(WholeBundle, TellsThatATextIsNoMovie)
{
    int opens = 0;
    SetToolboxObserver(
        [](const char* operation, void* count) -> OSErr {
            *static_cast<int*>(count) += std::strcmp(operation, "NewMovieFromDataRef") == 0;
            return noErr;
        },
        &opens);
    GetMoviesError(); // forgets an earlier one
    const auto object = Make("No movie at all.\n");
    object->arrived = 1000;
    for (int i = 0; i < 10; ++i) {
        Round(*object);
    }
    SetToolboxObserver(nullptr, nullptr);
    EXPECT_EQ(opens, 1);
    EXPECT_EQ(GetMoviesError(), noMovieFound);
    EXPECT_EQ(object->decodeResult, noErr);
    EXPECT_EQ(object->Statistics().movies, 0);
}

TEST_F(WholeBundle, TellsTheErrorOfALongFileThatIsNoMovie)
{
    const auto object = Make(std::string(3 << 20, 'x'));
    object->arrived = 3 << 20;
    while (object->IsDecoding()) {
        Round(*object);
    }
    EXPECT_EQ(object->idleResult, noMovieFound);
}

// Those of three objects at a time.
constexpr const char* kSpoolFiles[] = {"clip.mpg", "clip.2.mpg", "clip.3.mpg"};

TEST_F(WholeBundle, KeepsASpoolFileForEachObject)
{
    std::vector<std::unique_ptr<HostedObject>> objects;
    for (const char* const name : kSpoolFiles) {
        EXPECT_FALSE(HasSpoolFile(name)) << name;
        objects.push_back(Make(Clip("tiny.mpg")));
        objects.back()->arrived = 4096;
        for (int i = 0; i < 4; ++i) {
            Round(*objects.back());
        }
        EXPECT_TRUE(HasSpoolFile(name)) << name;
    }
    objects.clear();
    for (const char* const name : kSpoolFiles) {
        EXPECT_FALSE(HasSpoolFile(name)) << name;
    }
}

TEST_F(WholeBundle, EndsCleanlyWhereverItIsBrokenOff)
{
    const std::string clip = Clip("mpeg1.mpg");
    for (int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(static_cast<unsigned>(seed));
        std::vector<std::unique_ptr<HostedObject>> objects;
        for (int i = 0; i < 3; ++i) {
            objects.push_back(Make(clip));
        }
        const auto rounds = random() % 40;
        for (unsigned i = 0; i < rounds; ++i) {
            for (const auto& object : objects) {
                object->arrived += random() % 60000;
                Round(*object);
                if (random() % 10 == 0) {
                    object->ClickPlay();
                }
            }
        }
        if (random() % 2 == 0) {
            NoteLeftOpen(objects[random() % 3]->DisposeDecodingThread());
        }
        objects.erase(objects.begin() + static_cast<ptrdiff_t>(random() % 3));
        for (const auto& object : objects) {
            Round(*object);
        }
        objects.clear();
        for (const char* const name : kSpoolFiles) {
            EXPECT_FALSE(HasSpoolFile(name)) << name;
        }
    }
}

TEST_F(WholeBundle, EndsCleanlyWhileItsTaskingThreadWaitsForBytes)
{
    const auto object = Make(Clip("mpeg1.mpg"));
    object->arrived = 100000;
    for (int i = 0; i < 30; ++i) {
        Round(*object);
    }
    ASSERT_EQ(object->Statistics().movies, 1);
    NoteLeftOpen(object->DisposeDecodingThread());
    EXPECT_FALSE(object->IsDecoding());
}

TEST_F(WholeBundle, KeepsTheSpoolFileExactlyAsLongAsTheObject)
{
    auto object = Make(Clip("tiny.mpg"));
    object->arrived = 4096;
    EXPECT_FALSE(HasSpoolFile());
    for (int i = 0; i < 4; ++i) {
        Round(*object);
    }
    EXPECT_TRUE(HasSpoolFile());
    object.reset();
    EXPECT_FALSE(HasSpoolFile());
}

} // namespace
