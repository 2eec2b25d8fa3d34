// SPDX-License-Identifier: MIT
//
// An image bundle by its exported names, with a host that has all of a file in memory.
#pragma once

#include "src/plugin/VornPluginABI.h"

#include <memory>
#include <string>
#include <vector>

class ImageBundle
{
public:
    using Object = std::unique_ptr<VornPlugin, decltype(&VornPluginFreeObject)>;
    // The host hands out no more at a time.
    static constexpr SInt32 kPiece = 4096;

    // `plugins` is the folder that it is in. Throws std::runtime_error if it cannot be used.
    ImageBundle(const std::string& plugins, const std::string& name);
    ImageBundle(const ImageBundle&) = delete;
    ImageBundle& operator=(const ImageBundle&) = delete;
    ~ImageBundle();

    // The file as a decoded object. Throws std::runtime_error if that fails.
    Object Decode(const std::vector<UInt8>& file) const;

protected:
    // Throws std::runtime_error if it exports no such name.
    template <class Function>
    void Resolve(const char* exported, Function& function) const
    {
        function = reinterpret_cast<Function>(Find(exported));
    }

private:
    void* Find(const char* exported) const;

    CFBundleRef bundle_ = nullptr;
    void* code_ = nullptr;
    decltype(&VornPluginMakeNewObject) make_ = nullptr;
    decltype(&VornPluginDecodeObject) decode_ = nullptr;
    decltype(&VornPluginFreeObject) free_ = nullptr;
};
