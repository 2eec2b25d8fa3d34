// SPDX-License-Identifier: MIT
//
// What every source does whose bytes do not lie in a file yet.
#pragma once

#include "viewer/ByteSource.h"

namespace viewer
{

// What came is kept in a file without a name, because an object may be read again from its start,
// and because memory should not grow with the object.
class SpooledSource : public ByteSource
{
public:
    SInt32 Received() const override { return received_; }
    bool IsComplete() const override { return complete_; }
    SInt32 EstimatedBytes() const override { return complete_ ? received_ : -1; }
    SInt32 Read(void* buffer, SInt32 offset, SInt32 count) override;
    FileDescriptor KeptFile() const override;

protected:
    // Throws SourceFailure if there is no place to keep the bytes.
    SpooledSource();
    // Keeps them behind what is there. False if they cannot be kept: the source has then ended.
    bool Keep(const void* bytes, size_t count);
    void Complete() { complete_ = true; }
    void End(SourceFailure failure);

private:
    FileDescriptor kept_;
    SInt32 received_ = 0;
    bool complete_ = false;
};

} // namespace viewer
