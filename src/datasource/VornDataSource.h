// SPDX-License-Identifier: MIT
//
// The reader through which a plug-in object reads its document's bytes.
#pragma once

#include "toolbox/Types.h"

// A concrete source supplies the three fetching operations; blocks, integers and positions are
// read through them here. Offsets and counts are bytes; nothing checks where a skip leads.
class VornDataSource
{
public:
    VornDataSource() = default;
    virtual ~VornDataSource() = default;
    VornDataSource(const VornDataSource&) = delete;
    VornDataSource& operator=(const VornDataSource&) = delete;

    // Called before the first read, and when reading is over. Nothing to do here.
    virtual void PrepareDataSource();
    virtual void TerminateDataSource();
    // Copies up to *count bytes from `offset` on to `dest`. 0, kDataOutOfRangeErr or
    // kDataNotAvailableErr; on a short read *count becomes the number copied.
    virtual OSErr GetBytes(void* dest, SInt32 offset, SInt32* count) = 0;
    // The address of `length` bytes at `offset`, good until the next call on the source. Throws
    // kDataOutOfRangeErr, which is also left in lastError, if they are not there.
    virtual UInt8* GetBytesDataPtr(SInt32 offset, SInt32 length) = 0;
    // As GetBytes, straight from where the bytes come from; `mustHaveAll` makes it throw
    // kDataNotAvailableErr for fewer bytes than asked for.
    virtual OSErr FetchDataFromSource(void* dest, SInt32 offset, SInt32* count,
                                      unsigned char mustHaveAll) = 0;

    // Blocks. The result is also left in lastError. With `advance` the next read begins behind
    // the bytes that were read; ReadByteStream always does that, whatever `advance` says.
    OSErr ReadBytes(SInt32 count, void* dest, unsigned char advance);
    OSErr ReadAvailableBytes(SInt32* count, void* dest, unsigned char advance);
    OSErr ReadByteStream(SInt32* count, void* dest, unsigned char advance);

    // Integers, little-endian, except the last, which takes the bytes in the machine's order. They
    // throw kDataOutOfRangeErr, the read offset unchanged, if the bytes are not there.
    void ReadUChar(UInt8* out, unsigned char advance);
    void ReadChar(char* out, unsigned char advance);
    void ReadShort(SInt16* out, unsigned char advance);
    void ReadUShort(UInt16* out, unsigned char advance);
    void ReadLong(SInt32* out, unsigned char advance);
    void ReadULong(UInt32* out, unsigned char advance);
    void ReadULongNative(UInt32* out, unsigned char advance);

    void SkipBytes(SInt32 n);
    void SkipToOffset(SInt32 offset);
    // Reads on to the first byte `target`; *skipped is the number of bytes before it. Then stands
    // on it if `advance`, else where it began. Only for a byte that is known to come: it never
    // ends without one unless a read throws.
    void SkipTo(UInt8 target, SInt32* skipped, unsigned char advance);
    // Asks for the length known now and stands `n` bytes before it. Throws what the fetch throws.
    void SkipToOffsetFromBufferEnd(SInt32 n);

    SInt32 readOffset = 0;          // where the next read begins
    SInt32 dataSize = 0;            // length as far as it is known
    OSErr lastError = 0;            // of the last block read or fetch that stored it
    unsigned char dataComplete = 0; // dataSize is final; set by the host for a stream

private:
    const UInt8* TakeBytes(SInt32 width, unsigned char advance);
};
