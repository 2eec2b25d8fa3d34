// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What is on a screen: 24 bits a pixel.
struct Screenshot {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgb;

    // 0xRRGGBB; 0 outside.
    int At(int x, int y) const;
    bool operator==(const Screenshot&) const = default;
};

// Empty if it is no PNG file.
Screenshot ReadScreenshot(const std::string& path);
