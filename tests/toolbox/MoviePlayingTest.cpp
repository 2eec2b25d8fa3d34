// SPDX-License-Identifier: MIT
//
// Movies whose bytes are all there, played from their beginning to their end.
#include "tests/toolbox/OpenedMovie.h"

namespace
{

class WholeClip : public testing::TestWithParam<const char*>
{
};

TEST_P(WholeClip, ShowsEveryPictureOnce)
{
    OpenedMovie page(Clip(GetParam()));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, ExpectedPictures(GetParam()));
    EXPECT_EQ(page.Statistics().picturesDropped, 0);
    EXPECT_FALSE(page.Statistics().playing);
}

TEST_P(WholeClip, SoundsAsTheCodecAloneDoes)
{
    OpenedMovie page(Clip(GetParam()));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    const std::string reference = Clip(std::string(GetParam()) + ".pcm");
    EXPECT_EQ(AsBytes(page.sound).size(), reference.size());
    EXPECT_LE(LargestDifference(AsBytes(page.sound), reference), 1);
}

INSTANTIATE_TEST_SUITE_P(Movies, WholeClip,
                         testing::Values("mpeg1.mpg", "mpeg2.mpg", "silent.mpg", "tiny.mpg",
                                         "video.m1v", "video.m2v"));

class SoundClip : public testing::TestWithParam<const char*>
{
};

TEST_P(SoundClip, SoundsAsTheCodecAloneDoes)
{
    OpenedMovie page(Clip(GetParam()), GetParam());
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_LE(LargestDifference(AsBytes(page.sound), Clip(std::string(GetParam()) + ".pcm")), 1);
}

TEST_P(SoundClip, HasAControllerWithoutAPicture)
{
    OpenedMovie page(Clip(GetParam()), GetParam());
    page.OpenAll();
    Rect bounds;
    MCGetControllerBoundsRect(page.controller, &bounds);
    EXPECT_EQ(bounds.bottom - bounds.top, 16);
    EXPECT_GT(bounds.right, bounds.left);
}

INSTANTIATE_TEST_SUITE_P(Movies, SoundClip, testing::Values("sound.mp2", "sound.mp3"));

TEST(FinishedMovie, NeedsNoTimeAndPlaysAgainFromItsBeginning)
{
    OpenedMovie page(Clip("tiny.mpg"));
    page.OpenAll();
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(NextToolboxDeadline(), -1);
    const SInt32 shown = page.Statistics().picturesShown;
    page.ClickPlay();
    page.PlayToEnd();
    EXPECT_EQ(page.Statistics().picturesShown, 2 * shown);
}

TEST(PausedMovie, NeedsNoTime)
{
    OpenedMovie page(Clip("mpeg1.mpg"));
    page.OpenAll();
    page.IdleUntilNothingIsPending();
    page.ClickPlay();
    EXPECT_GE(NextToolboxDeadline(), page.now);
    page.ClickPlay();
    EXPECT_EQ(NextToolboxDeadline(), -1);
}

} // namespace
