// SPDX-License-Identifier: MIT
#include "tests/mutation/CodeText.h"

#include <algorithm>
#include <cctype>

namespace
{

class Blanker
{
public:
    explicit Blanker(const std::string& source) : text(source) {}

    std::string Blanked()
    {
        std::size_t at = 0;
        while (at < text.size())
            at = Step(at);
        BlankStaticAssertions();
        return text;
    }

private:
    // Blanks what begins at `at`, if it is no code, and tells where to go on.
    std::size_t Step(std::size_t at)
    {
        if (text.compare(at, 2, "//") == 0)
            return Blank(at, End("\n", at));
        if (text.compare(at, 2, "/*") == 0)
            return Blank(at, End("*/", at + 2) + 2);
        if (text[at] == '#')
            return Blank(at, EndOfDirective(at));
        if (text[at] == '"' || IsCharacterLiteral(at))
            return BlankLiteral(at);
        return at + 1;
    }

    // A quotation mark within a number separates digits.
    bool IsCharacterLiteral(std::size_t at) const
    {
        return text[at] == '\'' && (at == 0 || !IsNameCharacter(text[at - 1]));
    }

    std::size_t BlankLiteral(std::size_t at)
    {
        std::size_t end = at + 1;
        while (end < text.size() && text[end] != text[at])
            end += text[end] == '\\' ? 2 : 1;
        return Blank(at + 1, end) + 1;
    }

    std::size_t EndOfDirective(std::size_t at) const
    {
        std::size_t end = End("\n", at);
        while (end < text.size() && text[end - 1] == '\\')
            end = End("\n", end + 1);
        return end;
    }

    void BlankStaticAssertions()
    {
        const std::string name = "static_assert";
        for (std::size_t at = text.find(name); at < text.size(); at = text.find(name, at))
            Blank(at, End(";", at));
    }

    std::size_t End(const char* what, std::size_t from) const
    {
        return std::min(text.find(what, from), text.size());
    }

    std::size_t Blank(std::size_t from, std::size_t to)
    {
        to = std::min(to, text.size());
        for (std::size_t at = from; at < to; ++at)
            if (text[at] != '\n')
                text[at] = ' ';
        return to;
    }

    std::string text;
};

bool IsOneOf(char character, const char* characters)
{
    return std::string(characters).find(character) != std::string::npos;
}

} // namespace

std::string CodeOnly(const std::string& source)
{
    return Blanker(source).Blanked();
}

bool IsNameCharacter(char character)
{
    return std::isalnum(static_cast<unsigned char>(character)) || character == '_';
}

std::size_t ClosingBracket(const std::string& code, std::size_t open)
{
    int depth = 0;
    for (std::size_t at = open; at < code.size(); ++at) {
        if (IsOneOf(code[at], "([{"))
            ++depth;
        if (IsOneOf(code[at], ")]}") && --depth == 0)
            return at;
    }
    return code.size();
}
