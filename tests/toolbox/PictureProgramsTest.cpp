// SPDX-License-Identifier: MIT
//
// Programs that others wrote open our pictures and see the pixels that were put in.
#include "tests/toolbox/PictureReader.h"
#include "tests/toolbox/TestPixels.h"
#include "toolbox/Errors.h"
#include "toolbox/quickdraw/PictureRecorder.h"
#include "toolbox/quickdraw/Pictures.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using test::Bytes;
using test::TestPixels;

constexpr size_t kFileHeaderSize = 512;

// A folder that goes with its files.
class Folder
{
public:
    Folder()
    {
        std::string name = fs::temp_directory_path() / "picturesXXXXXX";
        place = mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(place); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    fs::path place;
};

Bytes PictureOf(const TestPixels& pixels)
{
    const Rect& bounds = pixels.Bounds();
    CGrafPtr port = nullptr;
    EXPECT_EQ(CreateWindowPort(&bounds, &port), noErr);
    SetPort(port);
    PicHandle const picture = OpenPicture(&bounds);
    toolbox::RecordCopy(*port, pixels.Map(), bounds, bounds, ditherCopy, nullptr);
    ClosePicture();
    SetPort(nullptr);
    DisposeWindowPort(port);
    Bytes bytes = test::BytesOf(picture);
    KillPicture(picture);
    return bytes;
}

fs::path WritePicture(const fs::path& folder, const TestPixels& pixels)
{
    const fs::path path = folder / "picture.pict";
    const Bytes picture = PictureOf(pixels);
    std::ofstream file(path, std::ios::binary);
    file << std::string(kFileHeaderSize, '\0')
         << std::string(reinterpret_cast<const char*>(picture.data()), picture.size());
    return path;
}

bool RunCommand(const std::string& command, const fs::path& folder)
{
    const std::string quiet = command + " >" + (folder / "output").string() + " 2>&1";
    return std::system(quiet.c_str()) == 0; // NOLINT(cert-env33-c): a program is what is wanted
}

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Of a file that is red, green and blue bytes and nothing else.
std::vector<UInt32> ReadColors(const fs::path& path)
{
    const std::string bytes = ReadFile(path);
    std::vector<UInt32> colors;
    for (size_t i = 0; i + 2 < bytes.size(); i += 3) {
        const auto component = [&](size_t which) {
            return static_cast<UInt32>(static_cast<UInt8>(bytes[i + which]));
        };
        colors.push_back(component(0) << 16 | component(1) << 8 | component(2));
    }
    return colors;
}

// Depth, width, height.
using Shape = std::tuple<int, int, int>;

std::string NameOf(const testing::TestParamInfo<Shape>& info)
{
    const auto [depth, width, height] = info.param;
    return std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
}

class PicturesInPrograms : public testing::TestWithParam<Shape>
{
protected:
    static TestPixels MakePixels()
    {
        const auto [depth, width, height] = GetParam();
        return TestPixels(depth, {0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)});
    }

    // The program's command is given the picture's file and the one to write the colours to.
    template <typename Command>
    void ExpectThatItSeesThePixels(const Command& command) const
    {
        const TestPixels pixels = MakePixels();
        const fs::path picture = WritePicture(folder_.place, pixels);
        const fs::path seen = folder_.place / "seen.rgb";
        ASSERT_TRUE(RunCommand(command(picture.string(), seen.string()), folder_.place))
            << ReadFile(folder_.place / "output");
        const std::vector<UInt32> colors = ReadColors(seen);
        const std::vector<UInt32> expected = pixels.Colors();
        ASSERT_EQ(colors.size(), expected.size());
        EXPECT_TRUE(colors == expected) << "the pixels differ";
    }

    Folder folder_;
};

class PicturesInImageMagick : public PicturesInPrograms
{
};

TEST_P(PicturesInImageMagick, HaveThePixelsThatWerePutIn)
{
    const std::string program = IMAGEMAGICK;
    if (program.empty()) {
        GTEST_SKIP() << "ImageMagick is not installed";
    }
    ExpectThatItSeesThePixels([&](const std::string& picture, const std::string& seen) {
        return program + " pict:" + picture + " -depth 8 rgb:" + seen;
    });
}

// It takes a row's length for a word from 200 bytes on, where the format says 250, and counts three
// bytes for a pixel of 32 bits there and where it decides whether rows are packed: no row is taken
// for which that makes a difference. Its colours of 16 bits are others than ours.
INSTANTIATE_TEST_SUITE_P(AllShapes, PicturesInImageMagick,
                         testing::Values(Shape{1, 1, 1}, Shape{1, 13, 5}, Shape{1, 333, 20},
                                         Shape{1, 2017, 9}, Shape{2, 1, 1}, Shape{2, 17, 7},
                                         Shape{2, 799, 3}, Shape{2, 1003, 5}, Shape{4, 1, 1},
                                         Shape{4, 19, 7}, Shape{4, 399, 4}, Shape{4, 505, 4},
                                         Shape{8, 1, 1}, Shape{8, 23, 31}, Shape{8, 199, 6},
                                         Shape{8, 253, 6}, Shape{8, 3001, 3}, Shape{32, 3, 2},
                                         Shape{32, 49, 11}, Shape{32, 67, 11}, Shape{32, 1001, 3},
                                         Shape{32, 4095, 2}, Shape{32, 9001, 3}),
                         NameOf);

// Reads only rows of more than 250 bytes, and one copy.
class PicturesInFFmpeg : public PicturesInPrograms
{
};

TEST_P(PicturesInFFmpeg, HaveThePixelsThatWerePutIn)
{
    ExpectThatItSeesThePixels([](const std::string& picture, const std::string& seen) {
        return "ffmpeg -v error -y -f qdraw_pipe -i " + picture +
               " -sws_flags accurate_rnd+full_chroma_int -pix_fmt rgb24 -f rawvideo " + seen;
    });
}

INSTANTIATE_TEST_SUITE_P(AllShapes, PicturesInFFmpeg,
                         testing::Values(Shape{2, 1003, 5}, Shape{4, 505, 4}, Shape{8, 253, 6},
                                         Shape{8, 3001, 3}, Shape{16, 127, 6}, Shape{16, 2001, 3},
                                         Shape{32, 63, 11}, Shape{32, 1001, 3}, Shape{32, 4095, 2}),
                         NameOf);

class PicturesInLibreOffice : public PicturesInPrograms
{
};

TEST_P(PicturesInLibreOffice, Open)
{
    const std::string program = LIBREOFFICE;
    if (program.empty()) {
        GTEST_SKIP() << "LibreOffice is not installed";
    }
    const std::string picture = WritePicture(folder_.place, MakePixels()).string();
    const std::string place = folder_.place.string();
    ASSERT_TRUE(RunCommand(program + " -env:UserInstallation=file://" + place +
                               "/profile --headless --convert-to png --outdir " + place + " " +
                               picture,
                           folder_.place))
        << ReadFile(folder_.place / "output");
    EXPECT_TRUE(fs::exists(folder_.place / "picture.png")) << ReadFile(folder_.place / "output");
}

INSTANTIATE_TEST_SUITE_P(EachDepth, PicturesInLibreOffice,
                         testing::Values(Shape{1, 333, 20}, Shape{8, 23, 31}, Shape{16, 127, 6},
                                         Shape{32, 63, 11}),
                         NameOf);

} // namespace
