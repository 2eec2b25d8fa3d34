// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"

#include <sstream>
#include <string>

namespace test
{

// "top,left,bottom,right"
inline std::string Text(const Rect& rect)
{
    std::ostringstream text;
    text << rect.top << ',' << rect.left << ',' << rect.bottom << ',' << rect.right;
    return text.str();
}

} // namespace test
