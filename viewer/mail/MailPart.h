// SPDX-License-Identifier: MIT
//
// What the part VornMail exports.
#pragma once

#include "viewer/MimeDocument.h"

extern "C" {

// Takes an e-mail or a web archive apart; see viewer::ReadMimeDocument. Throws
// viewer::SourceFailure if it has nothing to show.
__attribute__((visibility("default"))) void VornReadMail(viewer::FileDescriptor& file,
                                                         const std::string& contentType,
                                                         viewer::MimeDocument& document);
}
