// SPDX-License-Identifier: MIT
//
// bench_gif PLUGINS RUNS NAME FILE [GATE]
//
// An animation of 320x240 pixels and 200 frames, from the bytes of its file to the last frame on a
// page: through the GIF bundle, on the port of a window and idled on a clock of its own, beside
// gdk-pixbuf (where it was there to build against) animating the same file. Both in turn; prints
// medians in frames a second of the processor, and what a process of each needs at most beyond one
// that only has the file and the page. Exit status 1 if the ratio is below GATE.
#include "bench/Command.h"
#include "bench/ImageBundle.h"
#include "bench/Medians.h"
#include "bench/ProcessorTime.h"
#include "src/image/ImageFunctions.h"
#include "toolbox/events/Events.h"
#include "toolbox/quickdraw/QuickDraw.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#ifdef VORN_HAVE_GDK_PIXBUF
#include <gdk-pixbuf/gdk-pixbuf.h>
#endif

namespace
{

using Bytes = std::vector<UInt8>;

constexpr SInt16 kWidth = 320;
constexpr SInt16 kHeight = 240;
constexpr SInt16 kFrames = 200;
constexpr double kMemoryGoal = 4; // MB beside the frames

Bytes gFile;
SInt64 gMicroseconds = 0;

void Require(bool holds, const char* what)
{
    if (!holds)
        throw std::runtime_error(what);
}

constexpr Rect kPage = {0, 0, kHeight, kWidth};

SInt64 ReadClock(void*)
{
    return gMicroseconds;
}

// The GIF bundle, and a window's port that its objects are drawn on.
class GifBundle : public ImageBundle
{
public:
    explicit GifBundle(const std::string& plugins) : ImageBundle(plugins, "VornGIF")
    {
        Resolve("VornPluginDisplayObject", display_);
        Resolve("VornPluginIdleObject", idle_);
        Resolve("GetImageCurFrame", currentFrame_);
        Resolve("GetFrameGWorld", frame_);
        Resolve("GetFrameMaskGWorld", mask_);
        SetToolboxClock(ReadClock, nullptr);
        CGrafPtr page = nullptr;
        Require(CreateWindowPort(&kPage, &page) == 0, "there is no memory for a page");
        SetPort(page);
    }

    void Animate() const
    {
        constexpr SInt64 kLongerThanAFrame = 1000000;
        const Object object = Decode(gFile);
        Require(display_(object.get(), &kPage, 0) == 0, "the bundle does not display");
        for (int drawn = 1; drawn < kFrames; ++drawn) {
            gMicroseconds += kLongerThanAFrame;
            Require(idle_(object.get(), &kPage, 0) == 0, "the bundle does not idle");
        }
        Require(currentFrame_(object.get()) == kFrames - 1, "the bundle left frames out");
    }

    // What the pixels of all frames and masks take.
    double FrameMegabytes() const
    {
        const Object object = Decode(gFile);
        double bytes = 0;
        for (SInt16 i = 0; i < kFrames; ++i)
            bytes += BytesOf(frame_(object.get(), i)) + BytesOf(mask_(object.get(), i));
        return bytes / 1e6;
    }

private:
    static double BytesOf(GWorldPtr world)
    {
        if (world == nullptr)
            return 0;
        const PixMapHandle map = GetGWorldPixMap(world);
        return static_cast<double>(GetPixRowBytes(map)) * ((*map)->bounds.bottom);
    }

    decltype(&VornPluginDisplayObject) display_ = nullptr;
    decltype(&VornPluginIdleObject) idle_ = nullptr;
    decltype(&GetImageCurFrame) currentFrame_ = nullptr;
    decltype(&GetFrameGWorld) frame_ = nullptr;
    decltype(&GetFrameMaskGWorld) mask_ = nullptr;
};

#ifdef VORN_HAVE_GDK_PIXBUF

constexpr bool kHasLibrary = true;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

// clang-format off: its macro is not taken for a statement
G_GNUC_BEGIN_IGNORE_DEPRECATIONS // its clock has no other type
    // clang-format on
    // Its pixels are copied to a page as they are, which is the least that a viewer does.
    void
    AnimateWithLibrary()
{
    const std::unique_ptr<GdkPixbuf, Unref> page(
        gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, kWidth, kHeight));
    const std::unique_ptr<GdkPixbufLoader, Unref> loader(gdk_pixbuf_loader_new());
    for (size_t at = 0; at < gFile.size(); at += ImageBundle::kPiece) {
        const size_t count = std::min<size_t>(ImageBundle::kPiece, gFile.size() - at);
        Require(gdk_pixbuf_loader_write(loader.get(), gFile.data() + at, count, nullptr),
                "gdk-pixbuf does not load");
    }
    Require(gdk_pixbuf_loader_close(loader.get(), nullptr), "gdk-pixbuf does not load");
    GTimeVal time = {0, 0};
    const std::unique_ptr<GdkPixbufAnimationIter, Unref> frames(
        gdk_pixbuf_animation_get_iter(gdk_pixbuf_loader_get_animation(loader.get()), &time));
    for (int drawn = 0; drawn < kFrames; ++drawn) {
        if (drawn > 0) {
            g_time_val_add(&time, gdk_pixbuf_animation_iter_get_delay_time(frames.get()) * 1000);
            Require(gdk_pixbuf_animation_iter_advance(frames.get(), &time),
                    "gdk-pixbuf leaves frames out");
        }
        gdk_pixbuf_copy_area(gdk_pixbuf_animation_iter_get_pixbuf(frames.get()), 0, 0, kWidth,
                             kHeight, page.get(), 0, 0);
    }
}
G_GNUC_END_IGNORE_DEPRECATIONS

