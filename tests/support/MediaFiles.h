// SPDX-License-Identifier: MIT
//
// Media that nobody here made: the files below the folder that VORN_TEST_MEDIA names, as parameters
// of tests.
#pragma once

#include "toolbox/Types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace test
{

// The paths of the files with one of those extensions; one empty path if there is no folder, so
// that a test can say that it is skipped.
inline std::vector<std::string> MediaFiles(const std::set<std::string>& extensions)
{
    const char* const folder = std::getenv("VORN_TEST_MEDIA");
    if (folder == nullptr || *folder == '\0')
        return {""};
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (extensions.count(entry.path().extension().string()) > 0)
            found.push_back(entry.path().string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

inline std::string MediaFileName(const testing::TestParamInfo<std::string>& info)
{
    std::string name =
        info.param.empty() ? "None" : std::filesystem::path(info.param).filename().string();
    for (char& character : name)
        character = std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    return name + "_" + std::to_string(info.index);
}

inline std::vector<UInt8> ReadMediaFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace test
