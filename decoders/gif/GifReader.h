// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/ByteStream.h"

#include <gif_lib.h>

#include <exception>

// A GIF file that the library reads from an object's data while they arrive.
//
// It asks for bytes through a C function, under which the host may let other threads run and
// anything may fail. Nothing is thrown through the library's frames: it is made to return with an
// error, and Check throws behind it.
class GifReader
{
public:
    // Reads the header with the global colour table. Throws as Check does.
    explicit GifReader(VornPlugin& object);
    ~GifReader() { DGifCloseFile(file_, nullptr); }
    GifReader(const GifReader&) = delete;
    GifReader& operator=(const GifReader&) = delete;

    GifFileType* File() const { return file_; }
    // Throws if the result of a call of the library is GIF_ERROR: what went wrong in reading,
    // kDataNotAvailableErr where the data end too early, kVornErrRenderFailed where they are bad.
    void Check(int result);
    // The kind of the next record. Many files lack a trailer: data that end here are as good.
    GifRecordType NextRecord();
    // The bytes that the library has not asked for.
    const ByteStream& Bytes() const { return bytes_; }

private:
    static int Read(GifFileType* file, GifByteType* dest, int count);

    ByteStream bytes_;
    GifFileType* file_ = nullptr;
    std::exception_ptr failure_; // what went wrong in reading
};
