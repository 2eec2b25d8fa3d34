// SPDX-License-Identifier: MIT
//
// What an animation must show, worked out pixel by pixel on plain arrays: no graphics worlds, no
// copying operations, nothing of the toolbox but its types.
#pragma once

#include "toolbox/Types.h"

#include <optional>
#include <vector>

namespace test
{

using Color15 = UInt16; // 0RRRRRGGGGGBBBBB

inline constexpr Color15 kWhite15 = 0x7FFF;

struct ModelFrame {
    int height = 0;
    int width = 0;
    int top = 0; // in the image
    int left = 0;
    int disposal = 0;
    std::vector<Color15> pixels; // row by row
    std::vector<bool> opaque;    // the mask; empty: all of it

    Color15 Pixel(int row, int column) const { return pixels.at(At(row, column)); }
    bool IsOpaque(int row, int column) const { return opaque.empty() || opaque[At(row, column)]; }

private:
    std::size_t At(int row, int column) const
    {
        return static_cast<std::size_t>(row * width + column);
    }
};

// Rows of a frame, from `top` up to `bottom`.
struct ModelRows {
    int top;
    int bottom;
};

class AnimationModel
{
public:
    // White, on a white page. `background` is what disposal method 2 paints with.
    AnimationModel(int imageHeight, int imageWidth, Color15 background);

    // Composes a frame, shows all of the image or only the frame's place on the page, and disposes
    // of the frame. Without `rows` all rows of the frame are meant.
    void Show(const ModelFrame& frame, bool wholeImage, std::optional<ModelRows> rows = {});
    // What the page shows of the image.
    Color15 OnPage(int row, int column) const { return page.at(At(row, column)); }

private:
    using Pixels = std::vector<Color15>;

    template <class Action>
    void ForEachPixel(const ModelFrame& frame, const ModelRows& rows, const Action& action);
    std::size_t At(int row, int column) const
    {
        return static_cast<std::size_t>(row * width + column);
    }

    int height;
    int width;
    Color15 backgroundColor;
    Pixels composite;
    Pixels page;
};

} // namespace test
