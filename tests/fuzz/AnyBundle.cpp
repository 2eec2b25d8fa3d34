// SPDX-License-Identifier: MIT
#include "tests/fuzz/AnyBundle.h"

#include "tests/fuzz/Require.h"
#include "tests/support/TestBundle.h"

#include <dlfcn.h>

AnyBundle::AnyBundle(const std::string& name)
{
    const std::string folder = std::string(VORN_PLUGINS "/") + name + ".plugin";
    bundle = test::OpenBundle(folder);
    void* const library =
        dlopen((folder + "/Contents/Linux/" + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
    Require(bundle != nullptr && library != nullptr, "the bundle opens");
    const auto resolve = [library](const char* entry, auto& function) {
        function =
            reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, entry));
        Require(function != nullptr, entry);
    };
    resolve("VornPluginCanHandleData", canHandleData);
    resolve("VornPluginMakeNewObject", makeNewObject);
    resolve("VornPluginDecodeObject", decodeObject);
    resolve("VornPluginDisplayObject", displayObject);
    resolve("VornPluginIdleObject", idleObject);
    resolve("VornPluginHandleObjectClick", handleObjectClick);
    resolve("VornPluginPrepareDrag", prepareDrag);
    resolve("VornPluginCleanupDrag", cleanupDrag);
    resolve("VornPluginGetObjectData", getObjectData);
    resolve("VornPluginGetObjectDisplayRect", getDisplayRect);
    resolve("VornPluginGetObjectDisplayFlags", getDisplayFlags);
    resolve("VornPluginSetObjectDisplayFlags", setDisplayFlags);
    resolve("VornPluginHaveObjectDimensions", haveDimensions);
    resolve("VornPluginGetObjectRenderingError", getRenderingError);
    resolve("VornPluginGetObjectComment", getComment);
    resolve("VornPluginFreeObject", freeObject);
}
