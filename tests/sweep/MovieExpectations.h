// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sweep/Expectations.h"

namespace sweep
{

std::vector<Expectation> MovieAtOnceExpectations();
std::vector<Expectation> MovieInPiecesExpectations();
std::vector<Expectation> MovieSoughtExpectations();
std::vector<Expectation> MovieDestroyedExpectations();
std::vector<Expectation> MovieCancelledExpectations();
std::vector<Expectation> NoMovieExpectations();

} // namespace sweep
