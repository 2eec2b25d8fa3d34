// SPDX-License-Identifier: MIT
#include "toolbox/probe/Probe.h"

#include "toolbox/probe/Announce.h"

#include <array>

namespace toolbox
{
namespace
{

ToolboxObserver gObserver = nullptr;
void* gObserverRefCon = nullptr;
bool gInObserver = false;
std::array<SInt32, kLiveObjectKinds> gLedger{};

} // namespace

OSErr Announce(const char* operation)
{
    if (gObserver == nullptr || gInObserver) {
        return 0;
    }
    struct Inside {
        Inside() { gInObserver = true; }
        ~Inside() { gInObserver = false; }
    } const inside;
    return gObserver(operation, gObserverRefCon);
}

void CountInLedger(SInt32 kind, SInt32 change)
{
    gLedger.at(static_cast<size_t>(kind)) += change;
}

} // namespace toolbox

void SetToolboxObserver(ToolboxObserver observer, void* refCon)
{
    toolbox::gObserver = observer;
    toolbox::gObserverRefCon = refCon;
}

SInt32 CountLiveObjects(SInt32 kind)
{
    return kind >= 0 && kind < kLiveObjectKinds ? toolbox::gLedger[static_cast<size_t>(kind)] : 0;
}
