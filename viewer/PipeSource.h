// SPDX-License-Identifier: MIT
//
// An object that comes through a pipe, a FIFO or a terminal.
#pragma once

#include "viewer/SpooledSource.h"

#include <array>

namespace viewer
{

class PipeSource : public SpooledSource
{
public:
    // Throws SourceFailure if there is no place to keep the bytes.
    explicit PipeSource(FileDescriptor pipe);

    void Pump(SInt32 end) override;
    int DescriptorToWaitOn() const override { return isBehind_ ? pipe_.Get() : -1; }
    // Closes the pipe, so that its writer knows.
    void StopReceiving() override;

private:
    enum class Input { kNone, kBytes, kEnd };
    Input LookForInput();
    void TakeBlock();

    FileDescriptor pipe_;
    bool isBehind_ = false;
    std::array<UInt8, 65536> block_;
};

} // namespace viewer
