// SPDX-License-Identifier: MIT
#include "viewer/MimeDocument.h"

#include "viewer/ViewerPart.h"
#include "viewer/mail/MailPart.h"

#include <algorithm>
#include <filesystem>
#include <strings.h>

namespace viewer
{
namespace
{

constexpr const char* kExtensions[] = {".eml", ".mht", ".mhtml"};
constexpr std::string_view kMailboxLine = "From ";

bool HasDocumentExtension(const std::string& fileName)
{
    const std::string extension = std::filesystem::path(fileName).extension().string();
    return std::any_of(std::begin(kExtensions), std::end(kExtensions),
                       [&](const char* each) { return strcasecmp(each, extension.c_str()) == 0; });
}

std::string_view TakeLine(std::string_view& text)
{
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

// The length of a field's name before its colon, 0 if the line is no field.
size_t FieldNameLength(std::string_view line)
{
    const size_t colon = line.find(':');
    const auto isOfName = [](char c) { return c > ' ' && c < 0x7F; };
    const bool isField =
        colon != std::string_view::npos &&
        std::all_of(line.begin(), line.begin() + static_cast<long>(colon), isOfName);
    return isField ? colon : 0;
}

bool Is(std::string_view name, std::string_view wanted)
{
    return name.size() == wanted.size() &&
           strncasecmp(name.data(), wanted.data(), wanted.size()) == 0;
}

// Whether it begins with header fields, among them one that only MIME documents have.
bool StartsWithHeader(std::string_view start)
{
    if (start.starts_with(kMailboxLine)) {
        TakeLine(start);
    }
    bool isMime = false;
    bool isFirst = true;
    while (!start.empty()) {
        const std::string_view line = TakeLine(start);
        const bool isContinued = !line.empty() && (line[0] == ' ' || line[0] == '\t');
        const size_t name = FieldNameLength(line);
        if (line.empty() || start.empty()) {
            break; // the header's end, or that of what is known of it
        }
        if (name == 0 && (isFirst || !isContinued)) {
            return false;
        }
        isMime = isMime || Is(line.substr(0, name), "MIME-Version") ||
                 Is(line.substr(0, name), "Content-Type");
        isFirst = false;
    }
    return isMime;
}

} // namespace

bool IsMimeDocument(const std::string& fileName, std::string_view start)
{
    return HasDocumentExtension(fileName) || StartsWithHeader(start);
}

bool IsMimeDocumentType(const std::string& mimeType)
{
    return mimeType == "message/rfc822" || mimeType.starts_with("multipart/");
}

MimeDocument ReadMimeDocument(FileDescriptor file, const std::string& contentType)
{
    static const auto read = ViewerPart("VornMail").Find<decltype(VornReadMail)>("VornReadMail");
    MimeDocument document;
    read(file, contentType, document);
    return document;
}

} // namespace viewer
