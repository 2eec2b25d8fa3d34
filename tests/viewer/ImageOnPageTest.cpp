// SPDX-License-Identifier: MIT
//
// How the page deals with images, on a bundle that writes it down.
#include "tests/viewer/PageFixture.h"

#include <dlfcn.h>

namespace
{

using viewer::EmbeddedObject;
using viewer::IdleRhythm;
using viewer::ObjectBytes;

constexpr SInt64 kSecond = 1'000'000;

// Bytes come at 300 a second, as the clock is moved.
class ImageOnPage : public testing::Test
{
protected:
    ImageOnPage()
    {
        const std::string file = viewer::CodeFileOf(plugins.Bundles().at(0)->Path());
        code_ = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
        reinterpret_cast<void (*)()>(dlsym(code_, "FakeBundleReset"))();
    }
    ~ImageOnPage() override
    {
        for (const auto& object : page.Objects()) {
            object->Cancel();
        }
        Rounds();
        page.FreeObjects();
        dlclose(code_);
    }

    EmbeddedObject& Add(const std::string& name, UInt32 flags = 0x1F)
    {
        const std::string path = folder.Write(name, Pattern(500));
        EmbeddedObject& object = page.Add(std::make_unique<EmbeddedObject>(
            viewer::ObjectDescription{name, name, viewer::ObjectType{"image/x-fake"}, flags},
            std::make_unique<ObjectBytes>(viewer::OpenSource(path), viewer::ArrivalPace(300),
                                          time)));
        object.Start(*plugins.Bundles()[0]);
        return object;
    }
    void Rounds(int count = 10)
    {
        for (int i = 0; i < count; ++i) {
            YieldToAnyThread();
            page.IdleObjects();
            page.DrawChanges();
            page.ObserveObjects();
        }
    }
    void RoundsAt(SInt64 now)
    {
        clock.AdvanceTo(now);
        Rounds();
    }
    EmbeddedObject& AddDecoded(const std::string& name)
    {
        EmbeddedObject& object = Add(name);
        RoundsAt(2 * kSecond);
        return object;
    }
    std::string Log() const
    {
        return reinterpret_cast<const char* (*)()>(dlsym(code_, "FakeBundleLog"))();
    }
    int Count(const std::string& text) const
    {
        const std::string log = Log();
        int count = 0;
        for (size_t at = 0; (at = log.find(text, at)) != std::string::npos; ++at) {
            ++count;
        }
        return count;
    }
    int GreyAt(int v, int h) const { return GreyOf(page, v, h); }

