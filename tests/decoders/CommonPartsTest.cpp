// SPDX-License-Identifier: MIT
//
// What decoders share, without any of them: an image whose decoder is the test.
#include "decoders/common/ByteBacklog.h"
#include "decoders/common/ByteStream.h"
#include "decoders/common/CommentText.h"
#include "decoders/common/IndexedCanvas.h"
#include "decoders/common/NewRows.h"
#include "decoders/common/Palette.h"
#include "src/datasource/VornPluginDataSource.h"
#include "tests/support/ArrivalHost.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/RectText.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestImage.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/probe/Probe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace test
{
namespace
{

using testing::ElementsAre;
using Bytes = std::vector<UInt8>;

class CommonParts : public testing::Test
{
protected:
    // Runs `body` as the image's decoder, and tells what decoding ends with.
    OSErr Decode(const std::function<void()>& body)
    {
        image_.dataSource = new VornPluginDataSource(image_);
        image_.render = body;
        return ErrorOf([this] { image_.Decode(); });
    }
    // So many bytes come one arrival after the other.
    void Arrive(const std::vector<SInt32>& arrivals)
    {
        SInt32 size = 0;
        for (const SInt32 arrival : arrivals)
            size += arrival;
        host_.FillObject(size);
        host_.arrivals.assign(arrivals.begin(), arrivals.end());
        host_.arrivals.push_front(0); // the data source looks once, for its own cache
    }
    Bytes ObjectBytes(SInt32 from, SInt32 end) const
    {
        return {host_.object.begin() + from, host_.object.begin() + end};
    }

    ArrivalHost host_;
    TestBundle bundle_;
    TestImage image_{bundle_.Get()};
};

class ByteStreams : public CommonParts
{
};

TEST_F(ByteStreams, ReadAcrossWhatArrivesAtATime)
{
    Arrive({10, 5, 5});
    Bytes bytes(18);
    EXPECT_EQ(Decode([&] { EXPECT_EQ(ByteStream(image_).Read(bytes.data(), 18), 18U); }), noErr);
    EXPECT_EQ(bytes, ObjectBytes(0, 18));
}

TEST_F(ByteStreams, TellWhatCanBeReadWithoutTheHost)
{
    Arrive({10, 90});
    Decode([&] {
        ByteStream stream(image_);
        EXPECT_FALSE(stream.HasAtHand(1));
        UInt8 byte = 0;
        stream.Read(&byte, 1);
        EXPECT_TRUE(stream.HasAtHand(9));
        EXPECT_FALSE(stream.HasAtHand(10));
        const size_t requests = host_.requests.size();
        Bytes rest(9);
        stream.Read(rest.data(), rest.size());
        EXPECT_EQ(host_.requests.size(), requests);
    });
}

TEST_F(ByteStreams, RunOutOnlyWhereMoreIsWantedThanThereIs)
{
    Arrive({10});
    Decode([&] {
        ByteStream stream(image_);
        Bytes bytes(10);
        EXPECT_EQ(stream.Read(bytes.data(), 10), 10U);
        EXPECT_FALSE(stream.RanOut());
        EXPECT_EQ(stream.Read(bytes.data(), 1), 0U);
        EXPECT_TRUE(stream.RanOut());
    });
}

TEST_F(ByteStreams, GiveWhatThereIsOfWhatIsWanted)
{
    Arrive({10});
    Bytes bytes(20);
    Decode([&] { EXPECT_EQ(ByteStream(image_).Read(bytes.data(), 20), 10U); });
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 10), ObjectBytes(0, 10));
}

TEST_F(ByteStreams, ThrowWhereThereAreNotAsManyAsThereMustBe)
{
    Arrive({10});
    Decode([&] {
        ByteStream stream(image_);
        Bytes bytes(6);
        EXPECT_NO_THROW(stream.ReadAll(bytes.data(), 6));
        EXPECT_EQ(ErrorOf([&] { stream.ReadAll(bytes.data(), 6); }), kDataNotAvailableErr);
    });
}

TEST_F(ByteStreams, ReadWordsLowByteFirst)
{
    Arrive({3});
    const Bytes bytes = ObjectBytes(0, 3);
    Decode([&] {
        ByteStream stream(image_);
        EXPECT_EQ(stream.NextByte(), bytes[0]);
        EXPECT_EQ(stream.NextWord(), bytes[1] + 256 * bytes[2]);
    });
}

