// SPDX-License-Identifier: MIT
#include "tests/mutation/Mutants.h"

#include "tests/mutation/CodeText.h"
#include "tests/mutation/StatementMutants.h"
#include "tests/mutation/TokenMutants.h"

#include <algorithm>
#include <cctype>

namespace
{

std::string OnOneLine(const std::string& text)
{
    std::string line;
    for (const char character : text) {
        const bool space = std::isspace(static_cast<unsigned char>(character)) != 0;
        if (!space)
            line += character;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    return line;
}

} // namespace

std::vector<Mutant> FindMutants(const std::string& source)
{
    const std::string code = CodeOnly(source);
    std::vector<Mutant> mutants;
    AddTokenMutants(source, code, mutants);
    AddStatementMutants(source, code, mutants);
    std::stable_sort(mutants.begin(), mutants.end(),
                     [](const Mutant& a, const Mutant& b) { return a.offset < b.offset; });
    return mutants;
}

std::string WithMutant(const std::string& source, const Mutant& mutant)
{
    std::string changed = source;
    return changed.replace(mutant.offset, mutant.length, mutant.replacement);
}

std::size_t LineOf(const std::string& source, std::size_t offset)
{
    const auto end = source.begin() + static_cast<std::ptrdiff_t>(offset);
    return 1 + static_cast<std::size_t>(std::count(source.begin(), end, '\n'));
}

std::string Description(const std::string& source, const Mutant& mutant)
{
    const std::size_t before = source.rfind('\n', mutant.offset);
    const std::size_t start = before == std::string::npos ? 0 : before + 1;
    const std::size_t end =
        std::min(source.find('\n', mutant.offset + mutant.length), source.size());
    const std::string changed =
        source.substr(start, mutant.offset - start) + mutant.replacement +
        source.substr(mutant.offset + mutant.length, end - mutant.offset - mutant.length);
    return OnOneLine(source.substr(start, end - start)) + "  =>  " + OnOneLine(changed);
}
