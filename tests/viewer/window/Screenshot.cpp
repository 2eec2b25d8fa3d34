// SPDX-License-Identifier: MIT
#include "tests/viewer/window/Screenshot.h"

#include <png.h>

int Screenshot::At(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width || y >= height) {
        return 0;
    }
    const uint8_t* const pixel = rgb.data() + (size_t{3} * static_cast<size_t>(y * width + x));
    return pixel[0] << 16 | pixel[1] << 8 | pixel[2];
}

Screenshot ReadScreenshot(const std::string& path)
{
    Screenshot shot;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        return shot;
    }
    image.format = PNG_FORMAT_RGB;
    shot.rgb.resize(PNG_IMAGE_SIZE(image));
    shot.width = static_cast<int>(image.width);
    shot.height = static_cast<int>(image.height);
    if (png_image_finish_read(&image, nullptr, shot.rgb.data(), 0, nullptr) == 0) {
        shot = {};
    }
    return shot;
}
