// SPDX-License-Identifier: MIT
#include "src/datasource/ReadingFunctions.h"
#include "tests/plugin/ScriptedFactory.h"
#include "tests/plugin/host_in_c.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"

#include <gtest/gtest.h>

namespace
{

// A little picture format: width, height and a comment up to a zero byte.
class LittlePicture : public test::TestPlugin
{
public:
    using TestPlugin::TestPlugin;
    void Render() override
    {
        UInt16 width = 0;
        UInt16 height = 0;
        ReadUShort(this, &width, true);
        ReadUShort(this, &height, true);
        SInt32 length = 0;
        SkipTo(this, '.', &length, false);
        char text[16] = {};
        ReadBytes(this, length, text, true);
        SetComment(text);
        SetDisplayRect({0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)});
    }
};

} // namespace

TEST(HostInC, DrivesAnObjectFromBirthToDeath)
{
    const test::TestBundle bundle;
    const test::ScriptedFactory factory([](CFBundleRef ref) { return new LittlePicture(ref); });
    const LifeInC life = LiveInC(bundle.Get(), "\x40\x01\xF0\x01seen in C.");
    EXPECT_EQ(life.made, 0);
    EXPECT_EQ(life.decoded, 0);
    EXPECT_EQ(life.reported, 0);
    EXPECT_EQ(life.renderingError, 0);
    EXPECT_TRUE(life.haveDimensions);
    EXPECT_EQ(life.displayRect.right, 0x140);
    EXPECT_EQ(life.displayRect.bottom, 0x1F0);
    EXPECT_EQ(life.flags, 0x05U);
    EXPECT_STREQ(life.comment, "seen in C");
    EXPECT_TRUE(life.sameObject);
}

TEST(HostInC, SeesAFailure)
{
    const test::TestBundle bundle;
    const test::ScriptedFactory factory([](CFBundleRef ref) { return new LittlePicture(ref); });
    const LifeInC life = LiveInC(bundle.Get(), "\x40\x01\xF0");
    EXPECT_EQ(life.made, 0);
    EXPECT_EQ(life.decoded, kDataOutOfRangeErr);
    EXPECT_EQ(life.reported, kDataOutOfRangeErr);
    EXPECT_EQ(life.renderingError, kDataOutOfRangeErr);
    EXPECT_FALSE(life.haveDimensions);
}
