// SPDX-License-Identifier: MIT
#include "viewer/ViewerPart.h"

#include <dlfcn.h>
#include <filesystem>

namespace viewer
{
namespace
{

// The linker's text names the file in question, which need not be the part's own.
PartMissing CannotBeUsed(const std::string& name)
{
    const char* const problem = dlerror();
    return PartMissing("the viewer's part " + name +
                       " cannot be used: " + (problem == nullptr ? "it is empty" : problem));
}

} // namespace

std::string ViewerPart::DefaultFolder()
{
    Dl_info self{};
    dladdr(reinterpret_cast<void*>(&ViewerPart::DefaultFolder), &self);
    return std::filesystem::path(self.dli_fname).parent_path() / "vorn";
}

// What the part does not call is not looked up: that would take longer than loading it.
ViewerPart::ViewerPart(const std::string& name, const std::string& folder)
    : name_(name), code_(dlopen((folder + "/" + name + ".so").c_str(), RTLD_LAZY | RTLD_LOCAL))
{
    if (code_ == nullptr) {
        throw CannotBeUsed(name);
    }
}

void* ViewerPart::FindSymbol(const char* name) const
{
    void* const symbol = dlsym(code_, name);
    if (symbol == nullptr) {
        throw CannotBeUsed(name_);
    }
    return symbol;
}

} // namespace viewer
