// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sweep/Scenario.h"

namespace sweep
{

// A movie all of which is there when first asked for, played to its end.
std::unique_ptr<Scenario> MovieAtOnce();
// A movie that arrives so slowly that its reads have to wait, played to its end.
std::unique_ptr<Scenario> MovieInPieces();
// A movie in which the user goes to another place.
std::unique_ptr<Scenario> MovieSought();
// A movie that arrives slowly, freed in the middle: the thread that decodes is disposed of.
std::unique_ptr<Scenario> MovieDestroyed();
// The same, freed in the middle as hosts do it: the data end, and decoding returns.
std::unique_ptr<Scenario> MovieCancelled();
// Bytes that are no movie.
std::unique_ptr<Scenario> NoMovie();

} // namespace sweep
