// SPDX-License-Identifier: MIT
#include "viewer/window/PictureSaver.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/quickdraw/QDOffscreen.h"
#include "viewer/Console.h"
#include "viewer/OutputFile.h"
#include "viewer/PngWriter.h"
#include "viewer/Rects.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace viewer
{
namespace
{

constexpr OSType kPicture = FOUR_CHARS('P', 'I', 'C', 'T');
// What a file has in front of the picture itself.
constexpr size_t kPictureFileHeader = 512;
constexpr SInt16 kDepth = 32;
constexpr size_t kBytesPerPixel = 4;

namespace fs = std::filesystem;

// As a whole path: the user may not know in which folder the program was started.
fs::path FolderFor(const std::string& wanted)
{
    std::error_code ignored;
    fs::path folder = wanted;
    if (wanted.empty()) {
        const char* const home = std::getenv("HOME");
        const fs::path pictures = home == nullptr ? "" : fs::path(home) / "Pictures";
        folder = fs::is_directory(pictures, ignored) ? pictures : ".";
    }
    const fs::path whole = fs::absolute(folder, ignored).lexically_normal();
    return whole.empty() ? folder : whole;
}

struct HandleDisposer {
    using pointer = Handle;
    void operator()(Handle handle) const { DisposeHandle(handle); }
};

struct WorldDisposer {
    using pointer = GWorldPtr;
    void operator()(GWorldPtr world) const { DisposeGWorld(world); }
};

} // namespace

std::string PictureSaver::FreePath(const std::string& name, const std::string& extension) const
{
    const fs::path folder = FolderFor(folder_);
    fs::path path = folder / (name + extension);
    std::error_code ignored;
    for (int i = 2; fs::exists(path, ignored); ++i) {
        path = folder / (name + "-" + std::to_string(i) + extension);
    }
    return path.string();
}

void PictureSaver::Tell(const std::string& name, const std::string& text)
{
    Console::Tell(name, text);
    told_ += (told_.empty() ? "" : "\n") + text;
}

std::string PictureSaver::SavePicture(EmbeddedObject* object)
{
    if (object == nullptr || !object->HasDimensions()) {
        Tell("", "there is no picture to be saved");
        return std::exchange(told_, {});
    }
    const std::string name = fs::path(object->FileName()).stem().string();
    const std::string stem = name.empty() || name == "-" ? "picture" : name;
    try {
        const std::string pixels = FreePath(stem, ".png");
        WritePixels(object->DrawnRect(), pixels);
        Tell(object->Name(), "saved as " + pixels);
        const std::string picture = FreePath(stem, ".pict");
        if (WritePicture(*object, picture)) {
            Tell(object->Name(), "saved as " + picture);
        }
    } catch (const std::runtime_error& problem) {
        Tell(object->Name(), problem.what());
    }
    return std::exchange(told_, {});
}

std::string PictureSaver::SavePage()
{
    try {
        const std::string path = FreePath("page", ".png");
        WritePng(page_.Port(), path, "the picture");
        Tell("", "the page was saved as " + path);
    } catch (const std::runtime_error& problem) {
        Tell("", problem.what());
    }
    return std::exchange(told_, {});
}

void PictureSaver::WritePixels(const Rect& area, const std::string& path)
{
    Rect bounds{};
    const Rect part = Intersection(area, *GetPortBounds(page_.Port(), &bounds));
    GWorldPtr made = nullptr;
    if (IsEmpty(part) || NewGWorld(&made, kDepth, &part, nullptr, nullptr, 0) != noErr) {
        throw std::runtime_error("the picture could not be saved");
    }
    const std::unique_ptr<GWorldPtr, WorldDisposer> world(made);
    SInt32 fromRow = 0;
    SInt32 toRow = 0;
    const UInt8* const from = GetPortPixels(page_.Port(), &fromRow);
    UInt8* const to = GetPortPixels(world.get(), &toRow);
    for (ptrdiff_t v = part.top; v < part.bottom; ++v) {
        std::memcpy(to + (v - part.top) * toRow,
                    from + v * fromRow + part.left * static_cast<ptrdiff_t>(kBytesPerPixel),
                    static_cast<size_t>(part.right - part.left) * kBytesPerPixel);
    }
    WritePng(world.get(), path, "the picture");
}

// False if the object gives none.
bool PictureSaver::WritePicture(EmbeddedObject& object, const std::string& path)
{
    OSType type = 0;
    Handle data = nullptr;
    if (object.Plugin().GetData(type, data) != noErr || data == nullptr) {
        return false;
    }
    const std::unique_ptr<Handle, HandleDisposer> picture(data);
    if (type != kPicture) {
        return false;
    }
    OutputFile file(path, "the picture");
    const std::array<UInt8, kPictureFileHeader> header{};
    file.Write(header.data(), header.size());
    file.Write(*data, static_cast<size_t>(GetHandleSize(data)));
    file.Commit();
    return true;
}

} // namespace viewer
