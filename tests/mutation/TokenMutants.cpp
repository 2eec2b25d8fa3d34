// SPDX-License-Identifier: MIT
#include "tests/mutation/TokenMutants.h"

#include "tests/mutation/CodeText.h"

#include <cctype>
#include <cstdint>
#include <cstdio>

namespace
{

struct Operator {
    const char* text;
    std::vector<const char*> others; // none: just passed over
    bool spaced = false;             // an operator only with white space on both sides
};

// The longest first. Spaces tell a comparison from a template's brackets, a sum from a sign, and a
// logical operation from a reference.
const std::vector<Operator>& Operators()
{
    static const std::vector<Operator> operators = {
        {"<<=", {">>="}},
        {">>=", {"<<="}},
        {"->", {}},
        {"++", {"--"}},
        {"--", {"++"}},
        {"+=", {"-="}},
        {"-=", {"+="}},
        {"*=", {"/="}},
        {"|=", {"&="}},
        {"&=", {"|="}},
        {"==", {"!="}},
        {"!=", {"=="}},
        {"<=", {"<", ">"}},
        {">=", {">", "<"}},
        {"&&", {"||"}, true},
        {"||", {"&&"}, true},
        {"<<", {">>"}, true},
        {">>", {"<<"}, true},
        {"<", {"<=", ">="}, true},
        {">", {">=", "<="}, true},
        {"+", {"-"}, true},
        {"-", {"+"}, true},
        {"*", {"/"}, true},
        {"/", {"*"}, true},
        {"%", {"*"}, true},
        {"&", {"|"}, true},
        {"|", {"&"}, true},
        {"^", {"|"}, true},
    };
    return operators;
}

class TokenScanner
{
public:
    TokenScanner(const std::string& text, const std::string& codeOfIt, std::vector<Mutant>& found)
        : source(text), code(codeOfIt), mutants(found)
    {
    }

    void Scan()
    {
        std::size_t at = 0;
        while (at < code.size()) {
            if (std::isdigit(static_cast<unsigned char>(code[at])))
                at = Number(at);
            else if (IsNameCharacter(code[at]))
                at = Word(at);
            else
                at = OperatorAt(at);
        }
    }

private:
    std::size_t EndOfName(std::size_t at) const
    {
        while (at < code.size() && (IsNameCharacter(code[at]) || code[at] == '\''))
            ++at;
        return at;
    }

    std::size_t Word(std::size_t at)
    {
        const std::size_t end = EndOfName(at);
        const std::string word = code.substr(at, end - at);
        if (word == "true")
            mutants.push_back({at, word.size(), "false"});
        if (word == "false")
            mutants.push_back({at, word.size(), "true"});
        if ((word == "if" || word == "while") && code.compare(end, 2, " (") == 0)
            Condition(end + 1);
        return end;
    }

    // One that declares something cannot be negated.
    void Condition(std::size_t open)
    {
        const std::size_t length = ClosingBracket(code, open) - open - 1;
        const std::string condition = code.substr(open + 1, length);
        if (condition.find(" = ") != std::string::npos)
            return;
        mutants.push_back({open + 1, length, "!(" + source.substr(open + 1, length) + ")"});
    }

    std::size_t Number(std::size_t at)
    {
        std::size_t end = EndOfName(at);
        if (end < code.size() && code[end] == '.')
            return EndOfName(end + 1); // a fraction
        const std::string text = code.substr(at, end - at);
        const std::size_t suffix = text.find_first_of("uUlL");
        const std::string digits = text.substr(0, suffix);
        const std::string rest = suffix == std::string::npos ? "" : text.substr(suffix);
        const bool hex = digits.size() > 1 && (digits[1] == 'x' || digits[1] == 'X');
        if (digits.find('\'') != std::string::npos || (IsInNumberRow(at) && !IsFirstInLine(at)))
            return end;
        const auto value = static_cast<std::int64_t>(std::stoull(digits, nullptr, 0));
        for (const std::int64_t other : {value + 1, value - 1})
            mutants.push_back({at, text.size(), NumberText(other, hex) + rest});
        return end;
    }

    static std::string NumberText(std::int64_t value, bool hex)
    {
        if (!hex || value < 0)
            return std::to_string(value);
        char text[24];
        std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
        return text;
    }

    // A line of a table, of which one number stands for all.
    bool IsInNumberRow(std::size_t at) const
    {
        const std::string line = LineAt(at);
        return line.find_first_not_of(" \t0123456789abcdefABCDEFxX,'\"") == std::string::npos;
    }

    bool IsFirstInLine(std::size_t at) const
    {
        return code.find_first_not_of(" \t", LineStart(at)) == at;
    }

    std::size_t LineStart(std::size_t at) const
    {
        const std::size_t before = code.rfind('\n', at);
        return before == std::string::npos ? 0 : before + 1;
    }

    std::string LineAt(std::size_t at) const
    {
        const std::size_t start = LineStart(at);
        return code.substr(start, code.find('\n', at) - start);
    }

    std::size_t OperatorAt(std::size_t at)
    {
        for (const Operator& candidate : Operators()) {
            const std::string text = candidate.text;
            if (code.compare(at, text.size(), text) != 0)
                continue;
            if (!candidate.spaced || IsSpaced(at, text.size()))
                for (const char* other : candidate.others)
                    mutants.push_back({at, text.size(), other});
            return at + text.size();
        }
        return at + 1;
    }

    bool IsSpaced(std::size_t at, std::size_t length) const
    {
        const auto isSpace = [this](std::size_t place) {
            return place < code.size() && std::isspace(static_cast<unsigned char>(code[place]));
        };
        return at > 0 && isSpace(at - 1) && isSpace(at + length);
    }

    const std::string& source;
    const std::string& code;
    std::vector<Mutant>& mutants;
};

} // namespace

void AddTokenMutants(const std::string& source, const std::string& code,
                     std::vector<Mutant>& mutants)
{
    TokenScanner(source, code, mutants).Scan();
}
