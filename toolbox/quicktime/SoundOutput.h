// SPDX-License-Identifier: MIT
//
// The process's way out for sound: the sink that the host gave, or none.
#pragma once

#include "toolbox/quicktime/Movies.h"

namespace toolbox
{

// The host's sink; all its functions are null without one.
const ToolboxSoundSink& SoundSink();

} // namespace toolbox
