// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/AliasDataHandler.h"

#include "toolbox/Errors.h"
#include "toolbox/components/BuiltIns.h"
#include "toolbox/components/Components.h"
#include "toolbox/files/Files.h"
#include "toolbox/memory/Memory.h"
#include "toolbox/quicktime/DataHandler.h"

#include <cstring>
#include <memory>

namespace toolbox
{
namespace
{

constexpr SInt32 kVersion = 0x00010001;

// One instance: the file that its data reference names, open or not.
class AliasDataHandler
{
public:
    ~AliasDataHandler() { Close(); }
    AliasDataHandler() = default;
    AliasDataHandler(const AliasDataHandler&) = delete;
    AliasDataHandler& operator=(const AliasDataHandler&) = delete;

    OSErr SetDataRef(Handle alias)
    {
        if (alias == nullptr || GetHandleSize(alias) != static_cast<Size>(sizeof file_)) {
            return paramErr;
        }
        Close();
        std::memcpy(&file_, *alias, sizeof file_);
        hasFile_ = true;
        return noErr;
    }

    OSErr Open()
    {
        if (!hasFile_) {
            return couldNotResolveDataRef;
        }
        return IsOpen() ? OSErr{noErr} : FSpOpenDF(&file_, fsRdPerm, &path_);
    }

    OSErr Close()
    {
        if (!IsOpen()) {
            return noErr;
        }
        const SInt16 path = path_;
        path_ = kClosed;
        return FSClose(path);
    }

    OSErr GetFileSize(SInt32* size)
    {
        const OSErr err = Open();
        return err != noErr ? err : GetEOF(path_, size);
    }

    OSErr Read(char* place, SInt32 offset, SInt32 size)
    {
        OSErr err = Open();
        if (err == noErr) {
            err = SetFPos(path_, fsFromStart, offset);
        }
        return err != noErr ? err : FSRead(path_, &size, place);
    }

private:
    static constexpr SInt16 kClosed = -1;
    bool IsOpen() const { return path_ != kClosed; }

    FSSpec file_{};
    bool hasFile_ = false;
    SInt16 path_ = kClosed;
};

bool Answers(SInt16 selector)
{
    switch (selector) {
    case kComponentOpenSelect:
    case kComponentCloseSelect:
    case kComponentCanDoSelect:
    case kComponentVersionSelect:
    case kComponentTargetSelect:
    case kDataHSetDataRefSelect:
    case kDataHOpenForReadSelect:
    case kDataHCloseForReadSelect:
    case kDataHGetFileSizeSelect:
    case kDataHScheduleDataSelect:
    case kDataHTaskSelect:
        return true;
    default:
        return false;
    }
}

OSErr ScheduleNow(AliasDataHandler& file, const ComponentSlot* slots)
{
    char* const place = reinterpret_cast<char*>(slots[0]);
    const OSErr err =
        file.Read(place, static_cast<SInt32>(slots[1]), static_cast<SInt32>(slots[2]));
    const auto completion = reinterpret_cast<DataHCompletionUPP>(slots[5]);
    if (completion == nullptr) {
        return err;
    }
    InvokeDataHCompletionUPP(place, slots[3], err, completion);
    return noErr;
}

ComponentResult OpenInstance(const ComponentSlot* slots)
{
    auto file = std::make_unique<AliasDataHandler>();
    SetComponentInstanceStorage(reinterpret_cast<ComponentInstance>(slots[0]), file.release());
    return noErr;
}

ComponentResult Dispatch(ComponentParameters* params, void* storage)
{
    auto* const file = static_cast<AliasDataHandler*>(storage);
    const ComponentSlot* const slots = params->params;
    switch (params->what) {
    case kComponentOpenSelect:
        return OpenInstance(slots);
    case kComponentCloseSelect:
        delete file;
        return noErr;
    case kComponentCanDoSelect:
        return Answers(static_cast<SInt16>(slots[0])) ? 1 : 0;
    case kComponentVersionSelect:
        return kVersion;
    case kComponentTargetSelect:
    case kDataHTaskSelect:
        return noErr;
    case kDataHSetDataRefSelect:
        return file->SetDataRef(reinterpret_cast<Handle>(slots[0]));
    case kDataHOpenForReadSelect:
        return file->Open();
    case kDataHCloseForReadSelect:
        return file->Close();
    case kDataHGetFileSizeSelect:
        return file->GetFileSize(reinterpret_cast<SInt32*>(slots[0]));
    case kDataHScheduleDataSelect:
        return ScheduleNow(*file, slots);
    default:
        return badComponentSelector;
    }
}

} // namespace

void RegisterAliasDataHandler()
{
    const ComponentDescription description = {FOUR_CHARS('d', 'h', 'l', 'r'),
                                              FOUR_CHARS('a', 'l', 'i', 's'),
                                              FOUR_CHARS('a', 'p', 'p', 'l'), kDataHCanRead, 0};
    RegisterComponent(&description, NewComponentRoutineUPP(Dispatch), 0, nullptr, nullptr, nullptr);
}

namespace
{
// The system has this component before anybody looks for one.
const bool gAdded = (AddBuiltInRegistration(RegisterAliasDataHandler), true);
} // namespace

} // namespace toolbox