#else

constexpr bool kHasLibrary = false;

void AnimateWithLibrary() {}

#endif

struct Arguments {
    std::string program;
    std::string plugins;
    int runs;
    std::string name;
    std::string file;
    double gate; // 0: none
};

void ReadFile(const std::string& name)
{
    std::ifstream file(name, std::ios::binary | std::ios::ate);
    Require(file.is_open() && file.tellg() > 0, "the file cannot be read");
    gFile.resize(static_cast<size_t>(file.tellg())); // no more memory than that
    file.seekg(0);
    file.read(reinterpret_cast<char*>(gFile.data()), static_cast<std::streamsize>(gFile.size()));
    Require(file.good(), "the file cannot be read");
}

// The peak of a process that runs one side, or neither: see RunOnce.
double PeakMegabytes(const Arguments& arguments, const char* side)
{
    std::string words[] = {arguments.program, "--once", arguments.plugins, side, arguments.file};
    Command command;
    for (std::string& word : words)
        command.push_back(word.data());
    command.push_back(nullptr);
    return RunCommand(command).peakMebibytes * 1.048576;
}

void RunOnce(const std::string& plugins, const std::string& side, const std::string& file)
{
    const GifBundle bundle(plugins);
    ReadFile(file);
    if (side == "bundle")
        bundle.Animate();
    else if (side == "library")
        AnimateWithLibrary();
}

// `bare`, `ours` and `theirs` are peaks in MB.
struct Peaks {
    double bare;
    double ours;
    double theirs;
};

void ReportMemory(const Arguments& arguments, const Peaks& peaks, double frames)
{
    const double ours = peaks.ours - peaks.bare;
    const double most = frames + kMemoryGoal;
    std::printf("%-20s memory  bundle %7.2f MB", arguments.name.c_str(), ours);
    if (kHasLibrary)
        std::printf("    gdk-pixbuf %7.2f MB", peaks.theirs - peaks.bare);
    std::printf("   (frames %.2f MB) goal <= %.2f  %s\n", frames, most,
                ours <= most ? "ok" : "MISSED");
}

bool ReportSpeed(const Arguments& arguments, const GifBundle& bundle)
{
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> ratios;
    for (int run = 0; run < arguments.runs; ++run) {
        theirs.push_back(kFrames / ProcessorSeconds(AnimateWithLibrary));
        ours.push_back(kFrames / ProcessorSeconds([&] { bundle.Animate(); }));
        ratios.push_back(ours.back() / theirs.back());
    }
    std::printf("%-20s speed   bundle %7.0f fps", arguments.name.c_str(), MedianOf(ours));
    bool holds = true;
    if (kHasLibrary) {
        const double ratio = MedianOf(ratios);
        holds = ratio >= arguments.gate;
        std::printf("   gdk-pixbuf %7.0f fps   ratio %5.2f", MedianOf(theirs), ratio);
        if (arguments.gate > 0)
            std::printf("   gate >= %.2f  %s", arguments.gate, holds ? "ok" : "MISSED");
    } else {
        std::printf("   gdk-pixbuf was not there to build against");
    }
    std::printf("\n");
    return holds;
}

bool Run(const Arguments& arguments)
{
    // First, while this process is small: its size counts as that of what it starts.
    const Peaks peaks = {PeakMegabytes(arguments, "neither"), PeakMegabytes(arguments, "bundle"),
                         PeakMegabytes(arguments, "library")};
    const GifBundle bundle(arguments.plugins);
    ReadFile(arguments.file);
    const bool holds = ReportSpeed(arguments, bundle);
    ReportMemory(arguments, peaks, bundle.FrameMegabytes());
    return holds;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc == 5 && std::string(argv[1]) == "--once") {
            RunOnce(argv[2], argv[3], argv[4]);
            return 0;
        }
        if ((argc != 5 && argc != 6) || std::atoi(argv[2]) < 1) {
            std::fprintf(stderr, "usage: bench_gif PLUGINS RUNS NAME FILE [GATE]\n");
            return 2;
        }
        return Run({argv[0], argv[1], std::atoi(argv[2]), argv[3], argv[4],
                    argc == 6 ? std::atof(argv[5]) : 0})
                   ? 0
                   : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_gif: %s\n", failure.what());
        return 2;
    }
}
