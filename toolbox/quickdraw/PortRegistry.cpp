// SPDX-License-Identifier: MIT
#include "toolbox/quickdraw/PortRegistry.h"

#include "toolbox/quickdraw/Port.h"

#include <new>
#include <unordered_map>

namespace toolbox
{
namespace
{

using Ports = std::unordered_map<const void*, CGrafPort*>;

// Never destroyed: ports may still be made and disposed of while the process ends.
Ports& ThePorts()
{
    static auto& ports = *new Ports;
    return ports;
}

} // namespace

bool RegisterPort(CGrafPort& port)
{
    try {
        ThePorts()[port.pixels.Bytes()] = &port;
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void UnregisterPort(const CGrafPort& port)
{
    ThePorts().erase(port.pixels.Bytes());
}

CGrafPort* FindPortOfPixels(const void* firstPixel)
{
    const auto found = ThePorts().find(firstPixel);
    return found == ThePorts().end() ? nullptr : found->second;
}

} // namespace toolbox
