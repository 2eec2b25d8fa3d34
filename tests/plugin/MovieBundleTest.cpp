// SPDX-License-Identifier: MIT
//
// What the movie bundle on disk declares.
#include "tests/support/TestBundle.h"
#include "tests/support/TestPlugin.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

// An object of the bundle that was built.
class MovieBundle : public testing::Test
{
protected:
    void SetUp() override { ASSERT_NE(bundle, nullptr) << VORN_BUNDLE_FOLDER; }
    void TearDown() override { CFRelease(bundle); }
    std::string TextOf(const char* keyText) const
    {
        CFStringRef key = CFStringCreateWithCString(nullptr, keyText, kCFStringEncodingASCII);
        char text[256] = {};
        CFStringGetCString(
            static_cast<CFStringRef>(CFBundleGetValueForInfoDictionaryKey(bundle, key)), text,
            sizeof text, kCFStringEncodingUTF8);
        CFRelease(key);
        return text;
    }

    CFBundleRef bundle = test::OpenBundle(VORN_BUNDLE_FOLDER);
};

} // namespace

TEST_F(MovieBundle, IsNamedAsItsFolderAndItsBinary)
{
    EXPECT_EQ(TextOf("CFBundleName"), "VornMovie");
    EXPECT_EQ(TextOf("CFBundleExecutable"), "VornMovie");
}

TEST_F(MovieBundle, DeclaresMpegVideoAndAudio)
{
    test::TestPlugin object(bundle);
    for (const std::string& type :
         Words("video/mpeg video/x-mpeg audio/mpeg audio/x-mpeg audio/mp3 audio/x-mp3 audio/mpeg3 "
               "audio/x-mpeg3"))
        EXPECT_TRUE(object.CanHandleMimeType(type.c_str())) << type;
    EXPECT_FALSE(object.CanHandleMimeType("image/gif"));
    EXPECT_FALSE(object.CanHandleMimeType("application/octet-stream"));
}

TEST_F(MovieBundle, DeclaresTheirExtensions)
{
    test::TestPlugin object(bundle);
    for (const std::string& extension :
         Words("mpg mpeg mpe m1v m2v m1s m2p mpv vob ts mp3 mp2 mp1 m1a m2a mpa mpga mpega bit"))
        EXPECT_TRUE(object.CanHandleFileExtension(extension.c_str())) << extension;
    EXPECT_FALSE(object.CanHandleFileExtension("gif"));
}
