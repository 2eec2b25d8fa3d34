// SPDX-License-Identifier: MIT
//
// What stands beside the objects of a page in a window: their names, what is known of them, how
// far they have come, and which one has the focus.
#pragma once

#include "viewer/Page.h"
#include "viewer/text/TextPainter.h"

#include <string>
#include <vector>

namespace viewer
{

class Captions
{
public:
    explicit Captions(Page& page) : page_(page) {}

    // Draws into the page's port what differs from what it shows. To be called after each round of
    // work.
    void Update(const EmbeddedObject* focus);

private:
    struct Caption {
        std::string name;
        std::string details;
        std::string problem;
        int arrived = -1; // of a hundred; -1: no bar
        bool isFocused = false;
        bool isPlaceholder = false;
        bool operator==(const Caption&) const = default;
    };
    Caption Describe(EmbeddedObject& object, const EmbeddedObject* focus);
    std::string Join(const std::vector<std::string>& parts, int width);
    std::vector<std::string> Folded(const std::string& text, int width, size_t mostLines);
    void Draw(const Caption& caption, const EmbeddedObject& object);
    void DrawText(const Caption& caption, const Rect& room);
    void WriteLine(Canvas& canvas, const Rect& room, SInt32 v, const std::string& line, int height,
                   Ink ink);
    void DrawFocus(const Caption& caption, const Rect& area);
    void DrawInside(const Caption& caption, const Rect& area);
    void DrawProblem(const Caption& caption, const Rect& area, Canvas& canvas);

    Page& page_;
    TextPainter text_;
    std::vector<Caption> drawn_;
    int layout_ = 0;
};

} // namespace viewer
