// SPDX-License-Identifier: MIT
#include "viewer/window/Notice.h"

#include "viewer/text/TextPainter.h"

#include <algorithm>

namespace viewer
{
namespace
{

constexpr SInt16 kAround = 16; // left free of the window on both sides
constexpr SInt32 kPadding = 12;
constexpr SInt32 kLineHeight = 19;
constexpr SInt32 kBaseline = 14;
constexpr int kTextHeight = 13;
constexpr size_t kMostLines = 12;
constexpr size_t kBytesPerPixel = 4;
constexpr Ink kPaper = {0x2B, 0x30, 0x38};
constexpr Ink kInk = {0xFA, 0xFA, 0xFC};

PageWindow::Panel MakePanel(const std::string& text, SInt16 windowWidth)
{
    TextPainter painter;
    const SInt32 room = std::max<SInt32>(1, windowWidth - 2 * (kAround + kPadding));
    std::vector<std::string> lines = painter.Wrapped(text, kTextHeight, room);
    lines.resize(std::min(lines.size(), kMostLines));
    SInt32 width = 0;
    for (const std::string& line : lines) {
        width = std::max(width, painter.WidthOf(line, kTextHeight));
    }
    PageWindow::Panel panel;
    panel.width = static_cast<SInt16>(width + 2 * kPadding);
    panel.height = static_cast<SInt16>(static_cast<SInt32>(lines.size()) * kLineHeight + kPadding);
    const Rect all = {0, 0, panel.height, panel.width};
    panel.pixels.resize(static_cast<size_t>(panel.width) * static_cast<size_t>(panel.height) *
                        kBytesPerPixel);
    Canvas canvas{panel.pixels.data(), panel.width * static_cast<SInt32>(kBytesPerPixel), all};
    canvas.Fill(all, kPaper);
    SInt32 v = kPadding / 2 + kBaseline;
    for (const std::string& line : lines) {
        painter.Write(canvas, kPadding, v, line, kTextHeight, kInk);
        v += kLineHeight;
    }
    return panel;
}

} // namespace

void Notice::Show(const std::string& text, SInt64 until)
{
    window_.ShowNotice(MakePanel(text, window_.Width()));
    until_ = until;
}

void Notice::Tend(SInt64 now)
{
    if (until_ && now >= *until_) {
        window_.ShowNotice({});
        until_.reset();
    }
}

} // namespace viewer
