// SPDX-License-Identifier: MIT
//
// The open paths of the process by reference number. A path reads and writes at a mark of its own.
#pragma once

#include "toolbox/Types.h"
#include "toolbox/files/FileDescriptor.h"

namespace toolbox
{

struct Path {
    FileDescriptor file;
    bool writable = false;
    SInt64 mark = 0; // bytes from the start, never negative
};

// Takes the path in; the reference number is above 0. Throws tmfoErr when there is none left.
SInt16 AddPath(Path path);
// Throws rfNumErr for a number that names no open path. Valid until a path is added or removed.
Path& PathOf(SInt16 refNum);
// Takes the path out, for the caller to close. Throws rfNumErr.
Path RemovePath(SInt16 refNum);

} // namespace toolbox
