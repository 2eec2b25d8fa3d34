// SPDX-License-Identifier: MIT
#include "src/datahandler/VornPluginDataHandlerComponent.h"

#include "src/movie/VornMoviePlugin.h"
#include "src/util/HighHandleLock.h"
#include "src/util/Strings.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr UInt16 kLastVersionWithoutSpoolAhead = 0x04FF;
constexpr SInt32 kMaxPascalLength = 255;

constexpr const char* kMpegMimeTypes[] = {
    "video/mpeg", "video/x-mpeg", "audio/mpeg",  "audio/x-mpeg3",
    "audio/mp3",  "audio/x-mp3",  "audio/mpeg3", "audio/x-mpeg",
};
constexpr OSType kMpegFileTypes[] = {
    FOUR_CHARS('M', 'P', 'E', 'G'),
    FOUR_CHARS('M', 'p', '3', ' '),
    FOUR_CHARS('M', 'P', 'G', '3'),
    FOUR_CHARS('M', 'P', 'G', '4'),
};

bool IsMpeg(const char* mimeType, OSType fileType)
{
    const auto isThisType = [mimeType](const char* type) { return MyStrEqual(mimeType, type); };
    if (std::any_of(std::begin(kMpegMimeTypes), std::end(kMpegMimeTypes), isThisType)) {
        return true;
    }
    const bool saysNothing = *mimeType == '\0' || MyStrEqual(mimeType, "application/octet-stream");
    return saysNothing && std::find(std::begin(kMpegFileTypes), std::end(kMpegFileTypes),
                                    fileType) != std::end(kMpegFileTypes);
}

} // namespace

VornPluginDataHandlerComponent::VornPluginDataHandlerComponent(ComponentInstance instance,
                                                               ComponentInstance aliasHandler)
    : self(instance), delegate(aliasHandler), moviePlugin(VornMoviePlugin::GetMoviePlugin())
{
    if (moviePlugin == nullptr) {
        throw OSErr{paramErr};
    }
    qtVersion = moviePlugin->quickTimeVersion;
    isMpeg = IsMpeg(moviePlugin->MimeType(), moviePlugin->fileType);
    canSpoolAhead = isMpeg && qtVersion > kLastVersionWithoutSpoolAhead;
    moviePlugin->AddLoadListener(this);
    availableSize = moviePlugin->bytesSpooled;
    loadComplete = moviePlugin->allDataSpooled;
    if (loadComplete) {
        finalSize = availableSize;
    }
}

VornPluginDataHandlerComponent::~VornPluginDataHandlerComponent()
{
    if (moviePlugin != nullptr) {
        moviePlugin->RemoveLoadListener(this);
    }
    if (delegate != nullptr) {
        CloseComponent(delegate);
    }
    RemoveScheduleDataCallbacks();
    RemoveAsyncReadCallbacks();
    RemoveAsyncFileSizeCallbacks();
}

OSErr VornPluginDataHandlerComponent::GetDataFromOffset(void* dest, SInt32 offset, SInt32* count,
                                                        unsigned char mustHaveAll)
{
    if (moviePlugin != nullptr) {
        moviePlugin->GetMovieData(dest, offset, count, mustHaveAll);
    }
    return noErr;
}

void VornPluginDataHandlerComponent::GetData(Handle handle, SInt32 handleOffset, SInt32 offset,
                                             SInt32 size)
{
    const SInt64 end = SInt64{handleOffset} + size;
    if (GetHandleSize(handle) < end) {
        if (end > INT32_MAX) {
            throw OSErr{memFullErr};
        }
        SetHandleSize(handle, static_cast<Size>(end));
        const OSErr err = MemError();
        if (err != noErr) {
            throw err;
        }
    }
    const HighHandleLock lock(handle);
    GetDataFromOffset(*handle + handleOffset, offset, &size, true);
}

SInt32 VornPluginDataHandlerComponent::GetEstimatedFileSize()
{
    if (loadComplete) {
        return finalSize;
    }
    return moviePlugin != nullptr ? moviePlugin->GetEstimatedDataSize() : availableSize;
}

void VornPluginDataHandlerComponent::GetFileSize(SInt32* size)
{
    *size = GetEstimatedFileSize();
}

void VornPluginDataHandlerComponent::GetFileSize64(wide* size)
{
    *size = {0, static_cast<UInt32>(GetEstimatedFileSize())};
}

void VornPluginDataHandlerComponent::GetAvailableFileSize(SInt32* size)
{
    const bool askTheHost = moviePlugin != nullptr && loadComplete && isMpeg;
    *size = askTheHost ? moviePlugin->GetEstimatedDataSize() : availableSize;
}

void VornPluginDataHandlerComponent::GetInfoFlags(UInt32* flags)
{
    *flags = kDataHInfoFlagNeedsNetworkBandwidth;
}

void VornPluginDataHandlerComponent::GetMIMEType(StringPtr type)
{
    CopyCToPascalString(moviePlugin != nullptr ? moviePlugin->MimeType() : "", type,
                        kMaxPascalLength);
}

void VornPluginDataHandlerComponent::GetFileName(StringPtr name)
{
    CopyCToPascalString(moviePlugin != nullptr ? moviePlugin->FileName() : "", name,
                        kMaxPascalLength);
}

void VornPluginDataHandlerComponent::GetMacOSFileType(OSType* type)
{
    if (moviePlugin != nullptr) {
        *type = moviePlugin->fileType;
    }
}

Boolean VornPluginDataHandlerComponent::OnApplicationThread() const
{
    return moviePlugin != nullptr && moviePlugin->OnApplicationThread();
}

Boolean VornPluginDataHandlerComponent::OnDecodingThread() const
{
    return moviePlugin != nullptr && moviePlugin->OnDecodingThread();
}
