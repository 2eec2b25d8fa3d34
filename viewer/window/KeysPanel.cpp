// SPDX-License-Identifier: MIT
#include "viewer/window/KeysPanel.h"

#include "viewer/text/TextPainter.h"

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
    {"+  \u2212  0", "enlarge, reduce, own size"},
    {"Double click, Enter", "full screen"},
    {"Esc", "leave full screen, let the focus go"},
    {"S", "save the object's picture"},
    {"P", "save a picture of the page"},
    {"F1", "this list"},
    {"Q", "quit"},
};
constexpr SInt16 kWidth = 470;
constexpr SInt16 kTop = 50;
constexpr SInt16 kLineHeight = 22;
constexpr SInt16 kHeight =
    kTop + kLineHeight * static_cast<SInt16>(sizeof kLines / sizeof kLines[0]);
constexpr SInt32 kKeyColumn = 24;
constexpr SInt32 kMeaningColumn = 180;
constexpr int kTextHeight = 13;
constexpr int kHeadingHeight = 15;
constexpr Ink kPaper = {0xFD, 0xFD, 0xFE};
constexpr Ink kEdge = {0x9A, 0xA4, 0xB2};
constexpr Ink kKeyInk = {0x33, 0x5E, 0x9A};
constexpr Ink kTextInk = {0x2B, 0x30, 0x38};

} // namespace

PageWindow::Panel MakeKeysPanel()
{
    constexpr size_t kBytesPerPixel = 4;
    PageWindow::Panel panel;
    panel.width = kWidth;
    panel.height = kHeight;
    panel.pixels.resize(size_t{kWidth} * kHeight * kBytesPerPixel);
    const Rect all = {0, 0, kHeight, kWidth};
    Canvas canvas{panel.pixels.data(), kWidth * static_cast<SInt32>(kBytesPerPixel), all};
    canvas.Fill(all, kPaper);
    canvas.Frame(all, 1, kEdge);
    TextPainter text;
    text.Write(canvas, kKeyColumn, kTop - 20, "Keys", kHeadingHeight, kTextInk);
    SInt32 v = kTop + kTextHeight - 4;
    for (const Line& line : kLines) {
        text.Write(canvas, kKeyColumn, v, line.key, kTextHeight, kKeyInk);
        text.Write(canvas, kMeaningColumn, v, line.meaning, kTextHeight, kTextInk);
        v += kLineHeight;
    }
    return panel;
}

} // namespace viewer
