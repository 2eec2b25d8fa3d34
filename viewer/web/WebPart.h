// SPDX-License-Identifier: MIT
//
// What the part VornWeb exports.
#pragma once

#include "viewer/ByteSource.h"

extern "C" {

// The source of what is at an http or https URL. Throws viewer::SourceFailure.
__attribute__((visibility("default"))) void
VornOpenUrl(const std::string& url, std::unique_ptr<viewer::ByteSource>& source);
}
