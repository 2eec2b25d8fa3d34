// SPDX-License-Identifier: MIT
#include "tests/support/BuiltBundle.h"

#include "tests/support/TestBundle.h"

#include <dlfcn.h>
#include <stdexcept>

namespace test
{

BuiltBundle::BuiltBundle(const std::string& name)
{
    const std::string folder = std::string(VORN_PLUGINS "/") + name + ".plugin";
    bundle = OpenBundle(folder);
    code_ = dlopen((folder + "/Contents/Linux/" + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
    if (bundle == nullptr || code_ == nullptr)
        throw std::runtime_error("no bundle in " + folder);
    Resolve("VornPluginCanHandleData", canHandleData);
    Resolve("VornPluginMakeNewObject", makeNewObject);
    Resolve("VornPluginDecodeObject", decodeObject);
    Resolve("VornPluginDisplayObject", displayObject);
    Resolve("VornPluginIdleObject", idleObject);
    Resolve("VornPluginHandleObjectClick", handleObjectClick);
    Resolve("VornPluginPrepareDrag", prepareDrag);
    Resolve("VornPluginCleanupDrag", cleanupDrag);
    Resolve("VornPluginGetObjectData", getObjectData);
    Resolve("VornPluginGetObjectDisplayRect", getDisplayRect);
    Resolve("VornPluginGetObjectDisplayFlags", getDisplayFlags);
    Resolve("VornPluginSetObjectDisplayFlags", setDisplayFlags);
    Resolve("VornPluginHaveObjectDimensions", haveDimensions);
    Resolve("VornPluginGetObjectRenderingError", getRenderingError);
    Resolve("VornPluginGetObjectComment", getComment);
    Resolve("VornPluginFreeObject", freeObject);
}

BuiltBundle::~BuiltBundle()
{
    CFRelease(bundle);
}

bool BuiltBundle::CanHandle(const std::vector<UInt8>& bytes, const char* mimeType,
                            const char* name) const
{
    return canHandleData(bundle, bytes.data(), static_cast<SInt32>(bytes.size()), mimeType, name) !=
           0;
}

void* BuiltBundle::Find(const char* exported) const
{
    void* const function = dlsym(code_, exported);
    if (function == nullptr)
        throw std::runtime_error(std::string("the bundle lacks ") + exported);
    return function;
}

} // namespace test
