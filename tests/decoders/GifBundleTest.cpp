// SPDX-License-Identifier: MIT
//
// The GIF bundle on disk, as a host finds it.
#include "tests/decoders/GifBuilder.h"
#include "tests/support/ArrivalHost.h"
#include "tests/support/BuiltBundle.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

class GifBundle : public testing::Test
{
protected:
    bool CanHandle(const std::string& bytes, const char* mimeType, const char* name) const
    {
        return bundle_.CanHandle({bytes.begin(), bytes.end()}, mimeType, name);
    }

    const test::BuiltBundle bundle_{"VornGIF"};
};

} // namespace

TEST_F(GifBundle, TakesItsMimeTypeInAnyCase)
{
    EXPECT_TRUE(CanHandle("", "image/gif", ""));
    EXPECT_TRUE(CanHandle("", "IMAGE/GIF", "picture.png"));
    EXPECT_FALSE(CanHandle("", "image/png", ""));
}

TEST_F(GifBundle, TakesItsExtension)
{
    EXPECT_TRUE(CanHandle("", "", "picture.gif"));
    EXPECT_TRUE(CanHandle("", "application/octet-stream", "two.dots.GIF"));
    EXPECT_FALSE(CanHandle("", "", "picture.gif.png"));
    EXPECT_FALSE(CanHandle("", "", "gif"));
    EXPECT_FALSE(CanHandle("", "", ""));
}

TEST_F(GifBundle, TakesDataThatBeginAsAGif)
{
    EXPECT_TRUE(CanHandle("GIF87a and more", "", "download"));
    EXPECT_TRUE(CanHandle("GIF89a", "image/x-unknown", ""));
    EXPECT_FALSE(CanHandle("GIF88a and more", "", ""));
    EXPECT_FALSE(CanHandle("GIF89", "", ""));
    EXPECT_FALSE(CanHandle("\x89PNG\r\n\x1A\n", "", ""));
}

TEST_F(GifBundle, TakesABeginningHoweverLittleFollowsIt)
{
    const std::string bytes = "GIF89a\1\2\3\4\5";
    for (size_t size = 6; size <= bytes.size(); ++size)
        EXPECT_TRUE(CanHandle(bytes.substr(0, size), "", "")) << size << " bytes";
    for (size_t size = 0; size < 6; ++size)
        EXPECT_FALSE(CanHandle(bytes.substr(0, size), "", "")) << size << " bytes";
}

TEST_F(GifBundle, DecodesForAHostThatKnowsOnlyItsFunctions)
{
    const std::string file =
        test::GifBuilder(7, 5, {0, 0xFF0000}).Image({0, 0, 7, 5, std::string(35, '\1')}).Bytes();
    test::ArrivalHost host;
    host.object.assign(file.begin(), file.end());
    host.arrivals = {static_cast<SInt32>(file.size())};
    VornPlugin* object = nullptr;
    ASSERT_EQ(
        bundle_.makeNewObject(bundle_.bundle, &host.Calls(), 0, 0, "red.gif", "image/gif", &object),
        0);
    EXPECT_EQ(bundle_.decodeObject(object), 0);
    bundle_.freeObject(object);
    EXPECT_EQ(host.told.front(), "gotRect 0,0,5,7");
    EXPECT_EQ(host.told.back(), "renderingDone 0");
}
