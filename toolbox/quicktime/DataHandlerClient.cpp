// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/DataHandlerClient.h"

#include "toolbox/Errors.h"

#include <algorithm>
#include <initializer_list>

namespace toolbox
{

OSErr DataHandlerClient::Open(Handle dataRef, OSType type,
                              std::unique_ptr<DataHandlerClient>* client)
{
    const ComponentDescription wanted = {FOUR_CHARS('d', 'h', 'l', 'r'), type, 0, 0, 0};
    const Component component = FindNextComponent(nullptr, &wanted);
    if (component == nullptr) {
        return cantOpenHandler;
    }
    ComponentInstance instance = nullptr;
    OSErr err = OpenAComponent(component, &instance);
    if (err != noErr) {
        return err;
    }
    std::unique_ptr<DataHandlerClient> opened(new DataHandlerClient(instance));
    err = static_cast<OSErr>(
        opened->Call(kDataHSetDataRefSelect, {reinterpret_cast<ComponentSlot>(dataRef)}));
    if (err == noErr) {
        err = static_cast<OSErr>(opened->Call(kDataHOpenForReadSelect, {}));
    }
    if (err == noErr) {
        *client = std::move(opened);
    }
    return err;
}

DataHandlerClient::~DataHandlerClient()
{
    Call(kDataHCloseForReadSelect, {});
    CloseComponent(instance_);
}

OSErr DataHandlerClient::ScheduleData(char* place, SInt32 offset, SInt32 size, RefCon refCon,
                                      DataHScheduleRecord* when, DataHCompletionUPP completion)
{
    return static_cast<OSErr>(
        Call(kDataHScheduleDataSelect,
             {reinterpret_cast<ComponentSlot>(place), offset, size, refCon,
              reinterpret_cast<ComponentSlot>(when), reinterpret_cast<ComponentSlot>(completion)}));
}

OSErr DataHandlerClient::CancelData(char* place)
{
    return static_cast<OSErr>(
        Call(kDataHFinishDataSelect, {reinterpret_cast<ComponentSlot>(place), 1}));
}

SInt32 DataHandlerClient::AvailableSize()
{
    return CallForNumber(kDataHGetAvailableFileSizeSelect);
}

SInt32 DataHandlerClient::FileSize()
{
    return CallForNumber(kDataHGetFileSizeSelect);
}

std::string DataHandlerClient::MIMEType()
{
    return CallForText(kDataHGetMIMETypeSelect);
}

std::string DataHandlerClient::FileName()
{
    return CallForText(kDataHGetFileNameSelect);
}

void DataHandlerClient::Task()
{
    Call(kDataHTaskSelect, {});
}

ComponentResult DataHandlerClient::Call(SInt16 selector, std::initializer_list<ComponentSlot> slots)
{
    ComponentParameters params{};
    params.what = selector;
    params.paramSize = static_cast<UInt8>(slots.size());
    std::copy(slots.begin(), slots.end(), params.params);
    return CallComponent(instance_, &params);
}

SInt32 DataHandlerClient::CallForNumber(SInt16 selector)
{
    SInt32 number = -1;
    const ComponentResult err = Call(selector, {reinterpret_cast<ComponentSlot>(&number)});
    return err == noErr ? number : -1;
}

std::string DataHandlerClient::CallForText(SInt16 selector)
{
    Str255 text = {0};
    Call(selector, {reinterpret_cast<ComponentSlot>(&text[0])});
    return std::string(reinterpret_cast<const char*>(text) + 1, text[0]);
}

} // namespace toolbox
