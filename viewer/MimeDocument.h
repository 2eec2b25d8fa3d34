// SPDX-License-Identifier: MIT
//
// E-mails and web archives: documents of many parts, some of them text, some of them objects.
#pragma once

#include "viewer/ByteSource.h"
#include "viewer/FileDescriptor.h"

#include <string_view>
#include <variant>
#include <vector>

namespace viewer
{

struct MimeMedium {
    std::string fileName; // empty if the document names none
    std::unique_ptr<ByteSource> source;
};

// A paragraph (UTF-8, a line feed where its author ended a line), or an object.
using MimeItem = std::variant<std::string, MimeMedium>;

struct MimeDocument {
    std::vector<MimeItem> items;       // in reading order
    std::vector<std::string> messages; // what is not shown and why, for the user
};

// By the name's extension, or by header lines at the start.
bool IsMimeDocument(const std::string& fileName, std::string_view start);
// Of a type that --type may give.
bool IsMimeDocumentType(const std::string& mimeType);
// Takes what can be had of a damaged one. `contentType` is the field that came along: that of a
// multipart document may stand there alone. Throws SourceFailure if there is nothing, and
// PartMissing.
MimeDocument ReadMimeDocument(FileDescriptor file, const std::string& contentType = {});

} // namespace viewer
