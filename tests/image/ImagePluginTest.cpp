// SPDX-License-Identifier: MIT
//
// The image as a whole: its state, what it owns and how it tells of failures.
#include "src/datasource/VornPointerDataSource.h"
#include "tests/plugin/VirtualSlot.h"
#include "tests/support/ScriptedImageTest.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class ImagePlugin : public test::ScriptedImageTest
{
protected:
    CTabHandle NewTable(SInt16 entries)
    {
        const auto table = reinterpret_cast<CTabHandle>(NewHandleClear(8 + 8 * Size{entries}));
        (*table)->ctSize = static_cast<SInt16>(entries - 1);
        for (SInt16 index = 0; index < entries; ++index)
            (*table)->ctTable[index] = {static_cast<SInt16>(1000 + index), ColorNumber(index)};
        return table;
    }
    static RGBColor ColorNumber(SInt16 index)
    {
        return {static_cast<UInt16>(100 + index), static_cast<UInt16>(2000 + index),
                static_cast<UInt16>(30000 + index)};
    }
    static bool Same(const RGBColor& a, const RGBColor& b)
    {
        return a.red == b.red && a.green == b.green && a.blue == b.blue;
    }
    void Invalidate(const std::vector<SInt16>& rows)
    {
        for (const SInt16 row : rows)
            image->InvalidateRow(row);
    }
};

// The table with white added, and what it was made from.
class WhiteInColorTable : public ImagePlugin
{
protected:
    void MakeFrom(SInt16 entries)
    {
        source = NewTable(entries);
        VornImagePlugin::AddWhiteToColorTable(source, &made);
    }
    ~WhiteInColorTable() override
    {
        DisposeHandle(reinterpret_cast<Handle>(source));
        DisposeHandle(reinterpret_cast<Handle>(made));
    }
    const ColorSpec& Entry(SInt16 index) const { return (*made)->ctTable[index]; }
    bool HasColor(SInt16 index, const RGBColor& color) const
    {
        return Same(Entry(index).rgb, color);
    }

    CTabHandle source = nullptr;
    CTabHandle made = nullptr;
    static constexpr RGBColor kBlack = {0, 0, 0};
    static constexpr RGBColor kWhite = {0xFFFF, 0xFFFF, 0xFFFF};
};

} // namespace

TEST_F(ImagePlugin, StartsStillAndWithoutFrames)
{
    const test::TestImage fresh(bundle.Get());
    EXPECT_EQ(fresh.looping, 0);
    EXPECT_EQ(fresh.animationDone, 0);
    EXPECT_EQ(fresh.usesTempMem, 1);
    EXPECT_EQ(fresh.hasDisplayed, 0);
    EXPECT_EQ(fresh.curFrame, -1);
    EXPECT_EQ(fresh.frameCount, 0);
    EXPECT_EQ(fresh.loopCount, 0);
    EXPECT_EQ(fresh.loopsDone, 0);
    EXPECT_EQ(fresh.nextFrameTime, 0U);
    EXPECT_EQ(fresh.invalidTop, -1);
    EXPECT_EQ(fresh.invalidBottom, -1);
    EXPECT_TRUE(Same(fresh.backgroundColor, {0xFFFF, 0xFFFF, 0xFFFF}));
    EXPECT_EQ(fresh.hasBackgroundColor, 0);
    EXPECT_EQ(fresh.compositeGWorld, nullptr);
    EXPECT_EQ(fresh.dragGWorld, nullptr);
    EXPECT_EQ(fresh.colorTable, nullptr);
    EXPECT_EQ(fresh.tempBuffer, nullptr);
    EXPECT_EQ(fresh.frames.count, 0);
}

