// SPDX-License-Identifier: MIT
//
// An object that is a file on disk: all of it is there from the start.
#pragma once

#include "viewer/ByteSource.h"
#include "viewer/FileDescriptor.h"

namespace viewer
{

class FileSource : public ByteSource
{
public:
    FileSource(FileDescriptor file, SInt32 size);

    void Pump(SInt32) override {}
    SInt32 Received() const override { return size_; }
    bool IsComplete() const override { return true; }
    SInt32 EstimatedBytes() const override { return size_; }
    // A file that has become shorter fails with ioErr and ends where it does.
    SInt32 Read(void* buffer, SInt32 offset, SInt32 count) override;
    FileDescriptor KeptFile() const override;

private:
    FileDescriptor file_;
    SInt32 size_;
};

} // namespace viewer
