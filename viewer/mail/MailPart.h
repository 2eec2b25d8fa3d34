// SPDX-License-Identifier: MIT
//
// What the part VornMail exports.
#pragma once

#include "viewer/MimeDocument.h"

extern "C" {

// Takes an e-mail or a web archive apart. Throws viewer::SourceFailure if it has nothing to show.
__attribute__((visibility("default"))) void VornReadMail(viewer::FileDescriptor& file,
                                                         viewer::MimeDocument& document);
}
