// SPDX-License-Identifier: MIT
//
// bench_processes NAME RUNS GATE... -- COMMAND... -- COMMAND...
//
// Runs two commands in turn and prints the medians of what they took and the first one's ratio to
// the second. What a GATE names must not have a greater ratio than it says: cpu<=1.15, memory<=1,
// wall<=1. Exit status 1 if a gate is missed, 2 if a command failed.
#include "bench/Command.h"
#include "bench/Medians.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace
{

struct Quantity {
    const char* key;
    const char* title;
    const char* unit;
    double CommandUsage::*value;
    double scale; // from the value to the unit
};

constexpr Quantity kQuantities[] = {
    {"cpu", "processor", "ms", &CommandUsage::processorSeconds, 1000},
    {"memory", "peak memory", "MiB", &CommandUsage::peakMebibytes, 1},
    {"wall", "start to end", "ms", &CommandUsage::wallSeconds, 1000}};

struct Gate {
    std::string key;
    double most = 0;
};

struct Comparison {
    std::string name;
    int runs = 0;
    std::vector<Gate> gates;
    Command ours;
    Command theirs;
};

double Median(const std::vector<CommandUsage>& usages, const Quantity& quantity)
{
    std::vector<double> values;
    values.reserve(usages.size());
    for (const CommandUsage& usage : usages) {
        values.push_back(usage.*quantity.value * quantity.scale);
    }
    return MedianOf(values);
}

// Whether the gate of that quantity holds, if there is one.
bool Judge(const Comparison& comparison, const char* key, double ratio)
{
    bool holds = true;
    for (const Gate& gate : comparison.gates) {
        if (gate.key == key) {
            holds = ratio <= gate.most;
            std::printf("   gate <= %.2f  %s", gate.most, holds ? "ok" : "MISSED");
        }
    }
    std::printf("\n");
    return holds;
}

bool Compare(const Comparison& comparison)
{
    std::vector<CommandUsage> ours;
    std::vector<CommandUsage> theirs;
    for (int run = 0; run < comparison.runs; ++run) {
        ours.push_back(RunCommand(comparison.ours));
        theirs.push_back(RunCommand(comparison.theirs));
    }
    bool holds = true;
    for (const Quantity& quantity : kQuantities) {
        const double our = Median(ours, quantity);
        const double their = Median(theirs, quantity);
        std::printf("%-34s %-13s %8.1f %-4s against %8.1f %-4s ratio %5.2f",
                    comparison.name.c_str(), quantity.title, our, quantity.unit, their,
                    quantity.unit, our / their);
        holds = Judge(comparison, quantity.key, our / their) && holds;
    }
    return holds;
}

Gate ReadGate(const std::string& text)
{
    const size_t sign = text.find("<=");
    for (const Quantity& quantity : kQuantities) {
        if (sign != std::string::npos && text.substr(0, sign) == quantity.key) {
            return {quantity.key, std::stod(text.substr(sign + 2))};
        }
    }
    throw std::runtime_error(text + " is not a gate");
}

Comparison ReadArguments(int argc, char** argv)
{
    if (argc < 6) {
        throw std::runtime_error("usage: NAME RUNS GATE... -- COMMAND... -- COMMAND...");
    }
    Comparison comparison{argv[1], std::max(1, std::atoi(argv[2])), {}, {}, {}};
    char** at = argv + 3;
    while (*at != nullptr && std::string(*at) != "--") {
        comparison.gates.push_back(ReadGate(*at++));
    }
    at += *at != nullptr ? 1 : 0;
    comparison.ours = TakeCommand(at);
    comparison.theirs = TakeCommand(at);
    return comparison;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Compare(ReadArguments(argc, argv)) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench_processes: %s\n", failure.what());
        return 2;
    }
}
