// SPDX-License-Identifier: MIT
#include "viewer/PngWriter.h"

#include "tests/viewer/TestFiles.h"

#include <gtest/gtest.h>

#include <png.h>
#include <stdexcept>
#include <vector>

namespace
{

TEST(PngWriter, WritesThePortsPixels)
{
    const TestFolder folder;
    const Rect bounds = {0, 0, 2, 3};
    CGrafPtr port = nullptr;
    ASSERT_EQ(CreateWindowPort(&bounds, &port), 0);
    SInt32 rowBytes = 0;
    UInt8* pixels = GetPortPixels(port, &rowBytes);
    const UInt8 pixel[] = {99, 10, 20, 30};
    std::copy(std::begin(pixel), std::end(pixel), pixels + rowBytes + 4);
    viewer::WritePng(port, folder.Path("a.png"));
    DisposeWindowPort(port);

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_file(&image, folder.Path("a.png").c_str()), 0);
    EXPECT_EQ(image.width, 3u);
    EXPECT_EQ(image.height, 2u);
    image.format = PNG_FORMAT_RGB;
    std::vector<UInt8> rgb(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr);
    std::vector<UInt8> expected(18, 255);
    expected[12] = 10;
    expected[13] = 20;
    expected[14] = 30;
    EXPECT_EQ(rgb, expected);
}

TEST(PngWriter, TellsOfAPlaceThatCannotBeWritten)
{
    const TestFolder folder;
    const Rect bounds = {0, 0, 2, 3};
    CGrafPtr port = nullptr;
    ASSERT_EQ(CreateWindowPort(&bounds, &port), 0);
    EXPECT_THROW(viewer::WritePng(port, folder.Path("no/such/folder.png")), std::runtime_error);
    DisposeWindowPort(port);
}

TEST(PngWriter, AFailureLeavesWhatStoodThereAndNothingElse)
{
    const TestFolder folder;
    const std::string path = folder.Write("a.png", "old");
    const Rect bounds = {0, 0, 200, 300};
    CGrafPtr port = nullptr;
    ASSERT_EQ(CreateWindowPort(&bounds, &port), 0);
    {
        const FullDisk full(10);
        EXPECT_THROW(viewer::WritePng(port, path), std::runtime_error);
    }
    EXPECT_THROW(viewer::WritePng(port, "/dev/full"), std::runtime_error);
    DisposeWindowPort(port);
    EXPECT_EQ(folder.Read("a.png"), "old");
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path(".")), {}), 1);
}

} // namespace
