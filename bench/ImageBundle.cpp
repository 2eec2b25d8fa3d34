// SPDX-License-Identifier: MIT
#include "bench/ImageBundle.h"

#include "bench/QuietHost.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace
{

const std::vector<UInt8>* gFile;

OSErr CopyPiece(VornPlugin*, void* buffer, SInt32 offset, SInt32* count, SInt32* dataSize,
                unsigned char* dataComplete)
{
    const auto size = static_cast<SInt32>(gFile->size());
    *dataSize = size;
    *dataComplete = 1;
    *count = std::clamp(size - offset, 0, std::min(*count, ImageBundle::kPiece));
    if (buffer != nullptr && *count > 0)
        std::memcpy(buffer, gFile->data() + offset, static_cast<size_t>(*count));
    return *count > 0 || buffer == nullptr ? OSErr{0} : OSErr{kDataNotAvailableErr};
}

OSErr TellSize(VornPlugin*, SInt32* bytes)
{
    *bytes = static_cast<SInt32>(gFile->size());
    return 0;
}

constexpr VornPluginHostCalls kHost = {IgnoreRect, IgnoreError, IgnoreRows, CopyPiece, TellSize};

} // namespace

ImageBundle::ImageBundle(const std::string& plugins, const std::string& name)
{
    const std::string folder = plugins + "/" + name + ".plugin";
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(folder.data()), static_cast<CFIndex>(folder.size()),
        1);
    bundle_ = CFBundleCreate(nullptr, url);
    CFRelease(url);
    code_ = dlopen((folder + "/Contents/Linux/" + name + ".so").c_str(), RTLD_NOW);
    if (bundle_ == nullptr || code_ == nullptr)
        throw std::runtime_error("no bundle in " + folder);
    Resolve("VornPluginMakeNewObject", make_);
    Resolve("VornPluginDecodeObject", decode_);
    Resolve("VornPluginFreeObject", free_);
}

ImageBundle::~ImageBundle()
{
    CFRelease(bundle_);
}

ImageBundle::Object ImageBundle::Decode(const std::vector<UInt8>& file) const
{
    gFile = &file;
    VornPlugin* made = nullptr;
    if (make_(bundle_, &kHost, 0, 0, "", "", &made) != 0)
        throw std::runtime_error("the bundle makes no object");
    Object object(made, free_);
    if (decode_(made) != 0)
        throw std::runtime_error("the bundle does not decode");
    return object;
}

void* ImageBundle::Find(const char* exported) const
{
    void* const function = dlsym(code_, exported);
    if (function == nullptr)
        throw std::runtime_error(std::string("the bundle lacks ") + exported);
    return function;
}
