// SPDX-License-Identifier: MIT
//
// The spool file: filled by Render on the decoding thread, read for QuickTime on the others.
#include "src/datasource/VornDataSource.h"
#include "src/movie/VornMoviePlugin.h"
#include "src/util/FileNames.h"
#include "src/util/HighHandleLock.h"
#include "src/util/Strings.h"
#include "toolbox/Errors.h"
#include "toolbox/memory/Memory.h"

#include <algorithm>

namespace
{

constexpr Size kSpoolChunkSize = 16384;
constexpr UInt32 kMaxFileNameLength = 31;
constexpr Size kTaskingStackSize = 65536;

void ThrowIfError(OSErr err)
{
    if (err != noErr) {
        throw err;
    }
}

} // namespace

void VornMoviePlugin::Render()
{
    const ThreadEntryUPP entry = NewThreadEntryUPP(TaskingThreadEntry);
    GetPort(&moviePort);
    CreateMovieFile();
    ThrowIfError(
        NewThread(kCooperativeThread, entry, this, kTaskingStackSize, 0, nullptr, &taskingThread));
    while (!allDataSpooled) {
        const SInt32 before = bytesSpooled;
        SpoolMovieToFile();
        if (bytesSpooled > before) {
            NotifyListenersProgress(bytesSpooled);
        }
    }
    CloseMovieFile();
    AdjustMovieLength();
    NotifyListenersComplete(bytesSpooled);
}

void VornMoviePlugin::CreateMovieFile()
{
    char name[kMaxFileNameLength + 1];
    StrCopySafe(name, FileName(), kMaxFileNameLength);
    FSSpec spec{};
    ThrowIfError(GetTempFileSpec(name, &spec));
    spoolFileSpec = spec;
    ThrowIfError(FSpCreate(&spec, creator, fileType, smSystemScript));
    spoolFileCreated = true;
}

void VornMoviePlugin::SpoolMovieToFile()
{
    if (!spoolFileCreated) {
        throw OSErr{paramErr};
    }
    OpenSpoolFileForWriting();
    if (spoolBuffer == nullptr) {
        spoolBuffer = NewHandle(kSpoolChunkSize);
        ThrowIfError(spoolBuffer == nullptr ? OSErr{memFullErr} : OSErr{noErr});
    }
    SInt32 count = kSpoolChunkSize;
    {
        const HighHandleLock lock(spoolBuffer);
        dataSource->ReadAvailableBytes(&count, *spoolBuffer, true);
    }
    ThrowIfError(FSWrite(spoolWriteRefNum, &count, *spoolBuffer));
    bytesSpooled += count;
    // Whatever the reason, nothing more comes; what the last read brought has been written.
    if (dataSource->lastError != noErr) {
        allDataSpooled = true;
    }
}

void VornMoviePlugin::OpenSpoolFileForWriting()
{
    if (spoolWriteRefNum == -1) {
        SInt16 refNum = -1;
        ThrowIfError(FSpOpenDF(&spoolFileSpec, fsRdWrPerm, &refNum));
        spoolWriteRefNum = refNum;
    }
}

void VornMoviePlugin::CloseMovieFile()
{
    if (spoolWriteRefNum != -1) {
        const OSErr err = FSClose(spoolWriteRefNum);
        spoolWriteRefNum = -1;
        ThrowIfError(err);
    }
}

void VornMoviePlugin::GetMovieData(void* buffer, SInt32 offset, SInt32* ioCount,
                                   unsigned char waitForData)
{
    const SInt32 want = *ioCount;
    OpenSpoolFileForReading();
    const SInt64 end = SInt64{offset} + want;
    if (end > bytesSpooled) {
        if (!waitForData) {
            throw SInt32{allDataSpooled ? eofErr : notEnoughDataErr};
        }
        SpoolMovieData(end);
    }
    *ioCount = ReadSpooledBytes(buffer, offset, want);
}

void VornMoviePlugin::OpenSpoolFileForReading()
{
    if (spoolReadRefNum == -1) {
        SInt16 refNum = -1;
        ThrowIfError(FSpOpenDF(&spoolFileSpec, fsRdPerm, &refNum));
        spoolReadRefNum = refNum;
    }
}

// The number of bytes read. An offset past the end asks the File Manager for a negative count and
// fails with what it says to that.
SInt32 VornMoviePlugin::ReadSpooledBytes(void* buffer, SInt32 offset, SInt32 want)
{
    SInt32 eof = 0;
    ThrowIfError(GetEOF(spoolReadRefNum, &eof));
    SInt32 count = static_cast<SInt32>(std::min<SInt64>(want, SInt64{eof} - offset));
    ThrowIfError(SetFPos(spoolReadRefNum, fsFromStart, offset));
    ThrowIfError(FSRead(spoolReadRefNum, &count, buffer));
    return count;
}

void VornMoviePlugin::SpoolMovieData(SInt64 targetBytes)
{
    while (bytesSpooled < targetBytes && !allDataSpooled) {
        YieldToAnyThread();
    }
}

void VornMoviePlugin::DisposeDecodingData()
{
    DisposeHandle(spoolBuffer);
    spoolBuffer = nullptr;
}
