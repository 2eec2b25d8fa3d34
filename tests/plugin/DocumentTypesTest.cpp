// SPDX-License-Identifier: MIT
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"
#include "tests/support/ToolboxProbe.h"
#include "toolbox/probe/Probe.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// An extension-only type, something that is no type, a type with wrong values, a whole one.
const std::string kDocumentTypes = R"(
<key>CFBundleDocumentTypes</key>
<array>
  <dict>
    <key>CFBundleTypeExtensions</key>
    <array><string>pls</string></array>
  </dict>
  <string>not a dictionary</string>
  <dict>
    <key>CFBundleTypeMIMETypes</key>
    <string>text/wrong</string>
    <key>CFBundleTypeExtensions</key>
    <array><integer>5</integer><string>odd</string></array>
  </dict>
  <dict>
    <key>CFBundleTypeMIMETypes</key>
    <array>
      <string>video/mpeg</string><string>Audio/X-MPEG</string><string>video/mpég</string>
    </array>
    <key>CFBundleTypeExtensions</key>
    <array><string>mpg</string><string></string><string>még</string></array>
  </dict>
</array>)";

class DocumentTypes : public testing::Test
{
protected:
    test::TestBundle bundle{kDocumentTypes};
    test::TestPlugin plugin{bundle.Get()};
};

} // namespace

TEST_F(DocumentTypes, HoldADeclaredMimeType)
{
    EXPECT_TRUE(plugin.CanHandleMimeType("video/mpeg"));
    EXPECT_FALSE(plugin.CanHandleMimeType("video/mp4"));
    EXPECT_FALSE(plugin.CanHandleMimeType("video/mpeg2"));
}

TEST_F(DocumentTypes, CaseDoesNotCount)
{
    EXPECT_TRUE(plugin.CanHandleMimeType("VIDEO/MPEG"));
    EXPECT_TRUE(plugin.CanHandleMimeType("audio/x-mpeg"));
    EXPECT_TRUE(plugin.CanHandleFileExtension("MpG"));
}

TEST_F(DocumentTypes, HoldADeclaredExtension)
{
    EXPECT_TRUE(plugin.CanHandleFileExtension("mpg"));
    EXPECT_TRUE(plugin.CanHandleFileExtension("pls"));
    EXPECT_FALSE(plugin.CanHandleFileExtension("mp"));
}

TEST_F(DocumentTypes, AnExtensionHasNoDot)
{
    EXPECT_FALSE(plugin.CanHandleFileExtension(".mpg"));
}

TEST_F(DocumentTypes, MimeTypesAndExtensionsAreKeptApart)
{
    EXPECT_FALSE(plugin.CanHandleMimeType("mpg"));
    EXPECT_FALSE(plugin.CanHandleFileExtension("video/mpeg"));
}

TEST_F(DocumentTypes, ATypeWithExtensionsOnlyHasNoMimeTypeAndTheSearchGoesOn)
{
    EXPECT_FALSE(plugin.CanHandleMimeType("pls"));
    EXPECT_TRUE(plugin.CanHandleMimeType("video/mpeg"));
}

TEST_F(DocumentTypes, WhatIsNoDictionaryIsSkipped)
{
    EXPECT_FALSE(plugin.CanHandleMimeType("not a dictionary"));
    EXPECT_TRUE(plugin.CanHandleFileExtension("mpg"));
}

TEST_F(DocumentTypes, ValuesOfAWrongTypeAreSkipped)
{
    EXPECT_FALSE(plugin.CanHandleMimeType("text/wrong"));
    EXPECT_FALSE(plugin.CanHandleFileExtension("5"));
    EXPECT_TRUE(plugin.CanHandleFileExtension("odd"));
}

TEST_F(DocumentTypes, AnArgumentThatIsNotAsciiIsNeverHeld)
{
    EXPECT_FALSE(plugin.CanHandleMimeType("video/mp\xC3\xA9g"));
    EXPECT_FALSE(plugin.CanHandleFileExtension("m\x8Eg"));
    EXPECT_FALSE(plugin.CanHandleFileExtension("m\xC3\xA9g"));
}

TEST_F(DocumentTypes, AnEmptyArgumentMatchesAnEmptyString)
{
    EXPECT_TRUE(plugin.CanHandleFileExtension(""));
    EXPECT_FALSE(plugin.CanHandleMimeType(""));
}

TEST_F(DocumentTypes, NoArgumentMatchesNothing)
{
    EXPECT_FALSE(plugin.CanHandleMimeType(nullptr));
    EXPECT_FALSE(plugin.CanHandleFileExtension(nullptr));
}

TEST_F(DocumentTypes, WithoutABundleThereAreNone)
{
    const CFBundleRef own = plugin.bundle;
    plugin.bundle = nullptr;
    EXPECT_FALSE(plugin.CanHandleMimeType("video/mpeg"));
    EXPECT_FALSE(plugin.CanHandleFileExtension("mpg"));
    plugin.bundle = own;
}

TEST_F(DocumentTypes, AStringThatCannotBeMadeMatchesNothing)
{
    test::ToolboxProbe probe;
    probe.Fail("CFStringCreateWithCString", -108);
    EXPECT_FALSE(plugin.CanHandleMimeType("video/mpeg"));
    EXPECT_TRUE(plugin.CanHandleMimeType("video/mpeg"));
}

TEST_F(DocumentTypes, AStringThatCannotBeMadeIsNotLookedUp)
{
    for (const int nth : {1, 2, 3}) {
        test::ToolboxProbe probe;
        probe.Fail("CFStringCreateWithCString", -108, nth);
        EXPECT_FALSE(plugin.CanHandleMimeType("video/mpeg"));
        EXPECT_EQ(probe.Count("CFBundleGetValueForInfoDictionaryKey"), 0) << nth;
    }
}

TEST_F(DocumentTypes, EachElementIsLookedAtOnce)
{
    const test::ToolboxProbe probe;
    plugin.CanHandleMimeType("video/none");
    EXPECT_EQ(probe.Count("CFArrayGetValueAtIndex"), 4 + 3); // types, and the last one's strings
}

TEST_F(DocumentTypes, AskingLeaksNothing)
{
    const SInt32 before = CountLiveObjects(kLiveFoundationObjects);
    plugin.CanHandleMimeType("video/mpeg");
    plugin.CanHandleMimeType("video/none");
    plugin.CanHandleFileExtension("mpg");
    EXPECT_EQ(CountLiveObjects(kLiveFoundationObjects), before);
}

TEST(DocumentTypesOfABundle, MayBeMissing)
{
    const test::TestBundle bundle;
    test::TestPlugin plugin(bundle.Get());
    EXPECT_FALSE(plugin.CanHandleMimeType("video/mpeg"));
    EXPECT_FALSE(plugin.CanHandleFileExtension("mpg"));
}

TEST(DocumentTypesOfABundle, MayBeOfAWrongType)
{
    const test::TestBundle bundle("<key>CFBundleDocumentTypes</key><string>video/mpeg</string>");
    test::TestPlugin plugin(bundle.Get());
    EXPECT_FALSE(plugin.CanHandleMimeType("video/mpeg"));
}
