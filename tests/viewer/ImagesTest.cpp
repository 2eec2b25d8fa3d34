// SPDX-License-Identifier: MIT
//
// The program on images, alone and beside movies.
#include "tests/viewer/EndToEnd.h"
#include "tests/viewer/ImageFiles.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{

using testing::HasSubstr;

constexpr UInt32 kRed = 0xFF0000;
constexpr UInt32 kGreen = 0x00FF00;
constexpr UInt32 kBlue = 0x0000FF;

class Images : public EndToEnd
{
protected:
    // What stands at a place of the page at these times.
    std::vector<UInt32> ColorsAt(const std::vector<std::string>& times, const std::string& object,
                                 std::vector<std::string> arguments = {}, int x = 5, int y = 5)
    {
        for (const std::string& time : times) {
            arguments.insert(arguments.end(),
                             {"--at", time, "--snapshot", viewer.Folder().Path(time + ".png")});
        }
        arguments.push_back(object);
        Run(arguments);
        std::vector<UInt32> colors;
        for (const std::string& time : times) {
            colors.push_back(ReadPagePicture(viewer.Folder().Read(time + ".png")).At(x, y));
        }
        return colors;
    }
};

TEST_F(Images, OfAllKindsAreShownOnOnePageWithAMovie)
{
    const ViewerResult result = Run(
        {Write("a.gif", MakeAnimation(30, 20, {kRed, kBlue}, 10)), Write("b.png", MakePng(40, 30)),
         Write("c.jpeg", MakeJpeg(50, 40)), "--play", Clip("tiny.mpg")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.Object(0)["plugin"], "VornGIF");
    EXPECT_EQ(result.Object(1)["plugin"], "VornPNG");
    EXPECT_EQ(result.Object(2)["plugin"], "VornJPEG");
    EXPECT_EQ(result.Object(1)["rect"], nlohmann::json({0, 38, 30, 78}));
    EXPECT_EQ(result.Object(1)["pictures_shown"], 1);
    EXPECT_EQ(result.Object(3)["pictures_shown"], PicturesOf("tiny.mpg"));
    EXPECT_GT(result.Object(0)["pictures_shown"], 1);
}

TEST_F(Images, LookTheSameHoweverTheyArrive)
{
    for (const std::string& file :
         {Write("a.gif", MakeAnimation(300, 200, {kRed, kBlue}, 50)),
          Write("b.png", MakePng(200, 150)), Write("c.jpeg", MakeJpeg(200, 150))}) {
        const std::string atOnce = Run({file}).snapshot;
        const UInt32 first = ReadPagePicture(atOnce).At(0, 0);
        EXPECT_NE(first, 0xFFFFFFu) << file;
        for (const char* rate : {"1000", "20000", "1000000"}) {
            EXPECT_TRUE(Run({"--arrive", rate, file}).snapshot == atOnce) << file << rate;
        }
    }
}

TEST_F(Images, TheirFirstRowsAreThereLongBeforeTheLast)
{
    const std::string file = MakePng(200, 200);
    const ViewerResult result = Run({"--arrive", "20000", Write("a.png", file)});
    const auto& first = result.Object()["first_picture"];
    ASSERT_TRUE(first.is_object());
    EXPECT_LT(first["bytes"], file.size() / 2);
    EXPECT_LT(first["seconds"].get<double>(), result.report["seconds"].get<double>() / 2);
}

TEST_F(Images, RowsThatHaveNotArrivedShowThePage)
{
    const std::string file = Write("a.png", MakePng(200, 200)); // 120 KB
    const std::string half = viewer.Folder().Path("half.png");
    Run({"--arrive", "40000", "--at", "1.5", "--snapshot", half, file});
    const PagePicture page = ReadPagePicture(ReadFile(half));
    const PagePicture whole = ReadPagePicture(MakePng(200, 200));
    EXPECT_EQ(page.At(100, 50), whole.At(100, 50));
    EXPECT_EQ(page.At(100, 190), 0xFFFFFFu);
}

TEST_F(Images, AFrameStaysForItsDelayExactly)
{
    // 11 hundredths are 6.6 ticks, of which 6 count: a tenth of a second.
    const std::string file = Write("a.gif", MakeAnimation(10, 10, {kRed, kGreen, kBlue}, 11));
    EXPECT_EQ(ColorsAt({"0", "0.0999", "0.1", "0.1999", "0.2", "0.2999", "0.3"}, file),
              (std::vector<UInt32>{kRed, kRed, kGreen, kGreen, kBlue, kBlue, kRed}));
}

TEST_F(Images, SnapshotsBetweenTheTicksChangeNothing)
{
    const std::string file = Write("a.gif", MakeAnimation(10, 10, {kRed, kGreen, kBlue}, 11));
    EXPECT_EQ(ColorsAt({"0.01", "0.0201", "0.033", "0.0999", "0.1"}, file),
              (std::vector<UInt32>{kRed, kRed, kRed, kRed, kGreen}));
}

TEST_F(Images, FramesThatAreDrawnAreCounted)
{
    const std::string file = Write("a.gif", MakeAnimation(10, 10, {kRed, kGreen, kBlue}, 10));
    const ViewerResult result = Run({"--until", "0.95", file});
    EXPECT_EQ(result.Object()["pictures_shown"], 10);
}

TEST_F(Images, AnAnimationWithoutEndDoesNotKeepThePage)
{
    const ViewerResult result =
        Run({Write("a.gif", MakeAnimation(10, 10, {kRed, kGreen, kBlue}, 10))});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.report["seconds"], 0.0);
}