    TestFolder folder;
    NoTime time;
    viewer::PageClock clock;
    viewer::PluginFolder plugins{FAKE_IMAGE_PLUGINS};
    viewer::Page page{300, 200};

private:
    void* code_ = nullptr;
};

TEST_F(ImageOnPage, NewRowsAreDrawnUnderTheirBandAsClip)
{
    Add("a-rows");
    RoundsAt(0);
    RoundsAt(kSecond * 101 / 300);
    RoundsAt(kSecond * 201 / 300);
    EXPECT_EQ(Count("display a-rows 0-50\n"), 1); // when it told its size
    EXPECT_EQ(Count("display a-rows 0-10\n"), 1);
    EXPECT_EQ(Count("display a-rows 10-20\n"), 1);
    EXPECT_EQ(Count("display"), 3);
}

TEST_F(ImageOnPage, TheBackgroundIsRestoredUnderNewRowsOnly)
{
    Add("a-rows-once");
    RoundsAt(kSecond / 2);
    EXPECT_EQ(GreyAt(9, 99), 0xFF);
    EXPECT_EQ(GreyAt(10, 0), 0x80);
}

TEST_F(ImageOnPage, OneWholeDisplayFollowsTheEndOfDecoding)
{
    Add("a-rows");
    RoundsAt(kSecond);
    const int before = Count("display a-rows 0-50\n");
    RoundsAt(2 * kSecond);
    EXPECT_EQ(Count("display a-rows 0-50\n"), before + 1);
    RoundsAt(3 * kSecond);
    EXPECT_EQ(Count("display a-rows 0-50\n"), before + 1);
}

TEST_F(ImageOnPage, ThatDisplayComesBeforeTheAnimationStarts)
{
    AddDecoded("a-moves");
    const std::string log = Log();
    const size_t display = log.rfind("display");
    EXPECT_EQ(log.find("idle", display), log.rfind("idle")); // one at this tick
    EXPECT_EQ(GreyAt(0, 0), 0xFF);                           // which has drawn
}

TEST_F(ImageOnPage, PartialDrawingIsNeverAskedFor)
{
    EmbeddedObject& object = Add("a", 0x9F);
    EXPECT_EQ(object.Report().comment, "flags 31");
}

TEST_F(ImageOnPage, ADecodedImageIsIdledOnceInEveryTick)
{
    AddDecoded("a");
    const int before = Count("idle");
    RoundsAt(2 * kSecond + 16'000);
    EXPECT_EQ(Count("idle"), before);
    RoundsAt(2 * kSecond + 16'667);
    EXPECT_EQ(Count("idle"), before + 1);
    EXPECT_EQ(page.NextTime(), 2 * kSecond + 33'334);
}

TEST_F(ImageOnPage, OneThatSlackensIsIdledAtTwoPercentOfItsQuietTime)
{
    page.SetIdleRhythm(IdleRhythm::Kind::kSlackening);
    AddDecoded("a-rows");
    RoundsAt(12 * kSecond);
    EXPECT_EQ(page.NextTime(), 12 * kSecond + 10 * kSecond / 50);
}

TEST_F(ImageOnPage, OneThatMovesIsIdledAtEveryTickAllTheSame)
{
    page.SetIdleRhythm(IdleRhythm::Kind::kSlackening);
    AddDecoded("a-moves");
    RoundsAt(12 * kSecond);
    EXPECT_EQ(page.NextTime(), 12 * kSecond + 16'667);
}

TEST_F(ImageOnPage, OneOutOfViewStandsStill)
{
    AddDecoded("a-moves");
    page.SetView({60, 0, 200, 300});
    const int before = Count("idle");
    RoundsAt(3 * kSecond);
    EXPECT_EQ(Count("idle"), before);
    EXPECT_FALSE(page.NextTime());
    page.SetView({49, 0, 189, 300});
    RoundsAt(3 * kSecond);
    EXPECT_EQ(Count("idle"), before + 1);
}

TEST_F(ImageOnPage, BlackAndWhiteAreSetBeforeEachCall)
{
    EmbeddedObject& object = AddDecoded("a-moves");
    page.Click(object, EventRecord{}); // leaves white on black
    RoundsAt(3 * kSecond);
    EXPECT_EQ(GreyAt(0, 0), 0xFF);
}

TEST_F(ImageOnPage, ItsFirstPictureIsThatOfItsFirstRows)
{
    EmbeddedObject& object = Add("a-rows");
    RoundsAt(0);
    EXPECT_FALSE(object.Report().firstPicture); // it has drawn, but nothing is decoded
    RoundsAt(kSecond / 2);
    ASSERT_TRUE(object.Report().firstPicture);
    EXPECT_EQ(object.Report().firstPicture->bytes, 100);
    EXPECT_EQ(object.Report().firstPicture->seconds, 0.5);
    EXPECT_TRUE(object.Report().shown);
}

TEST_F(ImageOnPage, WhatItDrawsByItselfIsCounted)
{
    EmbeddedObject& object = AddDecoded("a-moves");
    EXPECT_EQ(object.Report().picturesShown, 1);
    RoundsAt(3 * kSecond);
    RoundsAt(4 * kSecond);
    EXPECT_EQ(object.Report().picturesShown, 3);
}

TEST_F(ImageOnPage, AStillHasShownOnePicture)
{
    EXPECT_EQ(AddDecoded("a-rows").Report().picturesShown, 1);
}

TEST_F(ImageOnPage, TheErrorIsTheOneThatWasToldNotWhatDecodingReturned)
{
    EXPECT_EQ(AddDecoded("a-fails1208").Report().error, kVornErrImageNoData);
}

TEST_F(ImageOnPage, ADamagedImageWithRowsCountsAsShownAndOneWithoutDoesNot)
{
    EXPECT_TRUE(AddDecoded("a-rows-fails1202").Report().shown);
    EXPECT_FALSE(AddDecoded("b-fails1206").Report().shown);
}

TEST_F(ImageOnPage, WhatChangesIsTold)
{
    AddDecoded("a-moves");
    page.TakeChanges();
    EXPECT_TRUE(page.TakeChanges().empty());
    RoundsAt(3 * kSecond);
    const std::vector<Rect> changes = page.TakeChanges();
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].bottom, 50);
    EXPECT_EQ(changes[0].right, 100);
}

} // namespace
