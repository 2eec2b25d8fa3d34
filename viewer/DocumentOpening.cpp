// SPDX-License-Identifier: MIT
#include "viewer/DocumentOpening.h"

#include "viewer/HttpUrl.h"
#include "viewer/MimeTypeGuess.h"
#include "viewer/ReadFully.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace viewer
{
namespace
{

constexpr SInt32 kBytesToLookAt = 8192;

// Not open for what is no file, which the source tells of, or whose bytes come only once: a FIFO
// that was opened and closed again would cost its writer the reader.
FileDescriptor OpenFile(const std::string& location)
{
    if (location == "-" || IsHttpUrl(location)) {
        return FileDescriptor();
    }
    struct stat status {
    };
    const bool isFile = stat(location.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
                        status.st_size < kObjectSizeLimit;
    return isFile ? FileDescriptor(open(location.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
                  : FileDescriptor();
}

bool LooksLikeDocument(const FileDescriptor& file, const std::string& location)
{
    std::array<char, kBytesToLookAt> start{};
    const auto length = static_cast<size_t>(ReadFully(file.Get(), start.data(), 0, kBytesToLookAt));
    return GuessMimeType(reinterpret_cast<const UInt8*>(start.data()), length).empty() &&
           IsMimeDocument(location, {start.data(), length});
}

// Movies and images are not kept waiting until it is certain.
bool IsText(std::string_view start)
{
    return std::none_of(start.begin(), start.end(), [](char c) { return c >= 0 && c < '\t'; });
}

} // namespace

std::optional<MimeDocument> OpenDocument(const ObjectRequest& request)
{
    if (!request.mimeType.empty() && !IsMimeDocumentType(request.mimeType)) {
        return std::nullopt;
    }
    FileDescriptor file = OpenFile(request.location);
    if (!file.IsOpen() ||
        (request.mimeType.empty() && !LooksLikeDocument(file, request.location))) {
        return std::nullopt;
    }
    return ReadMimeDocument(std::move(file));
}

DocumentLook LookForDocument(EmbeddedObject& object)
{
    const ObjectDescription& description = object.Description();
    if (!description.mayBeDocument) {
        return DocumentLook::kNoDocument;
    }
    ObjectBytes& bytes = object.Bytes();
    if (IsMimeDocumentType(description.typeIsKnown ? description.type.mimeType
                                                   : bytes.DeclaredType())) {
        return DocumentLook::kDocument;
    }
    std::array<char, kBytesToLookAt> buffer{};
    const std::string_view start(buffer.data(),
                                 static_cast<size_t>(bytes.Peek(buffer.data(), kBytesToLookAt)));
    if (description.typeIsKnown || !IsText(start) ||
        !GuessMimeType(reinterpret_cast<const UInt8*>(start.data()), start.size()).empty()) {
        return DocumentLook::kNoDocument;
    }
    if (start.size() < kBytesToLookAt && !bytes.IsAtEnd()) {
        return DocumentLook::kNotYetKnown;
    }
    return IsMimeDocument(description.fileName, start) ? DocumentLook::kDocument
                                                       : DocumentLook::kNoDocument;
}

} // namespace viewer
