// SPDX-License-Identifier: MIT
//
// One opened data handler instance and the calls that a movie makes on it.
#pragma once

#include "toolbox/components/Components.h"
#include "toolbox/quicktime/DataHandler.h"

#include <memory>
#include <string>

namespace toolbox
{

class DataHandlerClient
{
public:
    // Opens the data handler component of subtype `type` on a data reference. On an error (its
    // result, cantOpenHandler if there is no such component) `client` stays null.
    static OSErr Open(Handle dataRef, OSType type, std::unique_ptr<DataHandlerClient>* client);
    ~DataHandlerClient();
    DataHandlerClient(const DataHandlerClient&) = delete;
    DataHandlerClient& operator=(const DataHandlerClient&) = delete;

    // Asks for bytes, now or when they have arrived: `completion` is called with the outcome,
    // possibly before this returns. eofErr: the data has ended before the last byte asked for.
    OSErr ScheduleData(char* place, SInt32 offset, SInt32 size, RefCon refCon,
                       DataHScheduleRecord* when, DataHCompletionUPP completion);
    // Takes back what was asked for at `place`; its completion is called with 0, without data.
    OSErr CancelData(char* place);
    // Bytes that are there; an estimate once everything is.
    SInt32 AvailableSize();
    // The length of the data, an estimate (or -1) until everything is there.
    SInt32 FileSize();
    // The type that the data was declared to have, empty if none.
    std::string MIMEType();
    // The name that the data came under, empty if none.
    std::string FileName();
    // Lets the data handler work. May yield for as long as bytes take to arrive.
    void Task();

private:
    explicit DataHandlerClient(ComponentInstance instance) : instance_(instance) {}
    ComponentResult Call(SInt16 selector, std::initializer_list<ComponentSlot> slots);
    SInt32 CallForNumber(SInt16 selector);
    std::string CallForText(SInt16 selector);

    ComponentInstance instance_;
};

} // namespace toolbox
