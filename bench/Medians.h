// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <vector>

// The upper one of the two in the middle where there is no single one.
inline double MedianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}
