// SPDX-License-Identifier: MIT
#include "viewer/text/Paragraphs.h"

#include "viewer/text/PageCanvas.h"

#include <algorithm>
#include <cmath>

namespace viewer
{
namespace
{

// In pixels, on a page that is not enlarged.
constexpr double kTextHeight = 14;
constexpr double kLineHeight = 21;
constexpr double kBaseline = 15; // below the line's top
constexpr Ink kTextInk = {0x2B, 0x30, 0x38};

int Zoomed(double length, double zoom)
{
    return static_cast<int>(std::max(std::round(length * zoom), 1.0));
}

} // namespace

Paragraphs::Paragraphs(Page& page, const std::string& fontFile) : page_(page), text_(fontFile)
{
    if (text_.HasFont()) {
        page_.Texts().SetMeasure([this](size_t index, SInt16 width, double zoom) {
            const size_t lines = Wrap(index, width, zoom).lines.size();
            return static_cast<SInt32>(lines) * Zoomed(kLineHeight, zoom);
        });
    }
}

Paragraphs::~Paragraphs()
{
    page_.Texts().SetMeasure({});
}

void Paragraphs::Update()
{
    for (const size_t index : page_.Texts().TakeMoved()) {
        Write(index);
    }
}

const Paragraphs::Wrapping& Paragraphs::Wrap(size_t index, SInt16 width, double zoom)
{
    if (wrappings_.size() != page_.Texts().Blocks().size()) {
        wrappings_.assign(page_.Texts().Blocks().size(), {}); // some have come in between
    }
    Wrapping& wrapping = wrappings_[index];
    if (wrapping.width != width || wrapping.zoom != zoom) {
        wrapping = {
            width, zoom,
            text_.Wrapped(page_.Texts().Blocks()[index].text, Zoomed(kTextHeight, zoom), width)};
    }
    return wrapping;
}

void Paragraphs::Write(size_t index)
{
    const Wrapping& wrapping = wrappings_[index];
    const Rect& area = page_.Texts().Area(index);
    page_.Wipe(area);
    Canvas canvas = CanvasOn(page_, area);
    SInt32 top = area.top;
    for (const std::string& line : wrapping.lines) {
        if (top >= canvas.clip.bottom) {
            break;
        }
        text_.Write(canvas, area.left, top + Zoomed(kBaseline, wrapping.zoom), line,
                    Zoomed(kTextHeight, wrapping.zoom), kTextInk);
        top += Zoomed(kLineHeight, wrapping.zoom);
    }
}

} // namespace viewer