TEST_F(Images, WhileItArrivesAnAnimationShowsItsFirstFrame)
{
    const std::string bytes = MakeAnimation(20, 20, {kRed, kGreen, kBlue}, 10, false, 20000);
    const std::string file = Write("a.gif", bytes);
    const std::string rate = std::to_string(bytes.size() / 2);
    EXPECT_EQ(ColorsAt({"1.2", "1.5", "1.8"}, file, {"--arrive", rate}),
              (std::vector<UInt32>{kRed, kRed, kRed}));
}

TEST_F(Images, AClickSkipsAFrameThatWaitsForTheUser)
{
    const std::string file =
        Write("a.gif", MakeAnimation(10, 10, {kRed, kGreen, kBlue}, 100, true));
    EXPECT_EQ(ColorsAt({"0.4", "0.6"}, file, {"--click", "5,5@0.5"}),
              (std::vector<UInt32>{kRed, kBlue})); // once: the release is no second click
}

TEST_F(Images, KeysGoPastThemToTheMovie)
{
    const ViewerResult result = Run({Write("a.gif", MakeAnimation(10, 10, {kRed}, 10, true)),
                                     "--key", "space@0", Clip("tiny.mpg")});
    EXPECT_EQ(result.Object(1)["pictures_shown"], PicturesOf("tiny.mpg"));
}

TEST_F(Images, OneThatIsCutShowsWhatThereIsAndIsTold)
{
    for (const auto& [name, bytes] :
         {std::pair<std::string, std::string>("a.png", MakePng(200, 150)),
          {"a.jpeg", MakeJpeg(200, 150)},
          {"a.gif", MakeGif(200, 150)}}) {
        const ViewerResult result = Run({Write(name, bytes.substr(0, bytes.size() / 2))});
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_THAT(result.Object()["error"].get<int>(), testing::AnyOf(1202, 1207)) << name;
        EXPECT_THAT(result.err, HasSubstr(name + ": it")) << name;
        EXPECT_THAT(result.err, HasSubstr("not all of it could be shown (error 120")) << name;
        EXPECT_NE(ReadPagePicture(result.snapshot).At(10, 10), 0xFFFFFFu) << name;
    }
}

TEST_F(Images, OneWithoutAPictureIsTold)
{
    for (const auto& [name, bytes] :
         {std::pair<std::string, std::string>("a.png", "\x89PNG\r\n\x1A\nno chunk is like this"),
          {"a.jpeg", "\xFF\xD8\xFF\xE0 and nothing"},
          {"a.gif", "GIF89a"}}) {
        const ViewerResult result = Run({Write(name, bytes)});
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_THAT(result.Object()["error"].get<int>(), testing::AnyOf(1206, 1208)) << name;
        EXPECT_TRUE(result.Object()["first_picture"].is_null()) << name;
        EXPECT_THAT(result.err, HasSubstr("picture to show (error 120")) << name;
    }
}

