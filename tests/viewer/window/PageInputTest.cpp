// SPDX-License-Identifier: MIT
//
// What keys do that are pressed, and that are held down.
#include "viewer/window/PageInput.h"

#include "tests/viewer/window/UnseenWindow.h"

namespace
{

class PageInputTest : public UnseenWindow
{
protected:
    void Press(SDL_Keycode key) { Send(key, 0); }
    // The keyboard repeats a key that is held down.
    void Repeat(SDL_Keycode key) { Send(key, 1); }

    viewer::WindowFit fit{page, window, true};
    viewer::PageInput input{page, window, fit};

private:
    void Send(SDL_Keycode key, Uint8 repeat)
    {
        SDL_Event event{};
        event.type = SDL_KEYDOWN;
        event.key.keysym.sym = key;
        event.key.repeat = repeat;
        input.Handle(event);
    }
};

TEST_F(PageInputTest, AKeyThatIsHeldDownSavesOnePicture)
{
    Press(SDLK_s);
    EXPECT_TRUE(input.TakeWish());
    Repeat(SDLK_s);
    EXPECT_FALSE(input.TakeWish());
    Press(SDLK_p);
    EXPECT_TRUE(input.TakeWish());
    Repeat(SDLK_p);
    EXPECT_FALSE(input.TakeWish());
}

TEST_F(PageInputTest, ASpaceBarThatIsHeldDownIsForTheMovieOnce)
{
    AddStarted("a");
    RunToEnd();
    Press(SDLK_SPACE);
    Repeat(SDLK_SPACE);
    EXPECT_EQ(plugins.Count("event a 3 32 0,0"), 1);
    EXPECT_EQ(plugins.Count("event a 5 32 0,0"), 0);
}

TEST_F(PageInputTest, AnArrowThatIsHeldDownIsForTheMovieAgainAndAgain)
{
    AddStarted("a");
    RunToEnd();
    Press(SDLK_RIGHT);
    Repeat(SDLK_RIGHT);
    Repeat(SDLK_RIGHT);
    EXPECT_EQ(plugins.Count("event a 3 29 0,0"), 1);
    EXPECT_EQ(plugins.Count("event a 5 29 0,0"), 2) << "those the keyboard has made";
}

TEST_F(PageInputTest, ThePlusKeyEnlargesAsLongAsItIsHeldDown)
{
    Press(SDLK_PLUS);
    const double once = page.CurrentShape().zoom;
    Repeat(SDLK_PLUS);
    EXPECT_GT(page.CurrentShape().zoom, once);
}

TEST_F(PageInputTest, TheZeroKeyThatIsHeldDownDoesNotGoToAndFro)
{
    fit.Open({300, 200}, viewer::Page::Single::kFitted, 1);
    Press(SDLK_0);
    const viewer::Page::Shape once = page.CurrentShape();
    Repeat(SDLK_0);
    EXPECT_EQ(page.CurrentShape(), once);
}

} // namespace
