// SPDX-License-Identifier: MIT
#include "tests/mutation/StatementMutants.h"

#include "tests/mutation/CodeText.h"

#include <array>
#include <cctype>
#include <optional>
#include <regex>

namespace
{

enum class Kind { Other, Call, Assignment, Guard };

// Without what is in brackets, which may have spaces and signs of its own.
std::string OutsideBrackets(const std::string& text)
{
    std::string outside;
    for (std::size_t at = 0; at < text.size(); ++at) {
        outside += text[at];
        if (std::string("([{").find(text[at]) == std::string::npos)
            continue;
        at = ClosingBracket(text, at);
        if (at < text.size())
            outside += text[at];
    }
    return outside;
}

// Of a statement without its semicolon and without spaces around it.
Kind KindOf(const std::string& statement)
{
    static const std::regex call(R"(\*?[A-Za-z_(][^\s=]*\))");
    static const std::regex assignment(R"(\*?[A-Za-z_(]\S* [-+*/%&|^<>]*= [^]*)");
    static const std::regex deletion(R"(delete [^]*)");
    static const std::regex guard(R"(const [A-Z][\w:]*(<.*>)? \w+\(\))");
    static const std::regex declared(R"([^]* = (default|delete|0))");
    const std::string text = OutsideBrackets(statement);
    if (std::regex_match(text, guard))
        return Kind::Guard;
    if (std::regex_match(text, call) || std::regex_match(text, deletion))
        return Kind::Call;
    const bool assigns = std::regex_match(text, assignment);
    return assigns && text.find("()") != 0 && !std::regex_match(text, declared) ? Kind::Assignment
                                                                                : Kind::Other;
}

struct Statement {
    std::size_t start;
    std::size_t end; // behind the semicolon
    Kind kind;
    bool guarded; // stands behind if, else, for or while without a block
};

class StatementScanner
{
public:
    StatementScanner(const std::string& text, const std::string& codeOfIt,
                     std::vector<Mutant>& found)
        : source(text), code(codeOfIt), mutants(found), levels{{'{', 0, {}}}
    {
    }

    void Scan()
    {
        for (std::size_t at = 0; at < code.size(); ++at) {
            switch (code[at]) {
            case '(':
            case '[':
            case '{':
                levels.push_back({code[at], at + 1, {}});
                break;
            case ')':
            case ']':
            case '}':
                Close(at);
                break;
            case ';':
                if (levels.back().bracket == '{')
                    Finish(at + 1);
                break;
            default:
                break;
            }
        }
    }

private:
    struct Level {
        char bracket;
        std::size_t start; // of the statement that is being read
        std::optional<Statement> before;
    };

    void Close(std::size_t at)
    {
        if (levels.size() > 1)
            levels.pop_back();
        if (code[at] == '}' && levels.back().bracket == '{')
            levels.back() = {'{', at + 1, {}};
    }

    void Finish(std::size_t end)
    {
        Level& level = levels.back();
        Statement statement = Read(level.start, end);
        if (statement.kind != Kind::Other)
            mutants.push_back({statement.start, end - statement.start, ";"});
        if (level.before)
            AddExchange(*level.before, statement);
        level.start = end;
        level.before = statement;
    }

    void AddExchange(const Statement& first, const Statement& second)
    {
        const auto movable = [](const Statement& statement) {
            return !statement.guarded &&
                   (statement.kind == Kind::Call || statement.kind == Kind::Assignment);
        };
        const bool someCall = first.kind == Kind::Call || second.kind == Kind::Call;
        if (!movable(first) || !movable(second) || !someCall)
            return;
        const std::string one = source.substr(first.start, first.end - first.start);
        const std::string other = source.substr(second.start, second.end - second.start);
        const std::string between = source.substr(first.end, second.start - first.end);
        if (one != other)
            mutants.push_back({first.start, second.end - first.start, other + between + one});
    }

    Statement Read(std::size_t start, std::size_t end) const
    {
        Statement statement{SkipSpace(start), end, Kind::Other, false};
        while (SkipPrefix(statement)) {
        }
        if (statement.start < end)
            statement.kind = KindOf(code.substr(statement.start, end - 1 - statement.start));
        return statement;
    }

    // Past one label or one head of a controlled statement.
    bool SkipPrefix(Statement& statement) const
    {
        static constexpr std::array kHeads = {"if (", "if constexpr (", "for (", "while ("};
        for (const char* const head : kHeads)
            if (StartsWith(statement, head)) {
                const std::size_t open = code.find('(', statement.start);
                return MoveOn(statement, ClosingBracket(code, open) + 1, true);
            }
        if (StartsWith(statement, "else"))
            return MoveOn(statement, statement.start + 4, true);
        for (const char* const label : {"case ", "default:", "public:", "private:", "protected:"})
            if (StartsWith(statement, label))
                return MoveOn(statement, code.find(':', statement.start) + 1, statement.guarded);
        return false;
    }

    bool StartsWith(const Statement& statement, const std::string& text) const
    {
        return code.compare(statement.start, text.size(), text) == 0;
    }

    bool MoveOn(Statement& statement, std::size_t to, bool guarded) const
    {
        statement.start = std::min(SkipSpace(to), statement.end);
        statement.guarded = guarded;
        return true;
    }

    std::size_t SkipSpace(std::size_t at) const
    {
        while (at < code.size() && std::isspace(static_cast<unsigned char>(code[at])))
            ++at;
        return at;
    }

    const std::string& source;
    const std::string& code;
    std::vector<Mutant>& mutants;
    std::vector<Level> levels;
};

} // namespace

void AddStatementMutants(const std::string& source, const std::string& code,
                         std::vector<Mutant>& mutants)
{
    StatementScanner(source, code, mutants).Scan();
}
