// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/MimeDocument.h"

#include <gmime/gmime.h>

namespace viewer
{

// The text and the media of a message and of those inside it.
MimeDocument WalkThrough(GMimeMessage& message);

} // namespace viewer
