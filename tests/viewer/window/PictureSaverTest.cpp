// SPDX-License-Identifier: MIT
//
// What the user is told of pictures that are saved.
#include "viewer/window/PictureSaver.h"

#include "tests/viewer/PageFixture.h"

#include <gmock/gmock.h>

namespace
{

using testing::HasSubstr;
using viewer::PictureSaver;

class PictureSaverTest : public PageFixture
{
protected:
    TestFolder target;
};

TEST_F(PictureSaverTest, TellsTheWholePathThoughTheFolderIsNamedFromTheCurrentOne)
{
    const std::string named = std::filesystem::relative(target.Path("")).string();
    EXPECT_EQ(PictureSaver(page, named).SavePage(),
              "the page was saved as " + target.Path("page.png"));
    EXPECT_TRUE(std::filesystem::exists(target.Path("page.png")));
}

TEST_F(PictureSaverTest, WithoutAFolderForPicturesItIsTheCurrentOne)
{
    const std::string home = getenv("HOME") == nullptr ? "" : getenv("HOME");
    const std::filesystem::path before = std::filesystem::current_path();
    setenv("HOME", target.Path("nobody").c_str(), 1);
    std::filesystem::current_path(target.Path(""));
    const std::string told = PictureSaver(page, "").SavePage();
    std::filesystem::current_path(before);
    setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(told, "the page was saved as " +
                        std::filesystem::canonical(target.Path("page.png")).string());
}

TEST_F(PictureSaverTest, TellsOfAnObjectsPictureAndOnlyOfThatOne)
{
    viewer::EmbeddedObject& object = AddStarted("a.png");
    RunToEnd();
    PictureSaver saver(page, target.Path(""));
    EXPECT_EQ(saver.SavePicture(&object), "saved as " + target.Path("a.png"));
    EXPECT_EQ(saver.SavePicture(&object), "saved as " + target.Path("a-2.png"));
}

TEST_F(PictureSaverTest, TellsWhyThereIsNone)
{
    EXPECT_EQ(PictureSaver(page, target.Path("")).SavePicture(nullptr),
              "there is no picture to be saved");
    EXPECT_THAT(PictureSaver(page, target.Path("none")).SavePage(),
                HasSubstr("none/page.png: the picture could not be written: "));
}

} // namespace
