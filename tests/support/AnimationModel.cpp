// SPDX-License-Identifier: MIT
#include "tests/support/AnimationModel.h"

namespace test
{

AnimationModel::AnimationModel(int imageHeight, int imageWidth, Color15 background)
    : height(imageHeight), width(imageWidth), backgroundColor(background),
      composite(static_cast<std::size_t>(imageHeight * imageWidth), kWhite15), page(composite)
{
}

// The pixels of a frame that lie in the image: row and column in the frame, place in the image.
template <class Action>
void AnimationModel::ForEachPixel(const ModelFrame& frame, const ModelRows& rows,
                                  const Action& action)
{
    for (int row = rows.top; row < rows.bottom; ++row) {
        for (int column = 0; column < frame.width; ++column) {
            const int v = row + frame.top;
            const int h = column + frame.left;
            if (v >= 0 && v < height && h >= 0 && h < width) {
                action(row, column, At(v, h));
            }
        }
    }
}

void AnimationModel::Show(const ModelFrame& frame, bool wholeImage, std::optional<ModelRows> rows)
{
    const ModelRows drawn = rows.value_or(ModelRows{0, frame.height});
    const Pixels before = composite;
    ForEachPixel(frame, drawn, [&](int row, int column, std::size_t place) {
        if (frame.IsOpaque(row, column)) {
            composite[place] = frame.Pixel(row, column);
        }
    });
    if (wholeImage) {
        page = composite;
    } else {
        ForEachPixel(frame, drawn,
                     [&](int, int, std::size_t place) { page[place] = composite[place]; });
    }
    if (frame.disposal == 2 || frame.disposal == -1) {
        ForEachPixel(frame, drawn, [&](int row, int column, std::size_t place) {
            composite[place] = frame.IsOpaque(row, column) ? backgroundColor : kWhite15;
        });
    } else if (frame.disposal == 3) {
        ForEachPixel(frame, drawn,
                     [&](int, int, std::size_t place) { composite[place] = before[place]; });
    }
}

} // namespace test
