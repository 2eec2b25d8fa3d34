// SPDX-License-Identifier: MIT
#include "viewer/mail/MailPart.h"

#include "viewer/DeclaredType.h"
#include "viewer/ReadFully.h"
#include "viewer/mail/GMimePointer.h"
#include "viewer/mail/HeadedFile.h"
#include "viewer/mail/MimeWalk.h"

#include <algorithm>

namespace viewer
{
namespace
{

constexpr std::string_view kMailboxLine = "From ";
constexpr SInt32 kBytesToLookAt = 8192;

std::string StartOf(const FileDescriptor& file)
{
    std::string start(kBytesToLookAt, '\0');
    start.resize(static_cast<size_t>(ReadFully(file.Get(), start.data(), 0, kBytesToLookAt)));
    return start;
}

// A document without a header of its own begins with its parts. The field that came along is one
// line, whatever a server may have sent.
std::string MissingHeader(const std::string& start, std::string contentType)
{
    std::replace_if(
        contentType.begin(), contentType.end(), [](char c) { return c >= 0 && c < ' '; }, ' ');
    const bool isMissing = ReadDeclaredType(contentType).starts_with("multipart/") &&
                           !start.starts_with(kMailboxLine) && !IsMimeDocument("", start);
    return isMissing ? "Content-Type: " + contentType + "\r\n\r\n" : "";
}

// From the file's beginning, wherever somebody else has read to in it.
GMimePointer<GMimeStream> StreamOf(const FileDescriptor& file, const std::string& header)
{
    return header.empty()
               ? GMimePointer<GMimeStream>(g_mime_stream_fs_new_with_bounds(dup(file.Get()), 0, -1))
               : StreamOfHeadedFile(header, file.Get());
}

GMimePointer<GMimeMessage> Parse(FileDescriptor& file, const std::string& contentType)
{
    const std::string start = StartOf(file);
    const bool isMailbox = start.starts_with(kMailboxLine);
    const GMimePointer<GMimeStream> stream = StreamOf(file, MissingHeader(start, contentType));
    if (stream == nullptr) {
        throw SourceFailure{tmfoErr, "too many files are open"};
    }
    const GMimePointer<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    // Parts stay where they are until they are wanted.
    g_mime_parser_set_persist_stream(parser.get(), TRUE);
    g_mime_parser_set_format(parser.get(), isMailbox ? GMIME_FORMAT_MBOX : GMIME_FORMAT_MESSAGE);
    return GMimePointer<GMimeMessage>(g_mime_parser_construct_message(parser.get(), nullptr));
}

MimeDocument Read(FileDescriptor& file, const std::string& contentType)
{
    static const bool isStarted = (g_mime_init(), true);
    static_cast<void>(isStarted);
    const GMimePointer<GMimeMessage> message = Parse(file, contentType);
    if (message == nullptr) {
        throw SourceFailure{paramErr, "this is not an e-mail or a web archive"};
    }
    MimeDocument document = WalkThrough(*message);
    if (document.items.empty()) {
        throw SourceFailure{paramErr, "there is no text and no medium in this document"};
    }
    return document;
}

} // namespace
} // namespace viewer

void VornReadMail(viewer::FileDescriptor& file, const std::string& contentType,
                  viewer::MimeDocument& document)
{
    document = viewer::Read(file, contentType);
}
