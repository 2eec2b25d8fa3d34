// SPDX-License-Identifier: MIT
#include "viewer/PluginBundle.h"

#include "viewer/DocumentTypeReading.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <memory>

namespace viewer
{
namespace
{

template <typename Function>
void Find(void* code, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(code, name));
    if (function == nullptr) {
        throw std::runtime_error(std::string("it does not export ") + name);
    }
}

EntryPoints FindEntryPoints(void* code)
{
    EntryPoints calls;
    Find(code, "VornPluginCanHandleData", calls.canHandleData);
    Find(code, "VornPluginMakeNewObject", calls.makeNewObject);
    Find(code, "VornPluginDecodeObject", calls.decodeObject);
    Find(code, "VornPluginDisplayObject", calls.displayObject);
    Find(code, "VornPluginIdleObject", calls.idleObject);
    Find(code, "VornPluginHandleObjectClick", calls.handleObjectClick);
    Find(code, "VornPluginPrepareDrag", calls.prepareDrag);
    Find(code, "VornPluginCleanupDrag", calls.cleanupDrag);
    Find(code, "VornPluginGetObjectData", calls.getObjectData);
    Find(code, "VornPluginGetObjectDisplayRect", calls.getObjectDisplayRect);
    Find(code, "VornPluginSetObjectDisplayFlags", calls.setObjectDisplayFlags);
    Find(code, "VornPluginHaveObjectDimensions", calls.haveObjectDimensions);
    Find(code, "VornPluginGetObjectComment", calls.getObjectComment);
    Find(code, "VornPluginFreeObject", calls.freeObject);
    return calls;
}

bool DeclareMovies(const std::vector<DocumentType>& types)
{
    return std::any_of(types.begin(), types.end(), [](const DocumentType& type) {
        return std::any_of(type.mimeTypes.begin(), type.mimeTypes.end(), IsMovieType);
    });
}

} // namespace

bool IsMovieType(const std::string& mimeType)
{
    return mimeType.starts_with("video/") || mimeType.starts_with("audio/");
}

std::string CodeFileOf(const std::string& path)
{
    const std::string name = std::filesystem::path(path).stem().string();
    return path + "/Contents/Linux/" + name + ".so";
}

PluginBundle::PluginBundle(const std::string& path)
    : path_(path), name_(std::filesystem::path(path).stem().string())
{
    OpenBundle();
    try {
        LoadCode();
    } catch (...) {
        CFRelease(bundle_);
        throw;
    }
}

void PluginBundle::OpenBundle()
{
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path_.data()), static_cast<CFIndex>(path_.size()),
        1);
    bundle_ = url == nullptr ? nullptr : CFBundleCreate(nullptr, url);
    if (url != nullptr) {
        CFRelease(url);
    }
    if (bundle_ == nullptr) {
        throw std::runtime_error("it has no readable Contents/Info.plist");
    }
    documentTypes_ = ReadDocumentTypes(bundle_);
    playsMovies_ = DeclareMovies(documentTypes_);
}

// The code stays loaded for the life of the process: the data handler it registered with the
// toolbox does too.
void PluginBundle::LoadCode()
{
    code_ = dlopen(CodeFileOf(path_).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (code_ == nullptr) {
        throw std::runtime_error(dlerror());
    }
    calls_ = FindEntryPoints(code_);
}

PluginBundle::~PluginBundle()
{
    CFRelease(bundle_);
}

} // namespace viewer
