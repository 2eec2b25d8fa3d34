// SPDX-License-Identifier: MIT
//
// mutants FILE: a line for each mutant of a source file: its number, its line and what it changes,
// apart by tabs. mutants FILE NUMBER: the file with that mutant.
#include "tests/mutation/Mutants.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

namespace
{

std::string Contents(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void List(const std::string& source, const std::vector<Mutant>& mutants)
{
    for (std::size_t number = 0; number < mutants.size(); ++number)
        std::cout << number << '\t' << LineOf(source, mutants[number].offset) << '\t'
                  << Description(source, mutants[number]) << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || argc > 3) {
        std::cerr << "usage: mutants FILE [NUMBER]\n";
        return 2;
    }
    const std::string source = Contents(argv[1]);
    const std::vector<Mutant> mutants = FindMutants(source);
    if (argc == 2) {
        List(source, mutants);
        return 0;
    }
    const auto number = static_cast<std::size_t>(std::strtoul(argv[2], nullptr, 10));
    if (number >= mutants.size()) {
        std::cerr << argv[1] << " has no mutant " << argv[2] << '\n';
        return 1;
    }
    std::cout << WithMutant(source, mutants[number]);
    return 0;
}
