// SPDX-License-Identifier: MIT
//
// A bundle on disk for the length of a test.
#pragma once

#include "toolbox/foundation/Foundation.h"

#include <string>

namespace test
{

// A temporary folder with Contents/Info.plist and the bundle reference to it.
class TestBundle
{
public:
    // `dictionary` is what stands between <dict> and </dict> of the information dictionary.
    explicit TestBundle(const std::string& dictionary = {});
    ~TestBundle();
    TestBundle(const TestBundle&) = delete;
    TestBundle& operator=(const TestBundle&) = delete;

    CFBundleRef Get() const { return bundle; }

private:
    std::string folder;
    CFBundleRef bundle;
};

// The bundle in an existing folder, to be released; null if there is none.
CFBundleRef OpenBundle(const std::string& folder);

} // namespace test
