// SPDX-License-Identifier: MIT
#include "tests/support/ArrivingData.h"

#include "toolbox/Errors.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{

// Storage of an instance: the data it was opened on, null before its data reference is set.
struct Instance {
    ArrivingData* data = nullptr;
};

ComponentResult DispatchInstance(ComponentParameters* params, void* storage)
{
    auto* const instance = static_cast<Instance*>(storage);
    switch (params->what) {
    case kComponentOpenSelect:
        SetComponentInstanceStorage(reinterpret_cast<ComponentInstance>(params->params[0]),
                                    new Instance);
        return noErr;
    case kComponentCloseSelect:
        if (instance->data != nullptr) {
            instance->data->Dispatch(*params);
        }
        delete instance;
        return noErr;
    case kDataHSetDataRefSelect:
        std::memcpy(&instance->data, *reinterpret_cast<Handle>(params->params[0]),
                    sizeof instance->data);
        [[fallthrough]];
    default:
        return instance->data->Dispatch(*params);
    }
}

void Register()
{
    static const ComponentDescription description = {FOUR_CHARS('d', 'h', 'l', 'r'),
                                                     ArrivingData::kSubType,
                                                     FOUR_CHARS('t', 'e', 's', 't'), 0, 0};
    static const Component component =
        RegisterComponent(&description, DispatchInstance, 0, nullptr, nullptr, nullptr);
    static_cast<void>(component);
}

void CopyToPascal(const std::string& text, ComponentSlot to)
{
    auto* const pascal = reinterpret_cast<unsigned char*>(to);
    pascal[0] = static_cast<unsigned char>(text.size());
    std::memcpy(pascal + 1, text.data(), text.size());
}

} // namespace

ArrivingData::ArrivingData(std::string bytes, std::string fileName)
    : bytes_(std::move(bytes)), fileName_(std::move(fileName)),
      dataRef_(NewHandle(static_cast<::Size>(sizeof(ArrivingData*))))
{
    Register();
    ArrivingData* const self = this;
    std::memcpy(*dataRef_, &self, sizeof self);
}

ArrivingData::~ArrivingData()
{
    DisposeHandle(dataRef_);
}

void ArrivingData::ArriveUpTo(size_t count)
{
    arrived_ = std::min(count, bytes_.size());
    AnswerWaiting();
}

void ArrivingData::ArriveCompletely()
{
    arrived_ = bytes_.size();
    isComplete_ = true;
    AnswerWaiting();
}

void ArrivingData::AnswerWaiting()
{
    for (auto it = waiting_.begin(); it != waiting_.end();) {
        if (it->offset + it->size <= static_cast<SInt64>(arrived_)) {
            const Request request = *it;
            it = waiting_.erase(it);
            Answer(request);
        } else {
            ++it;
        }
    }
}

void ArrivingData::Answer(const Request& request)
{
    std::memcpy(request.place, bytes_.data() + request.offset, static_cast<size_t>(request.size));
    InvokeDataHCompletionUPP(request.place, request.refCon, noErr, request.completion);
}

ComponentResult ArrivingData::Schedule(const ComponentSlot* slots)
{
    ++asked_;
    const Request request = {reinterpret_cast<char*>(slots[0]), slots[1], slots[2], slots[3],
                             reinterpret_cast<DataHCompletionUPP>(slots[5])};
    if (request.offset + request.size <= static_cast<SInt64>(arrived_)) {
        Answer(request);
        return noErr;
    }
    if (isComplete_) {
        return eofErr;
    }
    waiting_.push_back(request);
    return noErr;
}

ComponentResult ArrivingData::Cancel(char* place)
{
    const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                    [&](const Request& each) { return each.place == place; });
    if (found == waiting_.end()) {
        return paramErr;
    }
    const Request request = *found;
    waiting_.erase(found);
    InvokeDataHCompletionUPP(place, request.refCon, noErr, request.completion);
    return noErr;
}

ComponentResult ArrivingData::Dispatch(ComponentParameters& params)
{
    const ComponentSlot* const slots = params.params;
    switch (params.what) {
    case kDataHOpenForReadSelect:
        ++openInstances_;
        return noErr;
    case kComponentCloseSelect:
        --openInstances_;
        waiting_.clear();
        return noErr;
    case kDataHScheduleDataSelect:
        return Schedule(slots);
    case kDataHFinishDataSelect:
        return Cancel(reinterpret_cast<char*>(slots[0]));
    case kDataHGetAvailableFileSizeSelect:
        *reinterpret_cast<SInt32*>(slots[0]) = static_cast<SInt32>(arrived_);
        return noErr;
    case kDataHGetFileSizeSelect:
        *reinterpret_cast<SInt32*>(slots[0]) =
            isComplete_ ? static_cast<SInt32>(bytes_.size()) : -1;
        return noErr;
    case kDataHGetFileNameSelect:
        CopyToPascal(fileName_, slots[0]);
        return noErr;
    case kDataHGetMIMETypeSelect:
        CopyToPascal("", slots[0]);
        return noErr;
    default:
        return noErr;
    }
}

std::string ReadWholeFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
