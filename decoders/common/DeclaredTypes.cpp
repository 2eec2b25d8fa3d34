// SPDX-License-Identifier: MIT
#include "decoders/common/DeclaredTypes.h"

#include <cstring>

bool IsDeclared(VornPlugin& object, const char* mimeType, const char* fileName)
{
    if (mimeType != nullptr && *mimeType != '\0' && object.CanHandleMimeType(mimeType))
        return true;
    const char* const dot = fileName != nullptr ? std::strrchr(fileName, '.') : nullptr;
    return dot != nullptr && dot[1] != '\0' && object.CanHandleFileExtension(dot + 1);
}
