// SPDX-License-Identifier: MIT
#include "viewer/EmbeddedObject.h"

#include "tests/viewer/FakePlugins.h"
#include "tests/viewer/NoTime.h"
#include "tests/viewer/TestFiles.h"
#include "toolbox/threads/Threads.h"
#include "viewer/PageClock.h"
#include "viewer/PipeSource.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

using viewer::EmbeddedObject;
using viewer::FileDescriptor;
using viewer::ObjectBytes;

// An object that comes through a pipe.
class EmbeddedObjectTest : public testing::Test
{
protected:
    void Make(const std::string& name, const std::string& givenType = "")
    {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        writer = FileDescriptor(ends[1]);
        viewer::ObjectDescription description{name, name, viewer::ObjectType{"video/x-fake"}, 0x1F};
        if (!givenType.empty()) {
            description.type.mimeType = givenType;
            description.typeIsKnown = true;
        }
        object = std::make_unique<EmbeddedObject>(
            description, std::make_unique<ObjectBytes>(
                             std::make_unique<viewer::PipeSource>(FileDescriptor(ends[0])),
                             viewer::ArrivalPace(), time));
    }
    void Send(const std::string& bytes) const
    {
        ASSERT_EQ(write(writer.Get(), bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
        object->Bytes().Pump(100'000);
    }
    void Yield()
    {
        for (int i = 0; i < 5; ++i) {
            YieldToAnyThread();
        }
    }
    void Finish()
    {
        object->Cancel();
        Yield();
        object->Free();
    }

    NoTime time;
    viewer::PageClock clock;
    FakePlugins plugins;
    FileDescriptor writer;
    std::unique_ptr<EmbeddedObject> object;
};

TEST_F(EmbeddedObjectTest, ItsStreamIsWaitedOnWhileItWaitsToBeStarted)
{
    Make("a");
    Send("some");
    EXPECT_GE(object->DescriptorToWaitOn(), 0);
}

TEST_F(EmbeddedObjectTest, AndWhileItsDecodingWaits)
{
    Make("a");
    object->Start(*plugins.Folder().Bundles()[0]);
    Yield();
    EXPECT_GE(object->DescriptorToWaitOn(), 0);
    Finish();
}

TEST_F(EmbeddedObjectTest, NobodyWaitsForTheStreamOfAnObjectThatIsGivenUp)
{
    Make("a");
    Send("some");
    testing::internal::CaptureStderr();
    object->GiveUpUnknownType();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(object->DescriptorToWaitOn(), -1);
}

TEST_F(EmbeddedObjectTest, NobodyWaitsForAStreamWhoseDecodingHasEnded)
{
    Make("a-stop4");
    object->Start(*plugins.Folder().Bundles()[0]);
    Send("some");
    Yield();
    ASSERT_EQ(object->CurrentState(), EmbeddedObject::State::kDecoded);
    EXPECT_EQ(object->DescriptorToWaitOn(), -1);
    Finish();
}

TEST_F(EmbeddedObjectTest, TheFirstBytesTellTheType)
{
    Make("a.fake");
    Send("GIF89a");
    object->LearnType(plugins.Folder());
    EXPECT_EQ(object->Report().type, "image/gif");
}

TEST_F(EmbeddedObjectTest, BytesThatTellNothingLeaveTheTypeOfTheName)
{
    Make("a.fake");
    Send("some bytes");
    object->LearnType(plugins.Folder());
    EXPECT_EQ(object->Report().type, "video/x-fake");
}

TEST_F(EmbeddedObjectTest, TheBytesAreAskedOnce)
{
    Make("a.fake");
    object->LearnType(plugins.Folder());
    Send("GIF89a");
    object->LearnType(plugins.Folder());
    EXPECT_EQ(object->Report().type, "video/x-fake");
}

TEST_F(EmbeddedObjectTest, ATypeThatTheUserGaveStands)
{
    Make("a.fake", "audio/x-fake");
    Send("GIF89a");
    object->LearnType(plugins.Folder());
    EXPECT_EQ(object->Report().type, "audio/x-fake");
}

} // namespace