TEST_F(ByteStreams, ThrowWhatTheHostFailsWith)
{
    host_.failure = ioErr;
    UInt8 byte = 0;
    EXPECT_EQ(Decode([&] { ByteStream(image_).Read(&byte, 1); }), ioErr);
}

class ByteBacklogs : public CommonParts
{
protected:
    static Bytes Copy(std::span<const UInt8> bytes) { return {bytes.begin(), bytes.end()}; }
};

TEST_F(ByteBacklogs, PutTheUnusedBytesBeforeTheNextOnes)
{
    Arrive({10, 10});
    Decode([&] {
        ByteBacklog backlog;
        EXPECT_EQ(Copy(backlog.ReadBlock(image_, 0)), ObjectBytes(0, 10));
        EXPECT_EQ(Copy(backlog.ReadBlock(image_, 3)), ObjectBytes(7, 20));
    });
}

TEST_F(ByteBacklogs, SkipBytesThatHaveNotArrivedYet)
{
    Arrive({10, 10, 10});
    Decode([&] {
        ByteBacklog backlog;
        backlog.ReadBlock(image_, 0);
        backlog.SkipAhead(12);
        EXPECT_EQ(Copy(backlog.ReadBlock(image_, 0)), Bytes());
        EXPECT_EQ(Copy(backlog.ReadBlock(image_, 0)), ObjectBytes(22, 30));
    });
}

TEST_F(ByteBacklogs, KeepTheUnusedBytesAtTheEnd)
{
    Arrive({10});
    Decode([&] {
        ByteBacklog backlog;
        backlog.ReadBlock(image_, 0);
        while (!backlog.HasAll())
            EXPECT_EQ(Copy(backlog.ReadBlock(image_, 4)), ObjectBytes(6, 10));
    });
}

TEST_F(ByteBacklogs, StartOverAndEndWithTheLastByteThatWasUsed)
{
    Arrive({10, 10});
    Decode([&] {
        ByteBacklog backlog;
        backlog.ReadBlock(image_, 0);
        backlog.ReadBlock(image_, 4);
        backlog.NoteUse(5);
        backlog.StartOver(image_);
        EXPECT_FALSE(backlog.HasAll());
        EXPECT_EQ(Copy(backlog.ReadBlock(image_, 0)), ObjectBytes(0, 15));
        EXPECT_TRUE(backlog.HasAll());
    });
}

TEST(Palettes, BeginBlackWithNumberedEntries)
{
    const Palette palette;
    const ColorTable& table = **palette.Get();
    ASSERT_EQ(table.ctSize, 255);
    for (SInt16 i = 0; i < 256; ++i) {
        const ColorSpec& entry = table.ctTable[i];
        EXPECT_EQ(entry.value, i);
        EXPECT_EQ(entry.rgb.red | entry.rgb.green | entry.rgb.blue, 0) << i;
    }
}

TEST(Palettes, SpreadBytesOverAllOfAColour)
{
    const RGBColor color = Palette::ColorOf(0, 0x80, 0xFF);
    EXPECT_EQ(color.red, 0);
    EXPECT_EQ(color.green, 0x8080);
    EXPECT_EQ(color.blue, 0xFFFF);
}

TEST(Palettes, DifferInTheirSeeds)
{
    EXPECT_NE((*Palette().Get())->ctSeed, (*Palette().Get())->ctSeed);
}

TEST(Palettes, GoUnlessTheTableIsReleased)
{
    const SInt32 handles = CountLiveObjects(kLiveHandles);
    {
        const Palette palette;
    }
    EXPECT_EQ(CountLiveObjects(kLiveHandles), handles);
    const CTabHandle released = Palette().Release();
    EXPECT_EQ(CountLiveObjects(kLiveHandles), handles + 1);
    DisposeHandle(reinterpret_cast<Handle>(released));
}

TEST(CommentTexts, WriteAQuestionMarkForWhatMacRomanLacks)
{
    EXPECT_EQ(CommentFromText("a\u00E9\u20AC\u0416b"), "a\x8E\xDB?b");
}

TEST(CommentTexts, EndAtAZeroByte)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(CommentFromText("seen\0not seen"sv), "seen");
}

