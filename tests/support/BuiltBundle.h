// SPDX-License-Identifier: MIT
//
// A bundle in the build's folder of plug-ins, by the names that it exports.
#pragma once

#include "src/plugin/VornPluginABI.h"

#include <string>
#include <vector>

namespace test
{

// Its code stays loaded: what it registered may outlive this. Throws std::runtime_error where the
// bundle cannot be opened or lacks an entry point.
class BuiltBundle
{
public:
    explicit BuiltBundle(const std::string& name);
    ~BuiltBundle();
    BuiltBundle(const BuiltBundle&) = delete;
    BuiltBundle& operator=(const BuiltBundle&) = delete;

    bool CanHandle(const std::vector<UInt8>& bytes, const char* mimeType, const char* name) const;

    CFBundleRef bundle = nullptr;
    decltype(&VornPluginCanHandleData) canHandleData = nullptr;
    decltype(&VornPluginMakeNewObject) makeNewObject = nullptr;
    decltype(&VornPluginDecodeObject) decodeObject = nullptr;
    decltype(&VornPluginDisplayObject) displayObject = nullptr;
    decltype(&VornPluginIdleObject) idleObject = nullptr;
    decltype(&VornPluginHandleObjectClick) handleObjectClick = nullptr;
    decltype(&VornPluginPrepareDrag) prepareDrag = nullptr;
    decltype(&VornPluginCleanupDrag) cleanupDrag = nullptr;
    decltype(&VornPluginGetObjectData) getObjectData = nullptr;
    decltype(&VornPluginGetObjectDisplayRect) getDisplayRect = nullptr;
    decltype(&VornPluginGetObjectDisplayFlags) getDisplayFlags = nullptr;
    decltype(&VornPluginSetObjectDisplayFlags) setDisplayFlags = nullptr;
    decltype(&VornPluginHaveObjectDimensions) haveDimensions = nullptr;
    decltype(&VornPluginGetObjectRenderingError) getRenderingError = nullptr;
    decltype(&VornPluginGetObjectComment) getComment = nullptr;
    decltype(&VornPluginFreeObject) freeObject = nullptr;

protected:
    template <class Function>
    void Resolve(const char* exported, Function& function) const
    {
        function = reinterpret_cast<Function>(Find(exported));
    }

private:
    void* Find(const char* exported) const;

    void* code_ = nullptr;
};

} // namespace test
