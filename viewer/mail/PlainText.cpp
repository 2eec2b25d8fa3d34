// SPDX-License-Identifier: MIT
#include "viewer/mail/PlainText.h"

#include "viewer/mail/HtmlCharacters.h"

#include <algorithm>

namespace viewer
{
namespace
{

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f';
}

bool IsLetterOrDigit(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

std::string SmallLetters(std::string_view text)
{
    std::string small(text);
    for (char& c : small) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return small;
}

template <size_t count>
bool IsOneOf(const std::string& name, const std::string_view (&names)[count])
{
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

constexpr std::string_view kParagraphs[] = {
    "address", "article", "blockquote", "body", "center", "dd",     "div", "dl",      "dt",
    "footer",  "form",    "h1",         "h2",   "h3",     "h4",     "h5",  "h6",      "header",
    "hr",      "li",      "main",       "nav",  "ol",     "p",      "pre", "section", "table",
    "td",      "th",      "tr",         "ul",   "title",  "caption"};
constexpr std::string_view kWithoutText[] = {"script", "style", "title", "template"};

// Reads HTML from its start to its end once, whatever is wrong with it.
class HtmlReader
{
public:
    explicit HtmlReader(std::string_view html) : html_(html) {}

    std::string Read()
    {
        while (at_ < html_.size()) {
            switch (html_[at_]) {
            case '<':
                ReadMarkup();
                break;
            case '&':
                ReadCharacter();
                break;
            default:
                Add(html_[at_++]);
            }
        }
        return text_;
    }

private:
    void ReadMarkup()
    {
        const size_t former = at_;
        if (html_.substr(at_).starts_with("<!--")) {
            SkipBehind("-->");
            return;
        }
        const bool isEnd = html_.substr(at_).starts_with("</");
        const std::string name = NameAt(at_ + (isEnd ? 2 : 1));
        if (name.empty() && !isEnd && !html_.substr(at_).starts_with("<!") &&
            !html_.substr(at_).starts_with("<?")) {
            Add(html_[at_++]); // a sign of its own, as in "a < b"
            return;
        }
        SkipTag();
        if (!isEnd && IsOneOf(name, kWithoutText)) {
            SkipElement(name);
        } else if (name == "br") {
            text_ += '\n';
            owesBlank_ = false;
        } else if (IsOneOf(name, kParagraphs)) {
            EndParagraph();
        }
        at_ = std::max(at_, former + 1);
    }

    std::string NameAt(size_t at) const
    {
        const std::string start = SmallLetters(html_.substr(std::min(at, html_.size()), 16));
        const auto end = std::find_if_not(start.begin(), start.end(), IsLetterOrDigit);
        return {start.begin(), end};
    }

    // To behind the tag's end. A ">" in quotes is none.
    void SkipTag()
    {
        char quote = '\0';
        for (; at_ < html_.size(); ++at_) {
            const char c = html_[at_];
            if (quote != '\0') {
                quote = c == quote ? '\0' : quote;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '>') {
                ++at_;
                return;
            }
        }
    }

    void SkipBehind(std::string_view end)
    {
        const size_t found = html_.find(end, at_);
        at_ = found == std::string_view::npos ? html_.size() : found + end.size();
    }

    void SkipElement(const std::string& name)
    {
        while (at_ < html_.size()) {
            at_ = std::min(html_.find("</", at_), html_.size());
            if (NameAt(at_ + 2) == name) {
                SkipTag();
                return;
            }
            at_ += at_ < html_.size() ? 2 : 0;
        }
    }

    void ReadCharacter()
    {
        const NamedCharacter character = ReadNamedCharacter(html_.substr(at_));
        at_ += character.length;
        PayBlank();
        text_ += character.text;
    }

    void Add(char c)
    {
        if (IsBlank(c)) {
            owesBlank_ = true;
        } else {
            PayBlank();
            text_ += c;
        }
    }

    // However much white space there is, it shows as one blank, and at a line's start as none.
    void PayBlank()
    {
        if (owesBlank_ && !text_.empty() && text_.back() != '\n') {
            text_ += ' ';
        }
        owesBlank_ = false;
    }

    void EndParagraph()
    {
        owesBlank_ = false;
        if (!text_.empty() && !text_.ends_with("\n\n")) {
            text_ += "\n\n";
        }
    }

    std::string_view html_;
    size_t at_ = 0;
    std::string text_;
    bool owesBlank_ = false;
};

std::string WithoutControls(std::string_view line)
{
    std::string kept;
    for (const char c : line) {
        if (c == '\t') {
            kept += ' ';
        } else if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F) {
            kept += c;
        }
    }
    kept.erase(kept.find_last_not_of(' ') + 1);
    return kept;
}

} // namespace

std::vector<std::string> ParagraphsOf(std::string_view text)
{
    std::vector<std::string> paragraphs;
    bool isInside = false;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string line = WithoutControls(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.empty() && isInside) {
            paragraphs.back() += '\n' + line;
        } else if (!line.empty()) {
            paragraphs.push_back(line);
        }
        isInside = !line.empty();
    }
    return paragraphs;
}

std::string TextOfHtml(std::string_view html)
{
    return HtmlReader(html).Read();
}

std::string CharsetOfHtml(std::string_view html)
{
    constexpr size_t kNearStart = 1024;
    constexpr std::string_view kName = "charset=";
    const std::string start = SmallLetters(html.substr(0, kNearStart));
    const size_t named = start.find(kName);
    if (named == std::string::npos) {
        return "";
    }
    const size_t quotes = start[std::min(named + kName.size(), start.size() - 1)] == '"' ? 1 : 0;
    const size_t begin = std::min(named + kName.size() + quotes, start.size());
    return start.substr(begin, start.find_first_of("\"' ;/>", begin) - begin);
}

} // namespace viewer
