// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/Types.h"
#include "viewer/OutputFile.h"

#include <string>
#include <vector>

namespace viewer
{

// A WAV file of 16-bit samples that grows. All operations throw std::runtime_error with a text for
// the user. Into a pipe it is written with the sizes that stand for "as long as it lasts".
class WavWriter
{
public:
    WavWriter(const std::string& path, SInt32 sampleRate, SInt32 channels);

    // Samples of all channels in turn, in the machine's byte order.
    void Write(const SInt16* samples, size_t count);
    // Completes the header. Nothing can be written afterwards.
    void Close();

private:
    void WriteHeader(SInt64 dataBytes);

    OutputFile file_;
    SInt32 sampleRate_;
    SInt32 channels_;
    SInt64 dataBytes_ = 0;
};

} // namespace viewer
