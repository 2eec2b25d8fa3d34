// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/QDOffscreen.h"

#include <memory>

// A colour table while it is made: 256 colours, all black at first; for index `i` it has entry `i`.
class Palette
{
public:
    // Throws memFullErr.
    Palette();

    static RGBColor ColorOf(UInt8 red, UInt8 green, UInt8 blue);
    void Set(int index, const RGBColor& color) { (*colors_)->ctTable[index].rgb = color; }
    CTabHandle Get() const { return colors_.get(); }
    // The table, the caller's from now on.
    CTabHandle Release() { return colors_.release(); }

private:
    struct Disposer {
        using pointer = CTabHandle;
        void operator()(CTabHandle colors) const;
    };
    std::unique_ptr<ColorTable*, Disposer> colors_;
};
