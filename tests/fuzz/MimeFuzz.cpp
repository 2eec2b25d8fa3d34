// SPDX-License-Identifier: MIT
//
// E-mails and web archives, taken apart as the viewer does.
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/Require.h"
#include "viewer/MimeDocument.h"

#include <glib.h>

#include <algorithm>
#include <string>
#include <sys/mman.h>

namespace
{

constexpr size_t kMostItems = 100000;

viewer::FileDescriptor FileOf(std::string_view contents)
{
    viewer::FileDescriptor file(memfd_create("mail", 0));
    Require(pwrite(file.Get(), contents.data(), contents.size(), 0) ==
                static_cast<ssize_t>(contents.size()),
            "the document is written");
    return file;
}

void RequireParagraph(const std::string& paragraph)
{
    Require(!paragraph.empty(), "a paragraph has text");
    Require(g_utf8_validate(paragraph.data(), static_cast<gssize>(paragraph.size()), nullptr) != 0,
            "it is UTF-8");
}

// What encodings are there make less of the bytes, never more.
void RequireMedium(const viewer::MimeMedium& medium, size_t documentSize)
{
    Require(medium.fileName.find_first_of("/\\") == std::string::npos, "a name leads nowhere");
    viewer::ByteSource& source = *medium.source;
    SInt32 received = 0;
    while (!source.IsComplete()) {
        source.Pump(received + 100);
        Require(source.Received() > received || source.IsComplete(), "bytes come or have ended");
        received = source.Received();
    }
    Require(source.Failure().error == 0, "a part that is there can be read");
    Require(static_cast<size_t>(received) <= documentSize, "a part is no longer than the whole");
    std::vector<char> bytes(static_cast<size_t>(received) + 1);
    Require(source.Read(bytes.data(), 0, received) == received, "what came stays readable");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    const std::string_view contents(reinterpret_cast<const char*>(bytes), size);
    viewer::IsMimeDocument("mail", contents);
    try {
        const viewer::MimeDocument document = viewer::ReadMimeDocument(FileOf(contents));
        Require(!document.items.empty(), "a document has something in it");
        Require(document.items.size() <= kMostItems, "but not without end");
        for (const viewer::MimeItem& item : document.items) {
            if (const auto* const medium = std::get_if<viewer::MimeMedium>(&item))
                RequireMedium(*medium, size);
            else
                RequireParagraph(std::get<std::string>(item));
        }
    } catch (const viewer::SourceFailure& failure) {
        Require(failure.error != 0 && !failure.text.empty(), "a failure tells what it is");
    }
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    const std::string header = "From: a@example.org\r\nSubject: s\r\nMIME-Version: 1.0\r\n";
    const std::string gif = "Content-Type: image/gif; name=\"a.gif\"\r\n";
    const std::string documents[] = {
        header + "\r\nplain text\r\n\r\nof two paragraphs\r\n",
        header + "Content-Type: text/plain; charset=iso-8859-1\r\n"
                 "Content-Transfer-Encoding: quoted-printable\r\n\r\nf=FCr=\r\n dich\r\n",
        header +
            "Content-Type: multipart/mixed; boundary=xx\r\n\r\n--xx\r\n"
            "Content-Type: text/html\r\n\r\n<p>one &amp; <b>two</b><br>three\r\n--xx\r\n" +
            gif +
            "Content-Transfer-Encoding: base64\r\nContent-ID: <1>\r\n\r\nR0lGODlh\r\n--xx--\r\n",
        header +
            "Content-Type: multipart/alternative; boundary=\"y y\"\r\n\r\n--y y\r\n"
            "Content-Type: text/plain\r\n\r\nplain\r\n--y y\r\n"
            "Content-Type: multipart/related; boundary=z\r\n\r\n--z\r\n"
            "Content-Type: text/html\r\n\r\n<h1>html</h1>\r\n--z\r\n" +
            gif +
            "Content-Location: http://example.org/a.gif?x\r\n\r\nGIF89a\r\n--z--\r\n--y y--\r\n",
        "From a@example.org Mon Jan  1 00:00:00 2001\n" + header +
            "Content-Type: audio/mpeg\nContent-Transfer-Encoding: x-uuencode\n\n"
            "begin 644 a.mp3\n#0V%T\n`\nend\n",
        header + "Content-Type: message/rfc822\r\n\r\n" + header +
            "Content-Disposition: attachment; filename=\"../a.bin\"\r\n"
            "Content-Type: application/octet-stream\r\n\r\nbytes\r\n",
    };
    std::vector<FuzzInput> seeds;
    for (const std::string& document : documents)
        seeds.emplace_back(document.begin(), document.end());
    return seeds;
}
