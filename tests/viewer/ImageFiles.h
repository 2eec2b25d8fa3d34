// SPDX-License-Identifier: MIT
//
// Image files for the viewer's tests, and the pixels of its snapshots.
#pragma once

#include "toolbox/Types.h"

#include <string>
#include <vector>

// Pixels as 0xRRGGBB.
struct PagePicture {
    int width = 0;
    int height = 0;
    std::vector<UInt32> pixels;

    UInt32 At(int x, int y) const
    {
        return pixels.at(static_cast<size_t>(y) * static_cast<size_t>(width) +
                         static_cast<size_t>(x));
    }
};

// Empty for what is no PNG file.
PagePicture ReadPagePicture(const std::string& png);
// A noisy pattern, so that the file is long and every row another.
std::string MakePng(int width, int height);
std::string MakeJpeg(int width, int height);
// The same in 16 colours, none of which is white.
std::string MakeGif(UInt16 width, UInt16 height);
// Frames of one colour each that fill the picture, shown for `delay` hundredths of a second and
// followed by a comment of that many bytes. Plays without end.
std::string MakeAnimation(UInt16 width, UInt16 height, const std::vector<UInt32>& colors, int delay,
                          bool userInput = false, size_t filling = 0);
