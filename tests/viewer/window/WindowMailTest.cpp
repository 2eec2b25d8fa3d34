// SPDX-License-Identifier: MIT
//
// An e-mail as its reader sees it, in a real X server.
#include "tests/viewer/Base64.h"
#include "tests/viewer/window/RunningWindow.h"
#include "tests/viewer/window/ShownPage.h"
#include "viewer/text/TextPainter.h"

#include <gtest/gtest.h>

#include <fstream>
#include <png.h>
#include <sys/stat.h>

namespace
{

constexpr int kPictureWidth = 240;
constexpr int kPictureHeight = 150;
constexpr int kCaption = 40;
constexpr int kScrollStep = 48;
constexpr int kPicture = 0xC81E1E;

std::string MakeRedPng()
{
    std::string pixels;
    for (int i = 0; i < kPictureWidth * kPictureHeight; ++i) {
        pixels += "\xC8\x1E\x1E";
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_RGB;
    image.width = kPictureWidth;
    image.height = kPictureHeight;
    png_alloc_size_t size = 0;
    png_image_write_get_memory_size(image, size, 0, pixels.data(), 0, nullptr);
    std::string png(size, '\0');
    png_image_write_to_memory(&image, png.data(), &size, 0, pixels.data(), 0, nullptr);
    return png;
}

std::string TextPart(const std::string& text)
{
    return "--==_part_7a1f\r\nContent-Type: text/plain; charset=utf-8\r\n"
           "Content-Transfer-Encoding: 8bit\r\n\r\n" +
           text + "\r\n";
}

std::string MakeMail()
{
    return "Return-Path: <ines@example.org>\r\n"
           "Received: from mail.example.org by mx.example.net; Tue, 3 Mar 2026 18:22:41 +0100\r\n"
           "From: In\u00E9s Ortega <ines@example.org>\r\nTo: Karl <karl@example.net>\r\n"
           "Subject: The shed\r\nDate: Tue, 3 Mar 2026 18:22:39 +0100\r\nMIME-Version: 1.0\r\n"
           "Content-Type: multipart/mixed; boundary=\"==_part_7a1f\"\r\n\r\n" +
           TextPart("Hello Karl,\r\n\r\nthe shed has got its new colour. It took us the whole "
                    "weekend, two buckets of paint and more patience than I thought I had, but "
                    "now it can be seen from the other side of the lake. The roof is what we do "
                    "next; if you still have the long ladder, please bring it along in April.\r\n"
                    "\r\nThis is how it looks:") +
           "--==_part_7a1f\r\nContent-Type: image/png; name=\"shed.png\"\r\n"
           "Content-Disposition: inline; filename=\"shed.png\"\r\n"
           "Content-Transfer-Encoding: base64\r\n\r\n" +
           Base64(MakeRedPng()) +
           TextPart("We would be glad to see you.\r\n\r\nBest wishes\r\nIn\u00E9s") +
           "--==_part_7a1f--\r\n";
}

// The row in which the picture begins, -1 if it is not shown.
int PictureTop(const Screenshot& shot)
{
    for (int y = 0; y < shot.height; ++y) {
        if (shot.At(kMargin + 10, y) == kPicture) {
            return y;
        }
    }
    return -1;
}

bool HasInk(const Screenshot& shot, int top, int bottom)
{
    for (int y = top; y < bottom; ++y) {
        for (int x = kMargin; x < shot.width - kMargin; ++x) {
            if (shot.At(x, y) != kBackground) {
                return true;
            }
        }
    }
    return false;
}

class WindowMail : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!HiddenScreen::IsPossible() || !viewer::TextPainter().HasFont()) {
            GTEST_SKIP() << "Xvfb, xdotool, import or a font is missing";
        }
    }

    const TestFolder folder;
};

TEST_F(WindowMail, ItsTextStandsAboveAndBelowThePicture)
{
    const HiddenScreen screen;
    RunningWindow window(screen, {folder.Write("shed.eml", MakeMail())});
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) { return PictureTop(shot) >= 0; }));
    const Screenshot shot = window.Look();
    const int top = PictureTop(shot);
    const int below = top + kPictureHeight + kCaption + 8;
    EXPECT_TRUE(HasInk(shot, kMargin, kMargin + 21)) << "the greeting";
    EXPECT_GT(top, kMargin + 4 * 21) << "of the text, the longest paragraph takes two lines";
    EXPECT_TRUE(HasInk(shot, top - 40, top - 12)) << "the last line above";
    EXPECT_EQ(shot.At(kMargin + 10, top + kPictureHeight - 1), kPicture);
    EXPECT_TRUE(HasInk(shot, below, below + 40)) << "the text below";
    window.Do("key q");
    EXPECT_EQ(window.WaitForEnd().status, 0);
}

// The rows of both that hold nothing but text, or nothing.
void ExpectSameText(const Screenshot& a, const Screenshot& b, int top)
{
    for (int y = 0; y < a.height; ++y) {
        const bool isBesideText = y > top - 8 && y < top + kPictureHeight + kCaption;
        for (int x = 0; x < a.width && !isBesideText; ++x) {
            ASSERT_EQ(a.At(x, y), b.At(x, y)) << x << ", " << y;
        }
    }
}