TEST_F(ImagePlugin, KeepsItsFieldsInTheirOrder)
{
    const auto place = [](const auto& field) { return reinterpret_cast<std::uintptr_t>(&field); };
    const std::vector<std::uintptr_t> places = {
        place(image->finalError),      place(image->looping),
        place(image->animationDone),   place(image->usesTempMem),
        place(image->hasDisplayed),    place(image->curFrame),
        place(image->frameCount),      place(image->loopCount),
        place(image->loopsDone),       place(image->nextFrameTime),
        place(image->invalidTop),      place(image->invalidBottom),
        place(image->backgroundColor), place(image->hasBackgroundColor),
        place(image->compositeGWorld), place(image->dragGWorld),
        place(image->colorTable),      place(image->tempBuffer),
        place(image->frames)};
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

#ifdef VORN_KNOWS_VIRTUAL_SLOTS
TEST_F(ImagePlugin, AddsNoVirtualOperations)
{
    EXPECT_EQ(test::VirtualSlot(&VornImagePlugin::Display), 4U);
    EXPECT_EQ(test::VirtualSlot(&VornImagePlugin::DisposeDecodingData),
              test::VirtualSlot(&VornPlugin::DisposeDecodingData));
}
#endif

TEST_F(ImagePlugin, ReleasesWhatItOwnsInOrder)
{
    AddFrame(1);
    AddFrame();
    image->compositeGWorld = test::Graphics().NewWorld(kImageRect, 16);
    image->dragGWorld = test::Graphics().NewWorld(kImageRect, 32);
    image->SetColorTable(NewTable(2));
    image->SetTempBuffer(NewPtr(16));
    image.reset();
    EXPECT_THAT(Calls({"DisposeGWorld", "DisposeHandle", "DisposePtr"}),
                ElementsAre("DisposeGWorld world1", "DisposeGWorld world2", "DisposeGWorld world3",
                            "DisposeGWorld world4", "DisposeHandle", "DisposePtr",
                            "DisposeGWorld world5"));
}

TEST_F(ImagePlugin, ReleasesNothingThatItDoesNotOwn)
{
    image.reset();
    EXPECT_THAT(Calls({"DisposeGWorld", "DisposeHandle", "DisposePtr"}), IsEmpty());
}

TEST_F(ImagePlugin, IsDestroyedWithAnEmptySlotInItsList)
{
    AddFrame();
    image->frames.Append(nullptr);
    image.reset();
    EXPECT_THAT(Calls({"DisposeGWorld"}), ElementsAre("DisposeGWorld world1"));
}

TEST_F(ImagePlugin, DisposesOfTheColorTableThatAnotherOneReplaces)
{
    image->SetColorTable(NewTable(1));
    CTabHandle other = NewTable(1);
    image->SetColorTable(other);
    EXPECT_EQ(image->colorTable, other);
    EXPECT_EQ(probe.Count("DisposeHandle"), 1);
}

TEST_F(ImagePlugin, KeepsTheColorTableThatItIsGivenAgain)
{
    CTabHandle table = NewTable(1);
    image->SetColorTable(table);
    image->SetColorTable(table);
    EXPECT_EQ(image->colorTable, table);
    EXPECT_EQ(probe.Count("DisposeHandle"), 0);
}

TEST_F(ImagePlugin, DisposesOfTheBufferThatAnotherOneReplaces)
{
    image->SetTempBuffer(NewPtr(8));
    Ptr other = NewPtr(8);
    image->SetTempBuffer(other);
    EXPECT_EQ(image->GetTempBuffer(), other);
    EXPECT_EQ(probe.Count("DisposePtr"), 1);
}

TEST_F(ImagePlugin, KeepsTheBufferThatItIsGivenAgain)
{
    Ptr buffer = NewPtr(8);
    image->SetTempBuffer(buffer);
    image->SetTempBuffer(buffer);
    EXPECT_EQ(image->GetTempBuffer(), buffer);
    EXPECT_EQ(probe.Count("DisposePtr"), 0);
}

TEST_F(ImagePlugin, DisposesOfTheBufferWhenDecodingEnds)
{
    image->SetTempBuffer(NewPtr(8));
    image->DisposeDecodingData();
    EXPECT_EQ(image->GetTempBuffer(), nullptr);
    EXPECT_EQ(probe.Count("DisposePtr"), 1);
    image->DisposeDecodingData();
    EXPECT_EQ(probe.Count("DisposePtr"), 1);
}

TEST_F(ImagePlugin, KeepsLoopingAndItsCount)
{
    image->SetLooping(0x80, 3);
    EXPECT_EQ(image->looping, 0x80);
    EXPECT_EQ(image->loopCount, 3);
    image->SetLooping(0, 0);
    EXPECT_EQ(image->looping, 0);
    EXPECT_EQ(image->loopCount, 0);
}

TEST_F(ImagePlugin, PlacesItselfByItsDisplayFlags)
{
    Rect out{};
    image->SetDisplayFlags(kVornDisplayScale | kVornDisplayKeepAspect | kVornDisplayCenterH |
                           kVornDisplayCenterV);
    image->GetDisplayRect({10, 10, 30, 50}, out);
    EXPECT_EQ(test::Text(out), "10,25,30,35");
}

TEST_F(ImagePlugin, BeginsTheBandOfRowsWithTheFirstOne)
{
    Invalidate({10});
    EXPECT_EQ(image->invalidTop, 10);
    EXPECT_EQ(image->invalidBottom, 11);
}

TEST_F(ImagePlugin, WidensTheBandDownwards)
{
    Invalidate({10, 14});
    EXPECT_EQ(image->invalidTop, 10);
    EXPECT_EQ(image->invalidBottom, 15);
}

TEST_F(ImagePlugin, WidensTheBandUpwardsAndKeepsItsBottom)
{
    Invalidate({10, 14, 3});
    EXPECT_EQ(image->invalidTop, 3);
    EXPECT_EQ(image->invalidBottom, 15);
}

TEST_F(ImagePlugin, KeepsTheBandForARowInIt)
{
    Invalidate({10, 14, 12, 10, 14});
    EXPECT_EQ(image->invalidTop, 10);
    EXPECT_EQ(image->invalidBottom, 15);
}

TEST_F(ImagePlugin, BeginsTheBandAboveTheOriginToo)
{
    Invalidate({-5});
    EXPECT_EQ(image->invalidTop, -5);
    EXPECT_EQ(image->invalidBottom, -4);
}

TEST_F(ImagePlugin, TellsErrorsThatItKnowsAsTheyAre)
{
    for (const int code : {0, 1200, 1209, 1210, -1, -39, -108, -32768}) {
        const auto err = static_cast<OSErr>(code);
        image->frameCount = 0;
        EXPECT_EQ(image->ConvertError(err), err);
        image->frameCount = 1;
        EXPECT_EQ(image->ConvertError(err), err);
    }
}

TEST_F(ImagePlugin, TellsOtherErrorsByWhetherItHasAFrame)
{
    for (const int code : {1, 5, 1201, 1202, 1203, 1206, 1208, 1211, 32767}) {
        const auto err = static_cast<OSErr>(code);
        image->frameCount = 0;
        EXPECT_EQ(image->ConvertError(err), 1206) << err;
        image->frameCount = 1;
        EXPECT_EQ(image->ConvertError(err), 1202) << err;
    }
}

TEST_F(ImagePlugin, TellsMissingDataByWhetherItHasAFrame)
{
    EXPECT_EQ(image->ConvertError(1207), 1208);
    image->frameCount = 1;
    EXPECT_EQ(image->ConvertError(1207), 1207);
}

TEST_F(ImagePlugin, TellsWhoDecodesAnotherErrorThanTheHost)
{
    image->dataSource = new VornPointerDataSource(nullptr, 0);
    image->render = [] { throw OSErr{kDataNotAvailableErr}; };
    EXPECT_EQ(test::ErrorOf([&] { image->Decode(); }), kVornErrImageFailed);
    EXPECT_THAT(host.renderingDone, ElementsAre(kVornErrImageNoData));
}

TEST_F(ImagePlugin, HasNoBufferLeftAfterDecoding)
{
    image->dataSource = new VornPointerDataSource(nullptr, 0);
    image->render = [&] { image->SetTempBuffer(NewPtr(8)); };
    image->Decode();
    EXPECT_EQ(image->GetTempBuffer(), nullptr);
}

TEST_F(WhiteInColorTable, TakesTheFrontAndPushesTheLastTwoColorsOut)
{
    MakeFrom(4);
    EXPECT_TRUE(HasColor(0, kBlack));
    EXPECT_TRUE(HasColor(1, kWhite));
    EXPECT_TRUE(HasColor(2, ColorNumber(0)));
    EXPECT_TRUE(HasColor(3, ColorNumber(1)));
    for (SInt16 index = 4; index < 256; ++index)
        EXPECT_TRUE(HasColor(index, kBlack)) << index;
}

TEST_F(WhiteInColorTable, MakesEveryEntryStandForItsIndex)
{
    MakeFrom(4);
    for (SInt16 index = 0; index < 256; ++index)
        EXPECT_EQ(Entry(index).value, index);
}

TEST_F(WhiteInColorTable, MakesATableOf256WithASeedOfItsOwn)
{
    MakeFrom(4);
    EXPECT_EQ(GetHandleSize(reinterpret_cast<Handle>(made)), 2056);
    EXPECT_EQ((*made)->ctSeed, 4711);
    EXPECT_EQ((*made)->ctFlags, 0);
    EXPECT_EQ((*made)->ctSize, 255);
}

TEST_F(WhiteInColorTable, FindsRoomInATableOf252)
{
    MakeFrom(252);
    EXPECT_TRUE(HasColor(1, kWhite));
    EXPECT_TRUE(HasColor(251, ColorNumber(249)));
    EXPECT_TRUE(HasColor(252, kBlack));
    EXPECT_EQ(Entry(252).value, 252);
}

TEST_F(WhiteInColorTable, FindsNoRoomInATableOf253)
{
    MakeFrom(253);
    for (SInt16 index = 0; index < 253; ++index) {
        EXPECT_TRUE(HasColor(index, ColorNumber(index))) << index;
        EXPECT_EQ(Entry(index).value, index);
    }
    for (SInt16 index = 253; index < 256; ++index) {
        EXPECT_TRUE(HasColor(index, kBlack));
        EXPECT_EQ(Entry(index).value, 0);
    }
}

TEST_F(WhiteInColorTable, TakesAFullTableAsItIs)
{
    MakeFrom(256);
    EXPECT_TRUE(HasColor(255, ColorNumber(255)));
    EXPECT_EQ(Entry(255).value, 255);
}

TEST_F(WhiteInColorTable, TakesNoMoreThan256ColorsOfALargerTable)
{
    MakeFrom(300);
    EXPECT_TRUE(HasColor(255, ColorNumber(255)));
}

TEST_F(WhiteInColorTable, IsBlackAndWhiteForATableOfOne)
{
    MakeFrom(1);
    EXPECT_TRUE(HasColor(0, kBlack));
    EXPECT_TRUE(HasColor(1, kWhite));
    EXPECT_TRUE(HasColor(2, kBlack));
    EXPECT_EQ(Entry(1).value, 1);
}

TEST_F(WhiteInColorTable, ThrowsWhenMemoryIsShort)
{
    source = NewTable(4);
    probe.Fail("NewHandleClear", memFullErr);
    EXPECT_EQ(test::ErrorOf([&] { VornImagePlugin::AddWhiteToColorTable(source, &made); }),
              memFullErr);
    EXPECT_EQ(made, nullptr);
}
