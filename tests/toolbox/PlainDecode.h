// SPDX-License-Identifier: MIT
//
// What the codec libraries alone make of a movie's bytes: every picture, in the order of showing.
#pragma once

#include "toolbox/Types.h"

#include <string>
#include <vector>

struct PlainPictures {
    int width = 0;
    int height = 0;
    double rate = 0;  // pictures a second
    double start = 0; // seconds from the beginning of the movie to the first picture
    // Red, green and blue of each pixel, row after row.
    std::vector<std::string> pixels;
};

PlainPictures DecodePlainly(const std::string& bytes);
