// SPDX-License-Identifier: MIT
#include "viewer/Options.h"

#include "toolbox/events/Events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace
{

using testing::HasSubstr;
using viewer::Options;
using viewer::UsageError;
using viewer::UserEvent;

Options Parse(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "vornview");
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    return viewer::ParseOptions(static_cast<int>(arguments.size()), pointers.data());
}

// The message for a command line of "--headless clip.mpg" and these arguments.
std::string Complaint(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"--headless", "clip.mpg"});
    try {
        Parse(arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

TEST(Options, HaveDefaults)
{
    const Options options = Parse({"--headless", "clip.mpg"});
    EXPECT_EQ(options.width, 800);
    EXPECT_EQ(options.height, 600);
    EXPECT_FALSE(options.play);
    EXPECT_FALSE(options.bytesPerSecond);
    EXPECT_FALSE(options.until);
    ASSERT_EQ(options.objects.size(), 1u);
    EXPECT_EQ(options.objects[0].location, "clip.mpg");
    EXPECT_EQ(options.objects[0].mimeType, "");
    EXPECT_EQ(options.objects[0].displayFlags, 0x1Fu);
}

TEST(Options, TypeAndFlagsHoldForTheObjectsThatFollow)
{
    const Options options = Parse({"--headless", "a", "--type", "video/mpeg", "b", "--flags",
                                   "0x05", "c", "--type", "", "-"});
    ASSERT_EQ(options.objects.size(), 4u);
    EXPECT_EQ(options.objects[0].mimeType, "");
    EXPECT_EQ(options.objects[1].mimeType, "video/mpeg");
    EXPECT_EQ(options.objects[1].displayFlags, 0x1Fu);
    EXPECT_EQ(options.objects[2].mimeType, "video/mpeg");
    EXPECT_EQ(options.objects[2].displayFlags, 5u);
    EXPECT_EQ(options.objects[3].mimeType, "");
    EXPECT_EQ(options.objects[3].location, "-");
}

TEST(Options, FlagsAreDecimalOrHexadecimal)
{
    EXPECT_EQ(Parse({"--headless", "--flags", "31", "a"}).objects[0].displayFlags, 31u);
    EXPECT_EQ(Parse({"--headless", "--flags", "0X7f", "a"}).objects[0].displayFlags, 127u);
    EXPECT_THAT(Complaint({"--flags", "1F"}), HasSubstr("--flags: '1F'"));
    EXPECT_THAT(Complaint({"--flags", "-1"}), HasSubstr("--flags"));
    EXPECT_THAT(Complaint({"--flags", "0x"}), HasSubstr("--flags"));
}

TEST(Options, ASizeIsTwoWholeNumbersFrom1To32767)
{
    const Options options = Parse({"--headless", "--size", "32767x1", "a"});
    EXPECT_EQ(options.width, 32767);
    EXPECT_EQ(options.height, 1);
    for (const char* wrong : {"800", "800x", "x600", "0x600", "800x32768", "800x600x", "8e2x6"}) {
        EXPECT_THAT(Complaint({"--size", wrong}), HasSubstr("--size: '")) << wrong;
    }
}

TEST(Options, ArriveIsAPositiveWholeNumber)
{
    EXPECT_EQ(Parse({"--headless", "--arrive", "262144", "a"}).bytesPerSecond, 262144);
    for (const char* wrong : {"0", "-5", "1.5", "10k", ""}) {
        EXPECT_THAT(Complaint({"--arrive", wrong}), HasSubstr("--arrive: '")) << wrong;
    }
}

TEST(Options, TimesAreSecondsWithAFraction)
{
    EXPECT_EQ(Parse({"--headless", "--until", "2.5", "a"}).until, 2'500'000);
    for (const char* wrong : {"-1", "nan", "inf", "2s", "", "1e300"}) {
        EXPECT_THAT(Complaint({"--until", wrong}), HasSubstr("--until: '")) << wrong;
    }
}

TEST(Options, EachSnapshotTakesTheTimeBeforeIt)
{
    const Options options = Parse({"--headless", "--at", "1", "--snapshot", "a.png", "--snapshot",
                                   "end.png", "--at", "0.5", "--snapshot", "b.png", "x"});
    ASSERT_EQ(options.snapshots.size(), 3u);
    EXPECT_EQ(options.snapshots[0].at, 1'000'000);
    EXPECT_EQ(options.snapshots[0].path, "a.png");
    EXPECT_FALSE(options.snapshots[1].at);
    EXPECT_EQ(options.snapshots[2].at, 500'000);
}

TEST(Options, ATimeWithoutASnapshotIsRefused)
{
    EXPECT_THAT(Complaint({"--at", "1"}), HasSubstr("--at: a --snapshot must follow"));
    EXPECT_THAT(Complaint({"--at", "1", "--at", "2", "--snapshot", "a"}), HasSubstr("--at"));
}

TEST(Options, ASnapshotAfterTheEndIsRefused)
{
    EXPECT_THAT(Complaint({"--until", "1", "--at", "2", "--snapshot", "late.png"}),
                HasSubstr("late.png"));
    EXPECT_EQ(Complaint({"--until", "2", "--at", "2", "--snapshot", "last.png"}), "");
}

TEST(Options, AClickHasAPlaceAndATime)
{
    const UserEvent event = Parse({"--headless", "--click", "24,250@1.5", "a"}).events.at(0);
    EXPECT_EQ(event.kind, UserEvent::Kind::kClick);
    EXPECT_EQ(event.where.h, 24);
    EXPECT_EQ(event.where.v, 250);
    EXPECT_EQ(event.at, 1'500'000);
    for (const char* wrong :
         {"24,250", "24@1", "24,@1", ",250@1", "24,250@", "a,b@1", "1,99999@1"}) {
        EXPECT_THAT(Complaint({"--click", wrong}), HasSubstr("--click: '")) << wrong;
    }
}

TEST(Options, AKeyMayHaveAModifierInFront)
{
    const Options options =
        Parse({"--key", "shift+left@0", "--key", "ctrl++@1", "--key", "+@1", "a"});
    ASSERT_EQ(options.events.size(), 3U);
    EXPECT_EQ(options.events[0].character, kLeftArrowCharCode);
    EXPECT_EQ(options.events[0].modifiers, shiftKey);
    EXPECT_EQ(options.events[1].character, '+');
    EXPECT_EQ(options.events[1].modifiers, cmdKey);
    EXPECT_EQ(options.events[2].modifiers, 0);
    EXPECT_THAT(Complaint({"--key", "shift+@0"}), HasSubstr("--key: '"));
}

TEST(Options, KeysAreNamedOrSingleCharacters)
{
    const Options options =
        Parse({"--headless", "--key", "space@0", "--key", "left@1", "--key", "right@1", "--key",
               "up@1", "--key", "down@1", "--key", "p@1", "--key", "@@2", "a"});
    const std::vector<UInt8> expected = {32, 28, 29, 30, 31, 'p', '@'};
    ASSERT_EQ(options.events.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(options.events[i].kind, UserEvent::Kind::kKey);
        EXPECT_EQ(options.events[i].character, expected[i]);
    }
    for (const char* wrong : {"space", "@1", "enter@1", "\xC3\xA4@1", " @1"}) {
        EXPECT_THAT(Complaint({"--key", wrong}), HasSubstr("--key: '")) << wrong;
    }
}

TEST(Options, NameWhatIsUnknownOrIncomplete)
{
    EXPECT_THAT(Complaint({"--frobnicate"}), HasSubstr("--frobnicate"));
    EXPECT_THAT(Complaint({"-x"}), HasSubstr("-x"));
    EXPECT_THAT(Complaint({"--wav"}), HasSubstr("--wav: a value must follow"));
    EXPECT_THAT(Complaint({"--report", ""}), HasSubstr("empty"));
}

TEST(Options, AnObjectMustBeNamed)
{
    EXPECT_THROW(Parse({"--headless"}), UsageError);
    EXPECT_THROW(Parse({}), UsageError);
    EXPECT_NO_THROW(Parse({"--list-plugins"}));
    EXPECT_NO_THROW(Parse({"--help"}));
    EXPECT_TRUE(Parse({"-h"}).help);
    EXPECT_TRUE(Parse({"--version"}).version);
}

TEST(Options, StandardInputIsOneObjectOnly)
{
    EXPECT_EQ(Complaint({"-"}), "");
    EXPECT_EQ(Complaint({"-", "-"}), "standard input can be one object only");
}

TEST(Options, AClickOutsideAHeadlessPageIsRefused)
{
    EXPECT_EQ(Complaint({"--size", "50x40", "--click", "49,39@1"}), "");
    EXPECT_EQ(Complaint({"--click", "50,39@1", "--size", "50x40"}),
              "--click: 50,39 lies outside the page of 50x40");
    EXPECT_EQ(Complaint({"--click", "49,40@1", "--size", "50x40"}),
              "--click: 49,40 lies outside the page of 50x40");
}

TEST(Options, ATypesParametersAreCutOff)
{
    const Options options =
        Parse({"--type", " video/mpeg ; codecs=\"mp2\"", "a", "--type", ";x", "b"});
    EXPECT_EQ(options.objects.at(0).mimeType, "video/mpeg");
    EXPECT_EQ(options.objects.at(1).mimeType, "");
}

TEST(Options, AWindowIsWantedUnlessHeadlessIsSaid)
{
    EXPECT_FALSE(Parse({"clip.mpg"}).headless);
    EXPECT_TRUE(Parse({"--headless", "clip.mpg"}).headless);
}

TEST(Options, WhatFollowsTwoDashesIsAnObject)
{
    const Options options = Parse({"--headless", "--", "--play"});
    EXPECT_FALSE(options.play);
    EXPECT_EQ(options.objects.at(0).location, "--play");
}

TEST(Options, TheHelpTextNamesEveryOption)
{
    for (const char* name :
         {"--headless", "--size", "--type", "--flags", "--arrive", "--play", "--at", "--snapshot",
          "--wav", "--until", "--click", "--key", "--report", "--plugins", "--list-plugins",
          "--info", "--version", "-h, --help"}) {
        EXPECT_THAT(viewer::HelpText(), HasSubstr(name));
    }
}

TEST(Options, ADragNamesItsObjectOrLeavesItOpen)
{
    EXPECT_EQ(Parse({"--drag", "a.pict", "x"}).drag.path, "a.pict");
    EXPECT_FALSE(Parse({"--drag", "a.pict", "x"}).drag.object);
    const Options second = Parse({"--drag", "2:a.pict", "--drag-image", "b.png", "x", "y"});
    EXPECT_EQ(second.drag.object, 2u);
    EXPECT_EQ(second.drag.path, "a.pict");
    EXPECT_EQ(second.drag.imagePath, "b.png");
    EXPECT_EQ(Parse({"--drag", "./2:a", "x"}).drag.path, "./2:a");
    EXPECT_EQ(Parse({"--drag", "12", "x"}).drag.path, "12");
}

TEST(Options, ADragOfNoObjectIsRefused)
{
    for (const char* wrong : {"0:a", "1:", "99999999999999999999:a"}) {
        EXPECT_THAT(Complaint({"--drag", wrong}), HasSubstr("--drag: '")) << wrong;
    }
    EXPECT_THAT(Complaint({"--drag", "2:a"}), HasSubstr("--drag: there is no object 2"));
    EXPECT_THAT(Complaint({"--drag-image", "a.png"}), HasSubstr("--drag-image: there must be"));
}

// Of 80 columns and 24 lines, with the prompt under it.
TEST(Options, TheHelpTextFitsOnAScreen)
{
    std::istringstream lines(viewer::HelpText());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_LT(line.size(), 80u) << line;
    }
    EXPECT_LT(count, 24);
}

TEST(Options, InfoNeedsAnObject)
{
    EXPECT_TRUE(Parse({"--info", "a"}).info);
    EXPECT_THROW(Parse({"--info"}), UsageError);
}

} // namespace
