// SPDX-License-Identifier: MIT
//
// The values that options take, read strictly: all of the text must be the value.
#pragma once

#include "viewer/Options.h"

#include <string_view>

namespace viewer
{

// Each that takes `option` throws UsageError with a text that starts with `option`.
SInt64 ReadWholeNumber(const std::string& option, const std::string& text, SInt64 least,
                       SInt64 most);
// Decimal, or hexadecimal after 0x.
UInt32 ReadFlags(const std::string& option, const std::string& text);
// TYPE/SUBTYPE, without the parameters that may follow.
std::string ReadMimeType(std::string_view text);
// Seconds with a fraction, as microseconds.
SInt64 ReadSeconds(const std::string& option, const std::string& text);
// WIDTHxHEIGHT
void ReadSize(const std::string& option, const std::string& text, SInt16& width, SInt16& height);
// X,Y@SECONDS
UserEvent ReadClick(const std::string& option, const std::string& text);
// PATH, or N:PATH; a path that begins like the latter is to be written ./N:PATH.
void ReadDrag(const std::string& option, const std::string& text, DragRequest& drag);
// NAME@SECONDS
UserEvent ReadKey(const std::string& option, const std::string& text);

} // namespace viewer
