// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/quickdraw/Copying.h"

#include <vector>

namespace test
{

// A pixel map of its own making, whose rows are longer than they need be, with pixels drawn at
// random, in runs and without.
class TestPixels
{
public:
    TestPixels(int depth, const Rect& bounds);
    ~TestPixels();
    TestPixels(const TestPixels&) = delete;
    TestPixels& operator=(const TestPixels&) = delete;

    const PixMap& Map() const { return map_; }
    const Rect& Bounds() const { return map_.bounds; }
    // 0x00RRGGBB, row after row.
    std::vector<UInt32> Colors() const { return Colors(map_.bounds); }
    std::vector<UInt32> Colors(const Rect& part) const { return ColorsOf(map_, part); }
    // The same of any map.
    static std::vector<UInt32> ColorsOf(const PixMap& map, const Rect& part);
    static std::vector<UInt32> ColorsOf(const PixMap& map) { return ColorsOf(map, map.bounds); }

    void SetRow(size_t row, const std::vector<UInt8>& bytes);
    void ForgetTable() { map_.pmTable = nullptr; }
    // Its values then mean nothing, and are such.
    void PutTableInIndexOrder();

private:
    void MakeTable(int depth);
    void FillAtRandom();

    std::vector<UInt8> bytes_;
    PixMap map_{};
    CTabHandle table_ = nullptr;
};

} // namespace test
