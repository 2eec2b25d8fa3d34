// SPDX-License-Identifier: MIT
#include "tests/support/TestBundle.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace test
{

namespace
{

std::string MakeTemporaryFolder()
{
    std::string path = (std::filesystem::temp_directory_path() / "bundle-XXXXXX").string();
    if (!mkdtemp(path.data()))
        throw std::runtime_error("no temporary folder");
    return path;
}

} // namespace

CFBundleRef OpenBundle(const std::string& folder)
{
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(folder.data()), static_cast<CFIndex>(folder.size()),
        true);
    CFBundleRef bundle = CFBundleCreate(nullptr, url);
    CFRelease(url);
    return bundle;
}

TestBundle::TestBundle(const std::string& dictionary) : folder(MakeTemporaryFolder())
{
    std::filesystem::create_directory(folder + "/Contents");
    std::ofstream(folder + "/Contents/Info.plist")
        << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" << dictionary
        << "</dict></plist>";
    bundle = OpenBundle(folder);
    if (!bundle)
        throw std::runtime_error("the toolbox does not open " + folder);
}

TestBundle::~TestBundle()
{
    CFRelease(bundle);
    std::filesystem::remove_all(folder);
}

} // namespace test
