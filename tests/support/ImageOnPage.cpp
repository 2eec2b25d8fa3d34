// SPDX-License-Identifier: MIT
#include "tests/support/ImageOnPage.h"

namespace test
{

ImageOnPage::ImageOnPage()
{
    host.Install();
    GetPort(&formerPort);
    const Rect onScreen = {100, 200, 100 + kPageHeight, 200 + kPageWidth};
    EXPECT_EQ(CreateWindowPort(&onScreen, &page), 0);
    SetPort(page);
}

ImageOnPage::~ImageOnPage()
{
    image.reset();
    SetPort(formerPort);
    DisposeWindowPort(page);
}

void ImageOnPage::MakeImage(SInt16 height, SInt16 width)
{
    Rect all{};
    EraseRect(GetPortBounds(page, &all));
    image = std::make_unique<TestImage>(bundle.Get());
    image->SetDisplayRect({0, 0, height, width});
}

Rect ImageOnPage::Area() const
{
    return {kTop, kLeft, kPageHeight, kPageWidth};
}

SInt16 ImageOnPage::AddFrame(const Rect& bounds, UInt16 depth, UInt16 maskDepth)
{
    SInt16 index = -1;
    EXPECT_EQ(image->AddNewFrame(bounds, depth, nullptr, maskDepth, index), 0);
    return index;
}

void ImageOnPage::Fill(GWorldPtr world, UInt32 value)
{
    const Rect bounds = (*GetGWorldPixMap(world))->bounds;
    for (int row = 0; row < bounds.bottom - bounds.top; ++row) {
        for (int column = 0; column < bounds.right - bounds.left; ++column) {
            SetPixel(world, row, column, value);
        }
    }
}

UInt32 ImageOnPage::Shown(int row, int column) const
{
    return PixelOf(page, kTop + row, kLeft + column);
}

bool ImageOnPage::IsWhiteOutsideTheImage(int height, int width) const
{
    for (int v = 0; v < kPageHeight; ++v) {
        for (int h = 0; h < kPageWidth; ++h) {
            const bool inImage = v >= kTop && v < kTop + height && h >= kLeft && h < kLeft + width;
            if (!inImage && PixelOf(page, v, h) != kWhite) {
                return false;
            }
        }
    }
    return true;
}

} // namespace test
