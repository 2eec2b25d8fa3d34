// SPDX-License-Identifier: MIT
#include "toolbox/files/SystemErrors.h"

#include "toolbox/Errors.h"

#include <cerrno>

OSErr toolbox::ErrorFromSystem(int errorNumber)
{
    switch (errorNumber) {
    case ENOENT:
        return fnfErr;
    case ENOTDIR:
        return dirNFErr;
    case EEXIST:
        return dupFNErr;
    case ENAMETOOLONG:
        return bdNamErr;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return dskFulErr;
    case EROFS:
        return wPrErr;
    case EACCES:
    case EPERM:
    case ELOOP: // a link where none is followed
        return permErr;
    case EMFILE:
    case ENFILE:
        return tmfoErr;
    case ENOMEM:
        return memFullErr;
    default:
        return ioErr;
    }
}
