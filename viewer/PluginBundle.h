// SPDX-License-Identifier: MIT
//
// A plug-in bundle on disk: what it accepts, and its entry points.
#pragma once

#include "src/plugin/VornPluginABI.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace viewer
{

// One entry of a bundle's "CFBundleDocumentTypes".
struct DocumentType {
    std::string name;
    std::vector<std::string> mimeTypes;
    std::vector<std::string> extensions; // without the dot
    std::vector<std::string> fileTypes;  // four characters each
};

// The exported functions that the viewer calls, found by name.
struct EntryPoints {
    decltype(&VornPluginCanHandleData) canHandleData = nullptr;
    decltype(&VornPluginMakeNewObject) makeNewObject = nullptr;
    decltype(&VornPluginDecodeObject) decodeObject = nullptr;
    decltype(&VornPluginDisplayObject) displayObject = nullptr;
    decltype(&VornPluginIdleObject) idleObject = nullptr;
    decltype(&VornPluginHandleObjectClick) handleObjectClick = nullptr;
    decltype(&VornPluginPrepareDrag) prepareDrag = nullptr;
    decltype(&VornPluginCleanupDrag) cleanupDrag = nullptr;
    decltype(&VornPluginGetObjectData) getObjectData = nullptr;
    decltype(&VornPluginGetObjectDisplayRect) getObjectDisplayRect = nullptr;
    decltype(&VornPluginSetObjectDisplayFlags) setObjectDisplayFlags = nullptr;
    decltype(&VornPluginHaveObjectDimensions) haveObjectDimensions = nullptr;
    decltype(&VornPluginGetObjectComment) getObjectComment = nullptr;
    decltype(&VornPluginFreeObject) freeObject = nullptr;
};

// Video or sound.
bool IsMovieType(const std::string& mimeType);

// Where a bundle at that path has its code.
std::string CodeFileOf(const std::string& path);

// Throws std::runtime_error with a text for the user where a bundle cannot be used.
class PluginBundle
{
public:
    // `path` is the bundle's folder, NAME.plugin.
    explicit PluginBundle(const std::string& path);
    ~PluginBundle();
    PluginBundle(const PluginBundle&) = delete;
    PluginBundle& operator=(const PluginBundle&) = delete;

    const std::string& Name() const { return name_; }
    const std::string& Path() const { return path_; }
    const std::vector<DocumentType>& DocumentTypes() const { return documentTypes_; }
    const EntryPoints& Calls() const { return calls_; }
    CFBundleRef Reference() const { return bundle_; }
    // It declares video or sound, so its objects open one at a time.
    bool PlaysMovies() const { return playsMovies_; }

private:
    void OpenBundle();
    void LoadCode();

    std::string path_;
    std::string name_;
    CFBundleRef bundle_ = nullptr;
    void* code_ = nullptr;
    std::vector<DocumentType> documentTypes_;
    bool playsMovies_ = false;
    EntryPoints calls_;
};

} // namespace viewer
