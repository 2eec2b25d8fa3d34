// SPDX-License-Identifier: MIT
#include "viewer/InfoTable.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace viewer
{
namespace
{

enum Column { kName, kType, kPlugin, kBytes, kSize, kSeconds, kState, kColumns };
using Row = std::array<std::string, kColumns>;

bool IsNumber(size_t column)
{
    return column == kBytes || column == kSize || column == kSeconds;
}

std::string OrDash(const std::string& text)
{
    return text.empty() ? "-" : text;
}

std::string Seconds(double seconds)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f", seconds);
    return seconds > 0 ? text.data() : "-";
}

std::string State(const ObjectReport& object)
{
    if (object.error != 0) {
        return "error " + std::to_string(object.error);
    }
    return object.shown ? "ok" : "nothing shown";
}

Row Describe(const ObjectReport& object)
{
    const bool hasSize = object.width > 0 && object.height > 0;
    return {object.name,
            OrDash(object.type),
            OrDash(object.plugin),
            object.wholeBytes >= 0 ? std::to_string(object.wholeBytes) : "-",
            hasSize ? std::to_string(object.width) + "x" + std::to_string(object.height) : "-",
            Seconds(object.durationSeconds),
            State(object)};
}

// UTF-8 is assumed; bytes that continue a character take no place.
size_t Width(const std::string& text)
{
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string Line(const Row& row, const std::array<size_t, kColumns>& widths)
{
    std::string line;
    for (size_t column = 0; column < kColumns; ++column) {
        const std::string padding(widths[column] - Width(row[column]), ' ');
        line += IsNumber(column) ? padding + row[column] : row[column] + padding;
        line += "  ";
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

} // namespace

std::string DescribeObjects(const PageReport& report)
{
    std::vector<Row> rows = {{"NAME", "TYPE", "PLUG-IN", "BYTES", "SIZE", "SECONDS", "STATE"}};
    for (const ObjectReport& object : report.objects) {
        rows.push_back(Describe(object));
    }
    std::array<size_t, kColumns> widths{};
    for (const Row& row : rows) {
        for (size_t column = 0; column < kColumns; ++column) {
            widths[column] = std::max(widths[column], Width(row[column]));
        }
    }
    std::string table;
    for (const Row& row : rows) {
        table += Line(row, widths);
    }
    if (const size_t paragraphs = report.text.size(); paragraphs > 0) {
        table += "and " + std::to_string(paragraphs) +
                 (paragraphs == 1 ? " paragraph" : " paragraphs") + " of text\n";
    }
    return table;
}

} // namespace viewer
