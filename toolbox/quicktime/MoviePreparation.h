// SPDX-License-Identifier: MIT
//
// What the host said about movies that would have to wait for the codec libraries.
#pragma once

namespace toolbox
{

// Such a movie says that it waits, instead of waiting.
bool AreMoviesHeld();

} // namespace toolbox
