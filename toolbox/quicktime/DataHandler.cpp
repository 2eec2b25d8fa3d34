// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/DataHandler.h"

#include "toolbox/probe/Announce.h"

void InvokeDataHCompletionUPP(char* request, RefCon refCon, OSErr err, DataHCompletionUPP routine)
{
    toolbox::Announce("InvokeDataHCompletionUPP");
    routine(request, refCon, err);
}