TEST_F(WindowMail, ItsTextStandsAtTheSamePlacesInASnapshotWithoutAWindow)
{
    const HiddenScreen screen;
    const std::string mail = folder.Write("shed.eml", MakeMail());
    RunningWindow window(screen, {mail});
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) { return PictureTop(shot) >= 0; }));
    const Screenshot shot = window.Look();
    const std::string snapshot = folder.Path("snapshot.png");
    const std::string size = std::to_string(shot.width) + "x" + std::to_string(shot.height);
    ASSERT_EQ(std::system((VORNVIEW " --headless --size " + size + " --snapshot " + snapshot + " " +
                           mail + " > " + folder.Path("out"))
                              .c_str()),
              0);
    const Screenshot unseen = ReadScreenshot(snapshot);
    ASSERT_EQ(PictureTop(unseen), PictureTop(shot));
    ExpectSameText(unseen, shot, PictureTop(shot));
}

TEST_F(WindowMail, ItsSnapshotWithoutAWindowHasTextThatCameOutOfAStream)
{
    const std::string mail = folder.Write("shed.eml", MakeMail());
    const auto snapshotOf = [&](const std::string& object) {
        const std::string path = folder.Path("snapshot.png");
        const std::string command = VORNVIEW " --headless --snapshot " + path + " " + object +
                                    " < " + mail + " > " + folder.Path("out");
        EXPECT_EQ(std::system(command.c_str()), 0);
        return ReadScreenshot(path);
    };
    const Screenshot fromStream = snapshotOf("-");
    EXPECT_TRUE(HasInk(fromStream, kMargin, kMargin + 21)) << "the greeting";
    EXPECT_EQ(fromStream, snapshotOf(mail));
}

TEST_F(WindowMail, ThatComesOutOfAStreamTakesItsPlaceAboveOtherText)
{
    const HiddenScreen screen;
    const std::string pipe = folder.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string other = folder.Write(
        "other.eml", "MIME-Version: 1.0\r\nContent-Type: text/plain\r\n\r\nThe last line\r\n");
    RunningWindow window(screen, {pipe, other});
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        return HasInk(shot, kMargin + 120, kMargin + 220); // below the frame of the mail to come
    }));
    EXPECT_EQ(PictureTop(window.Look()), -1);
    std::ofstream(pipe, std::ios::binary) << MakeMail();
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) { return PictureTop(shot) >= 0; }));
    const Screenshot shot = window.Look();
    const int below = PictureTop(shot) + kPictureHeight + kCaption;
    EXPECT_TRUE(HasInk(shot, kMargin, kMargin + 21)) << "the greeting";
    EXPECT_TRUE(HasInk(shot, below + 60, below + 180)) << "the end, and the other text";
    window.Do("key q");
    EXPECT_EQ(window.WaitForEnd().status, 0);
}

TEST_F(WindowMail, ItsTextGrowsAndScrollsWithThePage)
{
    const HiddenScreen screen;
    RunningWindow window(screen, {folder.Write("shed.eml", MakeMail())});
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) { return PictureTop(shot) >= 0; }));
    const int before = PictureTop(window.Look());
    window.Do("key plus key plus key plus key plus");
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) {
        constexpr int kEnlarged = 585; // 1.25 to the power of 4 times as wide
        return shot.At(kMargin + kEnlarged - 5, PictureTop(shot) + 5) == kPicture;
    }));
    const int enlarged = PictureTop(window.Look());
    EXPECT_GT(enlarged, 2 * before);
    window.Do("key Down");
    EXPECT_TRUE(window.WaitUntil([&](const Screenshot& shot) {
        return PictureTop(shot) == enlarged - kScrollStep && HasInk(shot, 0, kMargin);
    }));
}

TEST_F(WindowMail, ItsPictureCanBeDraggedOutWhenThePageEnds)
{
    constexpr size_t kHeader = 512; // in front of a picture in a file
    const HiddenScreen screen;
    RunningWindow window(
        screen, {"--drag", folder.Path("shed.pict"), folder.Write("shed.eml", MakeMail())});
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) { return PictureTop(shot) >= 0; }));
    window.Do("key q");
    EXPECT_EQ(window.WaitForEnd().status, 0);
    EXPECT_GT(folder.Read("shed.pict").size(), kHeader);
}

TEST_F(WindowMail, ADragThatFailsMakesTheExitStatusOne)
{
    const HiddenScreen screen;
    RunningWindow window(
        screen, {"--drag", "/no/such/folder/shed.pict", folder.Write("shed.eml", MakeMail())});
    ASSERT_TRUE(window.WaitUntil([](const Screenshot& shot) { return PictureTop(shot) >= 0; }));
    window.Do("key q");
    EXPECT_EQ(window.WaitForEnd().status, 1);
}

} // namespace
