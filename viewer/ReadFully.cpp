// SPDX-License-Identifier: MIT
#include "viewer/ReadFully.h"

#include <cerrno>
#include <unistd.h>

namespace viewer
{

SInt32 ReadFully(int file, void* buffer, SInt32 offset, SInt32 count)
{
    SInt32 copied = 0;
    while (copied < count) {
        errno = 0;
        const ssize_t got = pread(file, static_cast<UInt8*>(buffer) + copied,
                                  static_cast<size_t>(count - copied), SInt64{offset} + copied);
        if (got > 0) {
            copied += static_cast<SInt32>(got);
        } else if (got == 0 || errno != EINTR) {
            break;
        }
    }
    return copied;
}

} // namespace viewer
