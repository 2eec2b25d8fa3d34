// SPDX-License-Identifier: MIT
//
// How fast an object's bytes arrive.
#pragma once

#include "toolbox/Types.h"

#include <optional>

namespace viewer
{

// Time is the page's clock, microseconds from its start, when the first byte sets out.
class ArrivalPace
{
public:
    // None: as fast as they come.
    explicit ArrivalPace(std::optional<SInt64> bytesPerSecond = std::nullopt);

    // How many bytes can have arrived by then, object sizes being the limit.
    SInt32 BytesBy(SInt64 microseconds) const;
    bool IsLimited() const;

private:
    std::optional<SInt64> bytesPerSecond_;
};

} // namespace viewer
