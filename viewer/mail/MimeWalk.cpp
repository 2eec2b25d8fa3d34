// SPDX-License-Identifier: MIT
#include "viewer/mail/MimeWalk.h"

#include "viewer/DeclaredType.h"
#include "viewer/mail/GMimePointer.h"
#include "viewer/mail/MimePartSource.h"
#include "viewer/mail/PlainText.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <string_view>

namespace viewer
{
namespace
{

constexpr int kMostParts = 1000;
constexpr int kDeepestNesting = 32;
constexpr size_t kMostText = 1 << 20; // of the whole document

std::string TextOrNothing(const char* text)
{
    return text == nullptr ? "" : text;
}

// A file's name that a document gives must not lead anywhere.
std::string LastOfPath(const std::string& name)
{
    const size_t slash = name.find_last_of("/\\");
    return slash == std::string::npos ? name : name.substr(slash + 1);
}

bool IsUtf8(const std::string& text)
{
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

// Saved pages often name their characters in themselves, and not in their header fields.
std::string Utf8OfHtml(std::string html)
{
    const std::string charset = IsUtf8(html) ? "" : CharsetOfHtml(html);
    gsize length = 0;
    const GMimeText converted(charset.empty()
                                  ? nullptr
                                  : g_convert(html.data(), static_cast<gssize>(html.size()),
                                              "utf-8", charset.c_str(), nullptr, &length, nullptr));
    return converted == nullptr ? html : std::string(converted.get(), length);
}

bool IsOfType(GMimeObject& object, const char* type, const char* subtype)
{
    GMimeContentType* const declared = g_mime_object_get_content_type(&object);
    return declared != nullptr && g_mime_content_type_is_type(declared, type, subtype) != FALSE;
}

std::string TypeOf(GMimeObject& object)
{
    GMimeContentType* const declared = g_mime_object_get_content_type(&object);
    const GMimeText type(declared == nullptr ? nullptr
                                             : g_mime_content_type_get_mime_type(declared));
    return ReadDeclaredType(TextOrNothing(type.get()));
}

// Whether a header field has the value behind an equals sign as it is, so not in quotes.
bool HasUnquoted(GMimePart& part, const char* field, const std::string& value)
{
    GMimeHeader* const header =
        g_mime_header_list_get_header(g_mime_object_get_header_list(GMIME_OBJECT(&part)), field);
    const std::string raw =
        header == nullptr ? "" : TextOrNothing(g_mime_header_get_raw_value(header));
    const size_t at = raw.find(value);
    const size_t before = at == std::string::npos || at == 0 ? std::string::npos
                                                             : raw.find_last_not_of(" \t", at - 1);
    return before != std::string::npos && raw[before] == '=';
}

// A backslash before a character that could not stand there without it; before others it is one
// between folders.
std::string WithoutEscapes(const std::string& value)
{
    constexpr std::string_view kSpecial = "()<>@,;:\\\"/[]?= ";
    std::string text;
    for (size_t i = 0; i < value.size(); ++i) {
        const bool isEscape = value[i] == '\\' && i + 1 < value.size() &&
                              kSpecial.find(value[i + 1]) != std::string_view::npos;
        i += isEscape ? 1 : 0;
        text += value[i];
    }
    return text;
}

// GMime takes the escapes out of what stands in quotes only.
std::string DeclaredFileNameOf(GMimePart& part)
{
    const std::string name = TextOrNothing(g_mime_part_get_filename(&part));
    const bool isEscaped =
        name.find('\\') != std::string::npos &&
        (HasUnquoted(part, "Content-Disposition", name) || HasUnquoted(part, "Content-Type", name));
    return isEscaped ? WithoutEscapes(name) : name;
}

// The name it is to be saved by, else the end of the place it came from.
std::string FileNameOf(GMimePart& part)
{
    const std::string name = DeclaredFileNameOf(part);
    std::string location = TextOrNothing(g_mime_part_get_content_location(&part));
    location = location.substr(0, location.find_first_of("?#"));
    return LastOfPath(name.empty() ? location : name);
}

// GMime takes the line before a boundary to end as the boundary's own line does. Where they end
// differently, a byte would be missing from the content or too many in it.
gint64 EndOfContent(GMimeStream& content)
{
    const gint64 end = content.bound_end;
    if (end < content.bound_start) {
        return end; // it goes to the end of the document
    }
    const gint64 from = std::max(content.bound_start, end - 1);
    std::array<char, 5> bytes{};
    const GMimePointer<GMimeStream> around(g_mime_stream_substream(&content, from, end + 4));
    const ssize_t count =
        g_mime_stream_read(around.get(), bytes.data(), static_cast<size_t>(end + 4 - from));
    std::string_view text(bytes.data(), static_cast<size_t>(std::max<ssize_t>(count, 0)));
    if (from < end && text.starts_with("\r\n--")) {
        return end - 1;
    }
    text.remove_prefix(std::min(text.size(), static_cast<size_t>(end - from)));
    const bool isOneMissing = text.size() == 4 && text[0] != '\r' && text.substr(1) == "\n--";
    return isOneMissing ? end + 1 : end;
}

// A stream of its own over the part's bytes as they were before they were encoded; null for a part
// without content.
GMimePointer<GMimeStream> DecodedStream(GMimePart& part)
{
    GMimeDataWrapper* const content = g_mime_part_get_content(&part);
    GMimeStream* const encoded =
        content == nullptr ? nullptr : g_mime_data_wrapper_get_stream(content);
    if (encoded == nullptr) {
        return nullptr;
    }
    const GMimePointer<GMimeStream> own(
        g_mime_stream_substream(encoded, encoded->bound_start, EndOfContent(*encoded)));
    GMimePointer<GMimeStream> decoded(g_mime_stream_filter_new(own.get()));
    const GMimePointer<GMimeFilter> decoder(
        g_mime_filter_basic_new(g_mime_data_wrapper_get_encoding(content), FALSE));
    g_mime_stream_filter_add(GMIME_STREAM_FILTER(decoded.get()), decoder.get());
    return decoded;
}

class Walk
{
public:
    MimeDocument Through(GMimeMessage& message)
    {
        TakeMessage(message, 0);
        TellWhatIsMissing();
        return std::move(document_);
    }

private:
    void TakeMessage(GMimeMessage& message, int depth)
    {
        if (GMimeObject* const content = g_mime_message_get_mime_part(&message)) {
            Take(*content, depth, false);
        }
    }

    void Take(GMimeObject& object, int depth, bool hasPlainText)
    {
        if (++parts_ > kMostParts || depth > kDeepestNesting) {
            isTooMuch_ = true;
        } else if (GMIME_IS_MULTIPART(&object)) {
            TakeMultipart(*GMIME_MULTIPART(&object), depth, hasPlainText);
        } else if (GMIME_IS_MESSAGE_PART(&object)) {
            if (GMimeMessage* const inner =
                    g_mime_message_part_get_message(GMIME_MESSAGE_PART(&object))) {
                TakeMessage(*inner, depth + 1);
            }
        } else if (GMIME_IS_PART(&object)) {
            TakePart(*GMIME_PART(&object), hasPlainText);
        }
    }

    // Of alternatives the plain text is read; media may belong to any of them.
    void TakeMultipart(GMimeMultipart& multipart, int depth, bool hasPlainText)
    {
        const int count = std::min(g_mime_multipart_get_count(&multipart), kMostParts + 1);
        bool isPlainBeside = hasPlainText;
        if (IsOfType(*GMIME_OBJECT(&multipart), "multipart", "alternative")) {
            for (int i = 0; i < count; ++i) {
                isPlainBeside = isPlainBeside || IsOfType(*g_mime_multipart_get_part(&multipart, i),
                                                          "text", "plain");
            }
        }
        for (int i = 0; i < count; ++i) {
            Take(*g_mime_multipart_get_part(&multipart, i), depth + 1, isPlainBeside);
        }
    }

    void TakePart(GMimePart& part, bool hasPlainText)
    {
        GMimeObject& object = *GMIME_OBJECT(&part);
        const std::string type = TypeOf(object);
        const std::string fileName = FileNameOf(part);
        if (IsOfType(object, "text", "html")) {
            if (!hasPlainText) {
                TakeText(part, true);
            }
        } else if (IsOfType(object, "text", "plain")) {
            TakeText(part, false);
        } else if (IsMedium(type, fileName)) {
            TakeMedium(part, type, fileName);
        } else if (g_mime_part_is_attachment(&part) != FALSE) {
            Tell((fileName.empty() ? "an attachment" : fileName) + " (" +
                 (type.empty() ? "unknown type" : type) + ") is neither text nor a medium");
        }
    }

    // An undeclared type shows in the bytes or in the name; style sheets and the like are not
    // objects for it.
    static bool IsMedium(const std::string& type, const std::string& fileName)
    {
        return type.starts_with("image/") || type.starts_with("video/") ||
               type.starts_with("audio/") ||
               (type.empty() && std::filesystem::path(fileName).has_extension());
    }

    void TakeMedium(GMimePart& part, const std::string& type, const std::string& fileName)
    {
        const std::string id = TextOrNothing(g_mime_object_get_content_id(GMIME_OBJECT(&part)));
        if (!id.empty() && !contentIds_.insert(id).second) {
            return; // the same again
        }
        GMimePointer<GMimeStream> stream = DecodedStream(part);
        if (stream == nullptr) {
            Tell((fileName.empty() ? type : fileName) + " has no content");
            return;
        }
        document_.items.emplace_back(
            MimeMedium{fileName, std::make_unique<MimePartSource>(std::move(stream), type)});
    }

    void TakeText(GMimePart& part, bool isHtml)
    {
        const std::string text = ReadText(part, isHtml);
        for (std::string& paragraph : ParagraphsOf(isHtml ? TextOfHtml(text) : text)) {
            document_.items.emplace_back(std::move(paragraph));
        }
    }

    // UTF-8, as far as the limit allows.
    std::string ReadText(GMimePart& part, bool isHtml)
    {
        const GMimePointer<GMimeStream> stream = DecodedStream(part);
        if (stream == nullptr) {
            return "";
        }
        const char* const charset =
            g_mime_object_get_content_type_parameter(GMIME_OBJECT(&part), "charset");
        const GMimePointer<GMimeFilter> converter(
            charset == nullptr ? nullptr : g_mime_filter_charset_new(charset, "utf-8"));
        if (converter != nullptr) {
            g_mime_stream_filter_add(GMIME_STREAM_FILTER(stream.get()), converter.get());
        }
        std::string text = ReadUpToLimit(*stream);
        if (isHtml && charset == nullptr) {
            text = Utf8OfHtml(std::move(text));
        }
        const GMimeText valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
        return valid.get();
    }

    std::string ReadUpToLimit(GMimeStream& stream)
    {
        std::string text;
        std::array<char, 4096> block;
        ssize_t got = 0;
        while (textLength_ < kMostText &&
               (got = g_mime_stream_read(&stream, block.data(), block.size())) > 0) {
            text.append(block.data(), static_cast<size_t>(got));
            textLength_ += static_cast<size_t>(got);
        }
        isTooMuch_ = isTooMuch_ || textLength_ >= kMostText;
        return text;
    }

    void Tell(const std::string& text) { document_.messages.push_back(text); }

    void TellWhatIsMissing()
    {
        if (isTooMuch_) {
            Tell("the document has more parts or text than are shown");
        }
    }

    MimeDocument document_;
    std::set<std::string> contentIds_;
    int parts_ = 0;
    size_t textLength_ = 0;
    bool isTooMuch_ = false;
};

} // namespace

MimeDocument WalkThrough(GMimeMessage& message)
{
    return Walk().Through(message);
}

} // namespace viewer
