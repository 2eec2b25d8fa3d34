// SPDX-License-Identifier: MIT
#include "viewer/mail/MailPart.h"

#include "viewer/mail/GMimePointer.h"
#include "viewer/mail/MimeWalk.h"

namespace viewer
{
namespace
{

constexpr std::string_view kMailboxLine = "From ";

GMimePointer<GMimeMessage> Parse(FileDescriptor& file)
{
    std::string start(kMailboxLine.size(), '\0');
    const bool isMailbox =
        pread(file.Get(), start.data(), start.size(), 0) > 0 && start == kMailboxLine;
    const GMimePointer<GMimeStream> stream(g_mime_stream_fs_new(dup(file.Get())));
    const GMimePointer<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    // Parts stay where they are until they are wanted.
    g_mime_parser_set_persist_stream(parser.get(), TRUE);
    g_mime_parser_set_format(parser.get(), isMailbox ? GMIME_FORMAT_MBOX : GMIME_FORMAT_MESSAGE);
    return GMimePointer<GMimeMessage>(g_mime_parser_construct_message(parser.get(), nullptr));
}

MimeDocument Read(FileDescriptor& file)
{
    static const bool isStarted = (g_mime_init(), true);
    static_cast<void>(isStarted);
    const GMimePointer<GMimeMessage> message = Parse(file);
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

void VornReadMail(viewer::FileDescriptor& file, viewer::MimeDocument& document)
{
    document = viewer::Read(file);
}
