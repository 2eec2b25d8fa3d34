// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/mail/GMimePointer.h"

#include <string>

namespace viewer
{

// A stream of text with a file's contents behind it, without a copy of these. The file is
// duplicated. It is one stream to GMime: of several in a row (GMimeStreamCat) a part could not be
// looked at beyond its end. Null without memory or descriptors.
GMimePointer<GMimeStream> StreamOfHeadedFile(const std::string& head, int file);

} // namespace viewer
