// SPDX-License-Identifier: MIT
#include "toolbox/files/Resources.h"

#include "toolbox/probe/Announce.h"

SInt16 CurResFile(void)
{
    toolbox::Announce("CurResFile");
    return 0;
}
