// SPDX-License-Identifier: MIT
//
// What the tests of a whole window know of a page on the screen.
#pragma once

#include "tests/viewer/window/Screenshot.h"

#include <string>
#include <vector>

// The first object of a page stands that far from its corner.
constexpr int kMargin = 16;
constexpr int kBackground = 0xF4F4F4;

inline std::string Clip(const std::string& name)
{
    return std::string(VORN_CLIPS) + "/" + name;
}

// The part of the first movie's picture in which the number of the picture stands.
inline std::vector<int> NumberShown(const Screenshot& shot)
{
    std::vector<int> pixels;
    for (int x = 0; x < 100; ++x) {
        pixels.push_back(shot.At(kMargin + x, kMargin + 27));
    }
    return pixels;
}
