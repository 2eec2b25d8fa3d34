// SPDX-License-Identifier: MIT
//
// A word to the user over the page, for a few seconds.
#pragma once

#include "viewer/window/PageWindow.h"

#include <optional>
#include <string>

namespace viewer
{

class Notice
{
public:
    explicit Notice(PageWindow& window) : window_(window) {}

    // In the place of what is shown. `until`: by the page's clock, in microseconds.
    void Show(const std::string& text, SInt64 until);
    // Takes it away when its time has come.
    void Tend(SInt64 now);
    std::optional<SInt64> NextTime() const { return until_; }

private:
    PageWindow& window_;
    std::optional<SInt64> until_; // none while nothing is shown
};

} // namespace viewer