TEST(CommentTexts, AreLatin1WhereTheyAreNoUtf8)
{
    EXPECT_EQ(CommentFromText("\xE9t\xE9"), "\x8Et\x8E");
    EXPECT_EQ(CommentFromText("\xC3"), "\xCC"); // the beginning of a character, and no more of it
}

TEST(CommentTexts, CountCharactersNotBytes)
{
    std::string text;
    for (int i = 0; i < 300; ++i)
        text += "\u20AC";
    EXPECT_EQ(CommentFromText(text), std::string(255, '\xDB'));
}

TEST(CommentTexts, StayUtf8WhereALongOneIsCut)
{
    // The cut, behind 1020 bytes, goes through each of a character's places.
    for (size_t shift = 0; shift < 3; ++shift) {
        std::string text(shift, 'x');
        while (text.size() < 2000)
            text += "\u20AC";
        EXPECT_EQ(CommentFromText(text),
                  std::string(shift, 'x') + std::string(255 - shift, '\xDB'));
    }
}

class TellingRows : public CommonParts
{
};

TEST_F(TellingRows, TellsTheBandThatTheNotedRowsAreIn)
{
    NewRows rows(image_);
    for (const SInt32 row : {7, 3, 5})
        rows.Note(row);
    rows.Tell();
    EXPECT_THAT(host_.told, ElementsAre("decodedChunk 3,8"));
}

TEST_F(TellingRows, TellsRowsOnce)
{
    NewRows rows(image_);
    rows.Note(0);
    rows.Tell();
    rows.Tell();
    rows.Note(9);
    rows.Tell();
    EXPECT_THAT(host_.told, ElementsAre("decodedChunk 0,1", "decodedChunk 9,10"));
}

class IndexedCanvases : public CommonParts
{
protected:
    bool HasMask(SInt16 frame) { return image_.GetFrameMaskGWorld(frame) != nullptr; }

    Palette colors_;
    IndexedCanvas canvas_{image_};
};

TEST_F(IndexedCanvases, PlacePicturesInTheirFramesOwnCoordinates)
{
    canvas_.SetSize(20, 10);
    const IndexedCanvas::Place place = {4, 2, 6, 5};
    EXPECT_EQ(Text(canvas_.AddFrame(place, colors_.Get(), false).target), "2,4,7,10");
    EXPECT_EQ(Text(canvas_.AddFrame(place, colors_.Get(), false).target), "0,0,5,6");
}

TEST_F(IndexedCanvases, GiveAMaskToWhatFillsNoFrame)
{
    canvas_.SetSize(20, 10);
    canvas_.AddFrame({4, 2, 6, 5}, colors_.Get(), false);
    const IndexedCanvas::Frame outside = canvas_.AddFrame({20, 0, 5, 5}, colors_.Get(), false);
    EXPECT_TRUE(outside.IsEmpty());
    EXPECT_TRUE(HasMask(0));
    EXPECT_TRUE(HasMask(outside.index));
}

TEST_F(IndexedCanvases, CountAMaskForFramesThatMayStillGetOne)
{
    // 8 bytes of indices and 4 of mask a row, 10 rows, two frames.
    const MemoryLimit limit(2 * 10 * (8 + 4));
    IndexedCanvas canvas(image_);
    const IndexedCanvas::Place all = {0, 0, 8, 10};
    canvas.SetSize(8, 10);
    canvas.AddFrame(all, colors_.Get(), false);
    EXPECT_EQ(ErrorOf([&] { canvas.AddFrame(all, colors_.Get(), false); }), noErr);
    EXPECT_FALSE(HasMask(1));
    EXPECT_EQ(ErrorOf([&] { canvas.AddFrame({0, 0, 1, 1}, colors_.Get(), false); }), memFullErr);
    EXPECT_EQ(canvas.FrameCount(), 2);
}

TEST_F(IndexedCanvases, CannotBeMadeOfAPictureWithoutPixels)
{
    canvas_.SetSize(0, 0);
    EXPECT_EQ(ErrorOf([&] {
                  canvas_.AddFrame({0, 0, 0, 0}, colors_.Get(), false);
              }),
              kVornErrRenderFailed);
    EXPECT_TRUE(host_.told.empty());
}

} // namespace
} // namespace test
