// SPDX-License-Identifier: MIT
//
// GIF files that nobody here made: every one below the folder that VORN_TEST_MEDIA names.
#include "tests/decoders/GifTest.h"
#include "tests/support/AnimationModel.h"
#include "tests/support/MediaFiles.h"
#include "toolbox/Errors.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>

using namespace test;

namespace
{

namespace fs = std::filesystem;

// Files that are known not to decode without an error: any other that does not is a mistake of
// ours.
struct Flaw {
    OSErr error;
    const char* reason;
};
const std::map<std::string, Flaw> kFlaws = {
    {"gdkpixbuf_bug785973", {memFullErr, "a canvas beyond all coordinates"}},
    {"gdkpixbuf_invalid.1", {memFullErr, "a canvas beyond all coordinates"}},
    {"gdkpixbuf_invalid.3", {memFullErr, "a canvas beyond all coordinates"}},
    {"imagegif_issue-101-infinite-empty-loop", {memFullErr, "a canvas beyond all coordinates"}},
    {"imagegif_issue-117-out-of-range", {kVornErrImageFailed, "indices of no bits"}},
    {"imagers_zero-loop-count", {kVornErrImageFailed, "no image"}},
    {"pygif_image-zero-size", {kVornErrImageFailed, "cut off before any pixel"}},
    {"pygif_image-zero-width", {kVornErrImageFailed, "cut off before any pixel"}},
    {"pygif_max-size", {memFullErr, "a canvas beyond all coordinates"}},
    {"pygif_max-width", {memFullErr, "valid, but a row has more bytes than a pixel map can have"}},
    {"pygif_no-data", {kVornErrImageFailed, "no image"}},
    {"pygif_overflow-codes", {kVornErrImageFailed, "codes that begin with 13 bits"}},
    {"pygif_zero-width", {kVornErrImageFailed, "no image"}},
    {"tracker-miners_gif-corrupted-image", {kVornErrImageFailed, "a record that there is not"}},
    {"wuffs_hippopotamus.interlaced.truncated", {kDataNotAvailableErr, "cut off"}},
    {"wuffs_no-frames", {kVornErrImageFailed, "no image"}},
    {"wuffs_pixel-data-none", {kVornErrRenderFailed, "no codes but that for the end"}},
};

// Files that the other decoder shows less of, and why.
const std::map<std::string, const char*> kShownOnlyHere = {
    {"imagers_issue_1455_oversized", "it cuts a first image off that is larger than the canvas"},
    {"pillow_decompression_bomb_extents", "it refuses an image that lies outside the canvas"},
    {"pillow_no_palette", "it refuses an image without colours"},
    {"wuffs_empty-palette", "it refuses an image without colours"},
};

std::string Contents(const std::string& path)
{
    const std::vector<UInt8> bytes = ReadMediaFile(path);
    return {bytes.begin(), bytes.end()};
}

Color15 To15(UInt32 color)
{
    return static_cast<Color15>((color >> 9 & 0x7C00) | (color >> 6 & 0x03E0) |
                                (color >> 3 & 0x001F));
}

Color15 To15(const RGBColor& color)
{
    return static_cast<Color15>((color.red >> 1 & 0x7C00) | (color.green >> 6 & 0x03E0) |
                                color.blue >> 11);
}

ModelFrame ModelOf(const FrameContents& contents)
{
    ModelFrame frame = {
        contents.height, contents.width, contents.top, contents.left, contents.disposal, {}, {}};
    for (const UInt32 pixel : contents.pixels) {
        frame.pixels.push_back(pixel == kNoColor ? kWhite15 : To15(pixel));
        frame.opaque.push_back(pixel != kNoColor);
    }
    return frame;
}

// The frames that the ffmpeg program makes of a file, on white.
class ReferenceFrames
{
public:
    ReferenceFrames(const std::string& path, size_t pixelsEach)
        : pixelsEach_(pixelsEach),
          output_(popen(("ffmpeg -v quiet -ignore_loop 1 -i '" + path +
                         "' -fps_mode passthrough -f rawvideo -pix_fmt rgba - </dev/null")
                            .c_str(),
                        "r"),
                  pclose)
    {
    }
    // Empty after the last.
    Pixels Next()
    {
        std::vector<UInt8> bytes(pixelsEach_ * 4);
        if (std::fread(bytes.data(), 1, bytes.size(), output_.get()) != bytes.size())
            return {};
        Pixels pixels;
        for (size_t at = 0; at < bytes.size(); at += 4) {
            const bool isOpaque = bytes[at + 3] != 0;
            pixels.push_back(isOpaque ? UInt32{bytes[at]} << 16 | UInt32{bytes[at + 1]} << 8 |
                                            bytes[at + 2]
                                      : kWhite);
        }
        return pixels;
    }

private:
    size_t pixelsEach_;
    std::unique_ptr<FILE, int (*)(FILE*)> output_;
};

// The first pixel that differs by more than a 16-bit pixel can tell; none: all are as good as
// equal.
std::string DifferenceOf(const Pixels& shown, const Pixels& reference)
{
    for (size_t at = 0; at < shown.size(); ++at) {
        for (const int shift : {16, 8, 0}) {
            const int a = static_cast<int>(shown[at] >> shift & 0xFF) >> 3;
            const int b = static_cast<int>(reference[at] >> shift & 0xFF) >> 3;
            if (std::abs(a - b) > 1)
                return "pixel " + std::to_string(at) + " is " + std::to_string(shown[at]) +
                       ", not " + std::to_string(reference[at]);
        }
    }
    return {};
}

class GifMedia : public GifTest, public testing::WithParamInterface<std::string>
{
protected:
    void SetUp() override
    {
        if (GetParam().empty())
            GTEST_SKIP() << "VORN_TEST_MEDIA names no folder of media";
        result_ = Decode(Contents(GetParam()));
    }
    static std::string Name() { return fs::path(GetParam()).stem().string(); }
    // Whether what it shows depends on how the background colour is understood: other decoders
    // paint it where the first image leaves the canvas open, or where a frame without transparent
    // pixels was; we let the page appear, as browsers do.
    bool DependsOnBackground()
    {
        const auto& pixels = Frame(0).pixels;
        const bool isOpen = std::find(pixels.begin(), pixels.end(), kNoColor) != pixels.end();
        bool depends = isOpen && !Image().frames[0]->transparent;
        for (SInt16 index = 0; index < FrameCount(); ++index) {
            const VornImagePlugin::TFrame& frame = *Image().frames[index];
            depends = depends ||
                      (frame.disposalMethod == kDisposalRestoreBackground && !frame.transparent);
        }
        return depends;
    }
    // Shows the next picture of the first loop.
    void ShowNext()
    {
        if (Image().looping)
            IdleOnce();
        else
            Display();
    }
    OSErr result_ = 0;
};

} // namespace

