// SPDX-License-Identifier: MIT
//
// The fake bundle as the tests see it, in the copy that the viewer loaded.
#pragma once

#include "tests/viewer/FakeBundle/FakeBundle.h"
#include "viewer/PluginFolder.h"

#include <dlfcn.h>
#include <string>

class FakePlugins
{
public:
    FakePlugins() : folder_(FAKE_PLUGINS) { Find<void()>("FakeBundleReset")(); }

    const viewer::PluginFolder& Folder() const { return folder_; }
    std::string Log() const { return Find<const char*()>("FakeBundleLog")(); }
    SInt32 Violations() const { return Find<SInt32()>("FakeBundleViolations")(); }
    SInt32 WrongClips() const { return Find<SInt32()>("FakeBundleWrongClips")(); }
    // How often a line stands in the log.
    int Count(const std::string& line) const
    {
        const std::string log = "\n" + Log();
        int count = 0;
        for (size_t at = 0; (at = log.find("\n" + line + "\n", at)) != std::string::npos; ++at) {
            ++count;
        }
        return count;
    }

private:
    template <typename Function>
    Function* Find(const char* name) const
    {
        const std::string& path = folder_.Bundles().at(0)->Path();
        void* code = dlopen((path + "/Contents/Linux/Fake.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
        auto* function = reinterpret_cast<Function*>(dlsym(code, name));
        dlclose(code);
        return function;
    }

    viewer::PluginFolder folder_;
};
