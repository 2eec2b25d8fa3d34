// SPDX-License-Identifier: MIT
#include "viewer/window/KeysPanel.h"

#include "viewer/text/TextPainter.h"

#include <algorithm>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

struct Line {
    const char* key;
    const char* meaning;
};

constexpr Line kLines[] = {
    {"Tab", "the next object (Shift: the one before)"},
    {"Space", "play or pause"},
    {"\u2190 \u2192", "one picture back or on"},
    {"Shift, Ctrl + \u2190 \u2192", "5 seconds, a minute back or on"},
    {"\u2191 \u2193", "volume; scroll where nothing has the focus"},
    {"Page Up, Page Down", "scroll (also Home, End and the wheel)"},
    {"+  \u2212  0", "enlarge, reduce, own size or as large as fits"},
    {"Double click, Enter", "full screen"},
    {"Esc", "leave full screen, let the focus go"},
    {"S", "save the object's picture"},
    {"P", "save a picture of the page"},
    {"F1", "this list"},
    {"Q", "quit"},
};
constexpr const char* kHeading = "Keys";
constexpr SInt32 kGap = 16; // between the columns
constexpr SInt32 kEdge = 4; // left free of the window
constexpr Ink kPaper = {0xFD, 0xFD, 0xFE};
constexpr Ink kEdgeInk = {0x9A, 0xA4, 0xB2};
constexpr Ink kKeyInk = {0x33, 0x5E, 0x9A};
constexpr Ink kTextInk = {0x2B, 0x30, 0x38};

struct Writing {
    int height;
    SInt32 line;
    SInt32 around;
};

// From the one that is good to read to the one that needs little room.
constexpr Writing kWritings[] = {{13, 22, 24}, {13, 18, 14}, {12, 16, 10},
                                 {11, 14, 8},  {10, 12, 6},  {9, 11, 4}};

struct Plan {
    Writing writing{};
    SInt32 width = 0;
    SInt32 height = 0;
    SInt32 meaningColumn = 0;
    std::vector<std::vector<std::string>> meanings; // each in lines
};

Plan MakePlan(TextPainter& text, const Writing& writing, SInt32 mostWidth)
{
    Plan plan;
    plan.writing = writing;
    SInt32 keys = 0;
    SInt32 meanings = 0;
    for (const Line& line : kLines) {
        keys = std::max(keys, text.WidthOf(line.key, writing.height));
        meanings = std::max(meanings, text.WidthOf(line.meaning, writing.height));
    }
    plan.meaningColumn = writing.around + keys + kGap;
    plan.width = std::min(mostWidth, plan.meaningColumn + meanings + writing.around);
    const SInt32 room = std::max(1, plan.width - plan.meaningColumn - writing.around);
    SInt32 lines = 0;
    for (const Line& line : kLines) {
        plan.meanings.push_back(text.Wrapped(line.meaning, writing.height, room));
        lines += static_cast<SInt32>(plan.meanings.back().size());
    }
    plan.height = 2 * writing.around + (lines + 1) * writing.line;
    return plan;
}

Plan MakePlanFor(TextPainter& text, AreaSize window)
{
    const SInt32 width = std::max(1, window.width - 2 * kEdge);
    Plan plan;
    for (const Writing& writing : kWritings) {
        plan = MakePlan(text, writing, width);
        if (plan.height <= window.height - 2 * kEdge) {
            break;
        }
    }
    return plan;
}

void Write(TextPainter& text, Canvas& canvas, const Plan& plan)
{
    const Writing& writing = plan.writing;
    SInt32 v = writing.around + (writing.line + writing.height) / 2 - 2;
    text.Write(canvas, writing.around, v, kHeading, writing.height + 2, kTextInk);
    for (size_t i = 0; i < plan.meanings.size(); ++i) {
        text.Write(canvas, writing.around, v + writing.line, kLines[i].key, writing.height,
                   kKeyInk);
        for (const std::string& line : plan.meanings[i]) {
            v += writing.line;
            text.Write(canvas, plan.meaningColumn, v, line, writing.height, kTextInk);
        }
    }
}

} // namespace

PageWindow::Panel MakeKeysPanel(AreaSize window)
{
    constexpr SInt32 kBytesPerPixel = 4;
    TextPainter text;
    const Plan plan = MakePlanFor(text, window);
    PageWindow::Panel panel;
    panel.width = static_cast<SInt16>(plan.width);
    panel.height = static_cast<SInt16>(plan.height);
    panel.pixels.resize(static_cast<size_t>(plan.width * plan.height * kBytesPerPixel));
    const Rect all = {0, 0, panel.height, panel.width};
    Canvas canvas{panel.pixels.data(), plan.width * kBytesPerPixel, all};
    canvas.Fill(all, kPaper);
    canvas.Frame(all, 1, kEdgeInk);
    Write(text, canvas, plan);
    return panel;
}

} // namespace viewer
