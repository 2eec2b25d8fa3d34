// SPDX-License-Identifier: MIT
//
// A page in a window that nobody sees.
#pragma once

#include "tests/viewer/PageFixture.h"
#include "viewer/window/PageWindow.h"

#include <cstdlib>

class UnseenWindow : public PageFixture
{
protected:
    // As its user or the screen does.
    void SetSize(int width, int height)
    {
        SDL_Window* const shown = SDL_GetWindowFromID(window.Id());
        SDL_SetWindowMinimumSize(shown, 1, 1);
        SDL_SetWindowSize(shown, width, height);
    }

    const int driverIsSet = setenv("SDL_VIDEODRIVER", "dummy", 1);
    viewer::PageWindow window{"a page", 300, 200};
};
