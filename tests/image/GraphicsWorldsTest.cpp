// SPDX-License-Identifier: MIT
#include "src/image/GraphicsWorlds.h"
#include "tests/image/ScriptedWorlds.h"
#include "toolbox/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using test::ScriptedWorlds;
using test::Worlds;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr Rect kBounds = {5, 6, 25, 46};

class GraphicsWorldsTest : public testing::Test
{
protected:
    void SetUp() override { test::ResetWorlds(); }

    static OSErr Make(SInt16 depth = 16, CTabHandle colors = nullptr, Boolean useTemporary = 0)
    {
        GWorldPtr world = nullptr;
        return MakeGWorld(&kBounds, depth, colors, useTemporary, &world);
    }
};

using BlankGWorldTest = GraphicsWorldsTest;
using MakeGWorldTest = GraphicsWorldsTest;

} // namespace

TEST_F(BlankGWorldTest, ErasesAllOfItsBoundsToWhiteAndPutsEverythingBack)
{
    EXPECT_EQ(BlankGWorld(ScriptedWorlds::TheWorld()), 0);
    EXPECT_THAT(Worlds().calls,
                ElementsAre("GetGWorld", "GetGWorldPixMap world", "GetPixelsState pixels",
                            "LockPixels pixels", "SetGWorld world null", "BackColor 30",
                            "GetPortBounds world", "EraseRect 1,2,3,4", "SetPixelsState pixels 128",
                            "SetGWorld portBefore deviceBefore"));
}

TEST_F(BlankGWorldTest, ReportsPixelsThatCannotBeLockedAndErasesNothing)
{
    Worlds().locks = false;
    EXPECT_EQ(BlankGWorld(ScriptedWorlds::TheWorld()), -1);
    EXPECT_THAT(Worlds().calls, Not(Contains(StartsWith("EraseRect"))));
}

TEST_F(BlankGWorldTest, PutsEverythingBackAlsoWhenThePixelsCannotBeLocked)
{
    Worlds().locks = false;
    BlankGWorld(ScriptedWorlds::TheWorld());
    EXPECT_THAT(Worlds().calls,
                ElementsAre("GetGWorld", "GetGWorldPixMap world", "GetPixelsState pixels",
                            "LockPixels pixels", "SetPixelsState pixels 128",
                            "SetGWorld portBefore deviceBefore"));
}

TEST_F(MakeGWorldTest, AsksForTheDepthAndBoundsWithoutDevice)
{
    EXPECT_EQ(Make(16), 0);
    EXPECT_EQ(Worlds().calls.at(0),
              "NewGWorld depth 16 bounds 5,6,25,46 colors null device null flags 0");
}

TEST_F(MakeGWorldTest, PassesTheColourTableOn)
{
    ColorTable table{};
    CTabPtr master = &table;
    EXPECT_EQ(Make(8, &master), 0);
    EXPECT_THAT(Worlds().calls.at(0), HasSubstr("colors given"));
}

TEST_F(MakeGWorldTest, AsksForTemporaryMemoryWithFlag4)
{
    EXPECT_EQ(Make(16, nullptr, 1), 0);
    EXPECT_THAT(Worlds().calls.at(0), HasSubstr("flags 4"));
}

TEST_F(MakeGWorldTest, TakesAnyTrueValueForTemporaryMemory)
{
    EXPECT_EQ(Make(16, nullptr, 0x80), 0);
    EXPECT_THAT(Worlds().calls.at(0), HasSubstr("flags 4"));
}

TEST_F(MakeGWorldTest, GivesTheNewWorldOnceItIsWhite)
{
    GWorldPtr world = nullptr;
    EXPECT_EQ(MakeGWorld(&kBounds, 32, nullptr, 0, &world), 0);
    EXPECT_EQ(world, ScriptedWorlds::TheWorld());
    EXPECT_THAT(Worlds().calls, Contains("EraseRect 1,2,3,4"));
}

TEST_F(MakeGWorldTest, PassesTheToolboxsErrorOnAndLeavesTheResultAlone)
{
    Worlds().newGWorldResult = memFullErr;
    GWorldPtr world = ScriptedWorlds::ThePortBefore();
    EXPECT_EQ(MakeGWorld(&kBounds, 32, nullptr, 0, &world), memFullErr);
    EXPECT_EQ(world, ScriptedWorlds::ThePortBefore());
}

TEST_F(MakeGWorldTest, BlanksNothingWhenThereIsNoWorld)
{
    Worlds().newGWorldResult = paramErr;
    Make();
    EXPECT_EQ(Worlds().calls.size(), 1U);
}

TEST_F(MakeGWorldTest, PassesTheFailedLockOnAndLeavesTheResultAlone)
{
    Worlds().locks = false;
    GWorldPtr world = ScriptedWorlds::ThePortBefore();
    EXPECT_EQ(MakeGWorld(&kBounds, 32, nullptr, 0, &world), -1);
    EXPECT_EQ(world, ScriptedWorlds::ThePortBefore());
}

TEST_F(MakeGWorldTest, LosesTheWorldThatCouldNotBeMadeWhite)
{
    Worlds().locks = false;
    Make();
    EXPECT_THAT(Worlds().calls, Not(Contains(StartsWith("DisposeGWorld"))));
}
