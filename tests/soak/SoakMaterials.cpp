// SPDX-License-Identifier: MIT
#include "tests/soak/SoakMaterials.h"

#include "tests/viewer/ImageFiles.h"
#include "tests/viewer/TestFiles.h"

#include <stdexcept>

namespace
{

std::string ReadClip(const std::string& name)
{
    std::ifstream file(std::string(VORN_CLIPS) + "/" + name, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (bytes.empty()) {
        throw std::runtime_error("there is no clip " + name);
    }
    return bytes;
}

std::string Damaged(std::string bytes)
{
    for (size_t at = bytes.size() / 3; at < bytes.size(); at += 97) {
        bytes[at] = static_cast<char>(bytes[at] ^ 0x5A);
    }
    return bytes;
}

} // namespace

std::vector<SoakMaterial> MakeSoakMaterials()
{
    std::vector<SoakMaterial> materials;
    const auto add = [&](const std::string& name, const std::string& type,
                         const std::string& bytes) {
        materials.push_back({name, type, std::make_shared<const std::string>(bytes)});
    };
    const auto addInThreeStates = [&](const std::string& name, const std::string& type,
                                      const std::string& bytes) {
        add(name, type, bytes);
        add("cut-" + name, type, bytes.substr(0, bytes.size() / 2));
        add("damaged-" + name, type, Damaged(bytes));
    };
    addInThreeStates("tiny.mpg", "video/mpeg", ReadClip("tiny.mpg"));
    addInThreeStates("silent.mpg", "video/mpeg", ReadClip("silent.mpg"));
    addInThreeStates("sound.mp3", "audio/mpeg", ReadClip("sound.mp3"));
    addInThreeStates("animation.gif", "image/gif",
                     MakeAnimation(48, 32, {0xFF0000, 0x00FF00, 0x0000FF}, 10));
    addInThreeStates("picture.png", "image/png", MakePng(48, 32));
    addInThreeStates("picture.jpeg", "image/jpeg", MakeJpeg(48, 32));
    add("unknown", "application/x-nothing", Pattern(5000));
    add("no-movie.mpg", "video/mpeg", Pattern(5000));
    return materials;
}
