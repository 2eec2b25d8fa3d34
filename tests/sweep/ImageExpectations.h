// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sweep/Expectations.h"

namespace sweep
{

std::vector<Expectation> StillImageExpectations();
std::vector<Expectation> AnimatedImageExpectations();
std::vector<Expectation> DamagedImageExpectations();
std::vector<Expectation> DraggedImageExpectations();
std::vector<Expectation> TypeCheckExpectations();

} // namespace sweep
