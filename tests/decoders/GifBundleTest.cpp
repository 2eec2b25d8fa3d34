// SPDX-License-Identifier: MIT
//
// The GIF bundle on disk, as a host finds it.
#include "src/plugin/VornPluginABI.h"
#include "tests/decoders/GifBuilder.h"
#include "tests/support/ArrivalHost.h"
#include "tests/support/TestBundle.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

namespace
{

class GifBundle : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(bundle_, nullptr) << VORN_GIF_BUNDLE;
        code_ = dlopen(VORN_GIF_BUNDLE "/Contents/Linux/VornGIF.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(code_, nullptr) << dlerror();
    }
    void TearDown() override
    {
        CFRelease(bundle_);
        dlclose(code_);
    }
    template <class Function>
    Function* Find(Function&, const char* name) const
    {
        return reinterpret_cast<Function*>(dlsym(code_, name));
    }
    bool CanHandle(const std::string& bytes, const char* mimeType, const char* name) const
    {
        auto* const ask = Find(VornPluginCanHandleData, "VornPluginCanHandleData");
        return ask(bundle_, bytes.data(), static_cast<SInt32>(bytes.size()), mimeType, name) != 0;
    }

    CFBundleRef bundle_ = test::OpenBundle(VORN_GIF_BUNDLE);
    void* code_ = nullptr;
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
    ASSERT_EQ(Find(VornPluginMakeNewObject, "VornPluginMakeNewObject")(
                  bundle_, &host.Calls(), 0, 0, "red.gif", "image/gif", &object),
              0);
    EXPECT_EQ(Find(VornPluginDecodeObject, "VornPluginDecodeObject")(object), 0);
    Find(VornPluginFreeObject, "VornPluginFreeObject")(object);
    EXPECT_EQ(host.told.front(), "gotRect 0,0,5,7");
    EXPECT_EQ(host.told.back(), "renderingDone 0");
}
