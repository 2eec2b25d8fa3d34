// SPDX-License-Identifier: MIT
#pragma once

#include "tests/fuzz/Decisions.h"

#include <span>

// A host of one object: what it answers depends on its state and on what it is asked, nothing else.
// So a model can ask it, too.
class StreamHost
{
public:
    struct Request {
        bool hasBuffer;
        SInt32 offset;
        SInt32 count;
        bool operator==(const Request&) const = default;
    };
    struct Answer {
        OSErr result = 0;
        std::span<const UInt8> bytes;
        bool tellsCount = true;
        bool tellsSize = true;
    };

    void Change(Decisions& decisions);
    Answer AnswerTo(const Request& request) const;
    // What the object has at a place; none where it has not that many.
    static std::span<const UInt8> BytesAt(SInt32 offset, SInt32 count);

    SInt32 arrived = 0;
    SInt32 toldSize = 0; // true or not
    UInt8 toldComplete = 0;

private:
    bool hasEnded_ = false;
    OSErr failure_ = 0; // answered to everything if not 0
    bool failsSilently_ = false;
};
