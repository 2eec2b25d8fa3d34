// SPDX-License-Identifier: MIT
#include "decoders/common/Palette.h"

#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <cstddef>

namespace
{

constexpr int kColors = 256;

} // namespace

Palette::Palette()
{
    constexpr Size kSize = offsetof(ColorTable, ctTable) + kColors * sizeof(ColorSpec);
    colors_.reset(reinterpret_cast<CTabHandle>(NewHandleClear(kSize)));
    if (!colors_)
        throw OSErr{memFullErr};
    ColorTable& table = **colors_;
    table.ctSeed = GetCTSeed();
    table.ctSize = kColors - 1;
    for (int i = 0; i < kColors; ++i)
        table.ctTable[i].value = static_cast<SInt16>(i);
}

RGBColor Palette::ColorOf(UInt8 red, UInt8 green, UInt8 blue)
{
    return {static_cast<UInt16>(red * 0x0101), static_cast<UInt16>(green * 0x0101),
            static_cast<UInt16>(blue * 0x0101)};
}

void Palette::Disposer::operator()(CTabHandle colors) const
{
    DisposeHandle(reinterpret_cast<Handle>(colors));
}