TEST_P(GifMedia, DecodesUnlessItIsKnownToBeFlawed)
{
    const auto flaw = kFlaws.find(Name());
    EXPECT_EQ(result_, flaw == kFlaws.end() ? 0 : flaw->second.error)
        << (flaw == kFlaws.end() ? "no reason is known" : flaw->second.reason);
}

TEST_P(GifMedia, HasTheSameFramesHoweverItArrives)
{
    const std::vector<FrameContents> atOnce = Frames();
    for (const SInt32 chunk : {1000, 5000}) {
        EXPECT_EQ(Decode(Contents(GetParam()), chunk), result_);
        EXPECT_TRUE(Frames() == atOnce) << chunk << " bytes at a time";
    }
}

TEST_P(GifMedia, ShowsFramesAsTheyAreComposedPixelByPixel)
{
    if (FrameCount() == 0)
        GTEST_SKIP() << "no frame, error " << result_;
    const std::vector<FrameContents> frames = Frames();
    const Rect size = Image().displayRect;
    AnimationModel model(size.bottom, size.right, To15(Image().backgroundColor));
    OpenWindow();
    Display();
    if (Image().looping)
        model.Show(ModelOf(frames[0]), true);
    for (size_t index = 0; index < frames.size(); ++index) {
        ShowNext();
        model.Show(ModelOf(frames[index]), true);
        const Pixels shown = WindowPixels();
        for (int at = 0; at < size.bottom * size.right; ++at) {
            ASSERT_EQ(To15(shown[static_cast<size_t>(at)]),
                      model.OnPage(at / size.right, at % size.right))
                << "frame " << index << ", pixel " << at;
        }
    }
}

TEST_P(GifMedia, ShowsWhatAnotherDecoderShows)
{
    if (result_ != 0)
        GTEST_SKIP() << "error " << result_ << ", which another test judges";
    if (const auto found = kShownOnlyHere.find(Name()); found != kShownOnlyHere.end())
        GTEST_SKIP() << found->second;
    if (DependsOnBackground())
        GTEST_SKIP() << "decoders differ on the background";
    const Rect size = Image().displayRect;
    ReferenceFrames reference(GetParam(),
                              static_cast<size_t>(size.right) * static_cast<size_t>(size.bottom));
    OpenWindow();
    Display();
    for (SInt32 index = 0; index < FrameCount(); ++index) {
        ShowNext();
        const Pixels expected = reference.Next();
        ASSERT_FALSE(expected.empty()) << "the other decoder shows no frame " << index;
        EXPECT_EQ(DifferenceOf(WindowPixels(), expected), "") << "frame " << index;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, GifMedia, testing::ValuesIn(MediaFiles({".gif"})), MediaFileName);
