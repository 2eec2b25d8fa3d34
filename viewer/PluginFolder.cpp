// SPDX-License-Identifier: MIT
#include "viewer/PluginFolder.h"

#include "viewer/Console.h"

#include <algorithm>
#include <filesystem>
#include <strings.h>

namespace viewer
{
namespace
{

namespace fs = std::filesystem;

std::vector<std::string> FindBundles(const std::string& path)
{
    std::error_code error;
    std::vector<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(path, error)) {
        if (entry.path().extension() == ".plugin" && fs::exists(CodeFileOf(entry.path()), error)) {
            found.push_back(entry.path().string());
        }
    }
    if (error) {
        throw std::runtime_error("no plug-ins folder '" + path + "': " + error.message());
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool Contains(const std::vector<std::string>& texts, const std::string& wanted)
{
    return std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
        return strcasecmp(text.c_str(), wanted.c_str()) == 0;
    });
}

std::string ExtensionOf(const std::string& fileName)
{
    const std::string withDot = fs::path(fileName).extension().string();
    return withDot.empty() ? withDot : withDot.substr(1);
}

OSType FileTypeOf(const DocumentType& type)
{
    if (type.fileTypes.empty() || type.fileTypes.front().size() != 4) {
        return FOUR_CHARS('?', '?', '?', '?');
    }
    const std::string& text = type.fileTypes.front();
    return FOUR_CHARS(text[0], text[1], text[2], text[3]);
}

void Append(std::string& text, const char* label, const std::vector<std::string>& items)
{
    text += label;
    for (const std::string& item : items) {
        text += ' ' + item;
    }
    text += '\n';
}

} // namespace

PluginFolder::PluginFolder(const std::string& path)
{
    for (const std::string& bundle : FindBundles(path)) {
        try {
            bundles_.push_back(std::make_unique<PluginBundle>(bundle));
        } catch (const std::runtime_error& problem) {
            Console::Tell(bundle, std::string("this plug-in cannot be used: ") + problem.what());
        }
    }
}

ObjectType PluginFolder::TypeOf(const std::string& fileName, const std::string& mimeType) const
{
    const std::string extension = ExtensionOf(fileName);
    for (const auto& bundle : bundles_) {
        for (const DocumentType& type : bundle->DocumentTypes()) {
            const bool matches = mimeType.empty()
                                     ? !extension.empty() && Contains(type.extensions, extension)
                                     : Contains(type.mimeTypes, mimeType);
            if (matches && mimeType.empty() && !type.mimeTypes.empty()) {
                return {type.mimeTypes.front(), FileTypeOf(type)};
            }
            if (matches) {
                return {mimeType, FileTypeOf(type)};
            }
        }
    }
    return {mimeType, FOUR_CHARS('?', '?', '?', '?')};
}

std::string DefaultPluginsFolder()
{
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error).parent_path();
    const fs::path built = program / "../plugins";
    return (fs::is_directory(built, error) ? built : program / "../lib/vorn/plugins")
        .lexically_normal()
        .string();
}

std::string DescribePlugins(const PluginFolder& folder)
{
    std::string text;
    for (const auto& bundle : folder.Bundles()) {
        text += bundle->Name() + " (" + bundle->Path() + ")\n";
        for (const DocumentType& type : bundle->DocumentTypes()) {
            text += "  " + (type.name.empty() ? std::string("unnamed type") : type.name) + '\n';
            Append(text, "    types:     ", type.mimeTypes);
            Append(text, "    extensions:", type.extensions);
        }
    }
    return text.empty() ? "no plug-ins\n" : text;
}

} // namespace viewer
