// SPDX-License-Identifier: MIT
#include "viewer/FolderObjects.h"

#include "viewer/HttpUrl.h"
#include "viewer/MimeTypeGuess.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <strings.h>

namespace viewer
{
namespace
{

namespace fs = std::filesystem;

constexpr size_t kBytesForTypeCheck = 4096;

std::string GuessTypeOf(const fs::path& file)
{
    std::array<char, kBytesForTypeCheck> start{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(start.data(), start.size());
    return GuessMimeType(reinterpret_cast<const UInt8*>(start.data()),
                         static_cast<size_t>(stream.gcount()));
}

bool Declares(const PluginFolder& plugins, std::vector<std::string> DocumentType::*list,
              const std::string& wanted)
{
    const auto isSame = [&](const std::string& each) {
        return strcasecmp(each.c_str(), wanted.c_str()) == 0;
    };
    const auto declares = [&](const DocumentType& type) {
        return std::any_of((type.*list).begin(), (type.*list).end(), isSame);
    };
    const auto& bundles = plugins.Bundles();
    return std::any_of(bundles.begin(), bundles.end(), [&](const auto& bundle) {
        const auto& types = bundle->DocumentTypes();
        return std::any_of(types.begin(), types.end(), declares);
    });
}

// By its first bytes, or by its name if they say nothing, as for any object.
bool MayBeShown(const fs::path& file, const PluginFolder& plugins)
{
    const std::string guess = GuessTypeOf(file);
    if (!guess.empty()) {
        return Declares(plugins, &DocumentType::mimeTypes, guess);
    }
    const std::string extension = file.extension().string();
    return extension.size() > 1 &&
           Declares(plugins, &DocumentType::extensions, extension.substr(1));
}

std::vector<std::string> FilesOf(const std::string& folder, const PluginFolder& plugins)
{
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; it != end; it.increment(error)) {
        const fs::path& path = it->path();
        std::error_code ofFile;
        if (!path.filename().string().starts_with('.') && it->is_regular_file(ofFile) &&
            MayBeShown(path, plugins)) {
            files.push_back(path.string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool IsFolder(const std::string& location)
{
    std::error_code error;
    return location != "-" && !IsHttpUrl(location) && fs::is_directory(location, error);
}

} // namespace

void ExpandFolders(Options& options, const PluginFolder& plugins)
{
    std::vector<ObjectRequest> objects;
    for (const ObjectRequest& request : options.objects) {
        const std::vector<std::string> files = IsFolder(request.location)
                                                   ? FilesOf(request.location, plugins)
                                                   : std::vector<std::string>();
        for (const std::string& file : files) {
            objects.push_back({file, request.mimeType, request.displayFlags});
        }
        if (files.empty()) {
            objects.push_back(request);
        }
    }
    options.objects = std::move(objects);
}

} // namespace viewer
