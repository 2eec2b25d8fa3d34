// SPDX-License-Identifier: MIT
//
// A data handler component over bytes in memory of which only some have arrived.
#pragma once

#include "toolbox/components/Components.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/quicktime/DataHandler.h"

#include <list>
#include <string>
#include <vector>

class ArrivingData
{
public:
    explicit ArrivingData(std::string bytes, std::string fileName = "clip.mpg");
    ~ArrivingData();
    ArrivingData(const ArrivingData&) = delete;
    ArrivingData& operator=(const ArrivingData&) = delete;

    static constexpr OSType kSubType = FOUR_CHARS('T', 'E', 'S', 'T');
    // A data reference that leads here; it belongs to this object.
    Handle DataRef() const { return dataRef_; }
    // Lets `count` bytes in all be there and answers what waited for them.
    void ArriveUpTo(size_t count);
    // All bytes are there and it is known.
    void ArriveCompletely();
    size_t Size() const { return bytes_.size(); }
    size_t Arrived() const { return arrived_; }
    // How often bytes were asked for, and how many requests wait.
    int Asked() const { return asked_; }
    size_t Waiting() const { return waiting_.size(); }
    int OpenInstances() const { return openInstances_; }

    ComponentResult Dispatch(ComponentParameters& params);

private:
    struct Request {
        char* place;
        SInt64 offset;
        SInt64 size;
        RefCon refCon;
        DataHCompletionUPP completion;
    };
    ComponentResult Schedule(const ComponentSlot* slots);
    ComponentResult Cancel(char* place);
    void Answer(const Request& request);
    void AnswerWaiting();

    std::string bytes_;
    std::string fileName_;
    Handle dataRef_;
    size_t arrived_ = 0;
    bool isComplete_ = false;
    std::list<Request> waiting_;
    int asked_ = 0;
    int openInstances_ = 0;
};

// The contents of a file; throws std::runtime_error if it cannot be read.
std::string ReadWholeFile(const std::string& path);
