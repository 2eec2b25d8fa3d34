// SPDX-License-Identifier: MIT
//
// An object that comes through a pipe, a FIFO or a terminal.
#pragma once

#include "viewer/ByteSource.h"
#include "viewer/FileDescriptor.h"

#include <array>

namespace viewer
{

// What was read is kept in a file without a name, because an object may be read again from its
// start, and because memory should not grow with the object.
class PipeSource : public ByteSource
{
public:
    // Throws SourceFailure if there is no place to keep the bytes.
    explicit PipeSource(FileDescriptor pipe);

    void Pump(SInt32 end) override;
    SInt32 Received() const override { return received_; }
    bool IsComplete() const override { return complete_; }
    SInt32 EstimatedBytes() const override { return complete_ ? received_ : -1; }
    SInt32 Read(void* buffer, SInt32 offset, SInt32 count) override;
    int DescriptorToWaitOn() const override { return isBehind_ ? pipe_.Get() : -1; }
    // Closes the pipe, so that its writer knows.
    void StopReceiving() override;

private:
    enum class Input { kNone, kBytes, kEnd };
    Input LookForInput();
    void TakeBlock();
    void Keep(const UInt8* bytes, size_t count);
    void End(SourceFailure failure);

    FileDescriptor pipe_;
    FileDescriptor kept_;
    SInt32 received_ = 0;
    bool complete_ = false;
    bool isBehind_ = false;
    std::array<UInt8, 65536> block_;
};

} // namespace viewer