TEST_F(Images, AThousandAnimationsRunOnOnePage)
{
    const std::string bytes = MakeAnimation(64, 64, {kRed, kGreen, kBlue}, 10);
    std::vector<std::string> arguments = {"--size", "2000x2800", "--until", "0.35"};
    for (int i = 0; i < 1000; ++i) {
        arguments.push_back(Write(std::to_string(i) + ".gif", bytes));
    }
    const ViewerResult result = Run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    for (size_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(result.Object(i)["pictures_shown"], 4) << i;
    }
}

class DraggedImages : public Images
{
protected:
    const std::string pict = viewer.Folder().Path("out.pict");
};

TEST_F(DraggedImages, AreWrittenAsPictures)
{
    const ViewerResult result = Run({"--drag", pict, Write("a.png", MakePng(40, 30))});
    EXPECT_EQ(result.status, 0) << result.err;
    const std::string file = ReadFile(pict);
    ASSERT_GT(file.size(), 522u);
    EXPECT_EQ(file.substr(0, 512), std::string(512, '\0'));
    EXPECT_EQ(file.substr(514, 8), std::string("\0\0\0\0\0\x1E\0\x28", 8)); // its frame
}

TEST_F(DraggedImages, AreReadByAnotherProgram)
{
    if (std::system("command -v convert > /dev/null 2>&1") != 0) {
        GTEST_SKIP() << "the program convert is not installed";
    }
    const std::string png = MakePng(40, 30);
    Run({"--drag", pict, Write("a.png", png)});
    const std::string converted = viewer.Folder().Path("converted.png");
    ASSERT_EQ(std::system(("convert pict:" + pict + " " + converted).c_str()), 0);
    EXPECT_EQ(ReadPagePicture(ReadFile(converted)).pixels, ReadPagePicture(png).pixels);
}

TEST_F(DraggedImages, HaveAnImageThatIsShrunkIfItIsLarge)
{
    const std::string image = viewer.Folder().Path("image.png");
    Run({"--drag", pict, "--drag-image", image, Write("a.png", MakePng(40, 30))});
    EXPECT_EQ(ReadPagePicture(ReadFile(image)).pixels, ReadPagePicture(MakePng(40, 30)).pixels);
    Run({"--drag", pict, "--drag-image", image, Write("b.png", MakePng(400, 300))});
    EXPECT_EQ(ReadPagePicture(ReadFile(image)).width, 160);
    EXPECT_EQ(ReadPagePicture(ReadFile(image)).height, 120);
}

TEST_F(DraggedImages, AreTheFirstThatCanBeDraggedOrTheOneThatIsNamed)
{
    const std::string gif = Write("a.gif", MakeAnimation(20, 10, {kRed}, 10));
    const std::string png = Write("b.png", MakePng(40, 30));
    Run({"--drag", pict, Clip("tiny.mpg"), gif, png});
    EXPECT_EQ(ReadFile(pict).substr(518, 4), std::string("\0\x0A\0\x14", 4));
    Run({"--drag", "3:" + pict, Clip("tiny.mpg"), gif, png});
    EXPECT_EQ(ReadFile(pict).substr(518, 4), std::string("\0\x1E\0\x28", 4));
}

TEST_F(DraggedImages, AMovieIsNotOne)
{
    const ViewerResult named = Run({"--drag", "1:" + pict, Clip("tiny.mpg")});
    EXPECT_EQ(named.status, 1);
    EXPECT_THAT(named.err, HasSubstr("tiny.mpg: it cannot be dragged"));
    const ViewerResult any = Run({"--drag", pict, Clip("tiny.mpg")});
    EXPECT_EQ(any.status, 1);
    EXPECT_THAT(any.err, HasSubstr("no object of the page can be dragged"));
    EXPECT_TRUE(ReadFile(pict).empty());
}

TEST_F(DraggedImages, NorIsOneThatHasNoPicture)
{
    const ViewerResult result = Run({"--drag", "1:" + pict, Write("a.gif", "GIF89a")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err,
                HasSubstr("a.gif: it cannot be dragged: it cannot be shown (error -50)"));
}

TEST_F(DraggedImages, AFileThatCannotBeWrittenIsTold)
{
    const ViewerResult result =
        Run({"--drag", "/no/such/folder/a.pict", Write("a.png", MakePng(40, 30))});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("vornview: /no/such/folder/a.pict: the picture could not be written"));
}

} // namespace
