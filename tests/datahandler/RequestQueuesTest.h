// SPDX-License-Identifier: MIT
#pragma once

#include "tests/datahandler/DataHandlerTest.h"

namespace test
{

// An instance with requests in its queues.
class RequestQueues : public DataHandlerTest
{
protected:
    char* Place(int number) { return buffer + 100 * number; }
    bool IsEmpty(CLinkedList& queue)
    {
        queue.ResetToFirst();
        return queue.NextItem() == nullptr;
    }
    ComponentResult Finish(char* place, unsigned char cancel)
    {
        return Call(kDataHFinishDataSelect, place, cancel);
    }
    bool IsUntouched(const char* place, int size)
    {
        return std::count(place, place + size, char{0}) == size;
    }
    // Lets the instance believe in more bytes than are spooled. A read that waits for them, which
    // it must not, is released at its first yield.
    void PretendArrived(SInt32 bytes)
    {
        handler->availableSize = bytes;
        probe.Forget();
        probe.onCall = [this](const std::string& call) {
            if (call == "YieldToAnyThread" && plugin != nullptr) {
                plugin->allDataSpooled = true;
            }
        };
    }
    bool HasWaited() { return probe.Count("YieldToAnyThread") != 0; }
};

} // namespace test
