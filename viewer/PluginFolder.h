// SPDX-License-Identifier: MIT
//
// All plug-in bundles that the viewer knows.
#pragma once

#include "viewer/PluginBundle.h"

#include <memory>

namespace viewer
{

// What is known of an object before a bundle is asked.
struct ObjectType {
    std::string mimeType; // empty: unknown
    OSType fileType = FOUR_CHARS('?', '?', '?', '?');
};

class PluginFolder
{
public:
    // Loads every *.plugin of a folder in the order of their names. One that cannot be used is
    // told to the user and left out; a folder without code is none (yet). Throws std::runtime_error
    // if there is no such folder.
    explicit PluginFolder(const std::string& path);

    const std::vector<std::unique_ptr<PluginBundle>>& Bundles() const { return bundles_; }
    // The type of an object of that name: `mimeType` if it is given, else the first one declared
    // for the name's extension, with the first file type declared along with it.
    ObjectType TypeOf(const std::string& fileName, const std::string& mimeType) const;

private:
    std::vector<std::unique_ptr<PluginBundle>> bundles_;
};

// The folder that belongs to this program, by where it was built or installed.
std::string DefaultPluginsFolder();
// What --list-plugins prints.
std::string DescribePlugins(const PluginFolder& folder);

} // namespace viewer
