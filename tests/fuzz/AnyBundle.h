// SPDX-License-Identifier: MIT
#pragma once

#include "src/plugin/VornPluginABI.h"

#include <string>

// The entry points of a built bundle, by their exported names. It stays loaded.
struct AnyBundle {
    explicit AnyBundle(const std::string& name);
    AnyBundle(const AnyBundle&) = delete;
    AnyBundle& operator=(const AnyBundle&) = delete;

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
};
