// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/ArrivingBlock.h"

#include <gif_lib.h>

#include <array>
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
    // Whether `size` bytes can be read without asking the host.
    bool HasAtHand(size_t size) const { return end_ - next_ >= size; }
    // Whether the library asked for more bytes than there are.
    bool RanOut() const { return ranOut_; }

private:
    static int Read(GifFileType* file, GifByteType* dest, int count);
    int Copy(GifByteType* dest, size_t count);

    VornPlugin& object_;
    GifFileType* file_ = nullptr;
    size_t next_ = 0; // of the bytes in the buffer
    size_t end_ = 0;
    bool isLastBlock_ = false;
    bool ranOut_ = false;
    std::exception_ptr failure_;
    std::array<UInt8, ArrivingBlock::kSize> buffer_;
};
