// SPDX-License-Identifier: MIT
#include "viewer/WavWriter.h"

namespace viewer
{
namespace
{

constexpr SInt32 kBytesPerSample = 2;
constexpr SInt32 kBitsPerSample = 16;
constexpr SInt64 kHeaderBytesAfterSize = 36; // of 44, what the first size field counts
constexpr SInt64 kMostDataBytes = 0xFFFFFFFF - kHeaderBytesAfterSize;

// A WAV file is little-endian.
void Append(std::vector<UInt8>& bytes, UInt32 value, int width)
{
    for (int i = 0; i < width; ++i) {
        bytes.push_back(static_cast<UInt8>(value >> (8 * i)));
    }
}

void Append(std::vector<UInt8>& bytes, const char* text)
{
    bytes.insert(bytes.end(), text, text + 4);
}

} // namespace

WavWriter::WavWriter(const std::string& path, SInt32 sampleRate, SInt32 channels)
    : file_(path, "the sound"), sampleRate_(sampleRate), channels_(channels)
{
    WriteHeader(file_.CanRewind() ? 0 : kMostDataBytes);
}

void WavWriter::WriteHeader(SInt64 dataBytes)
{
    const auto rate = static_cast<UInt32>(sampleRate_);
    const auto frameBytes = static_cast<UInt32>(channels_ * kBytesPerSample);
    std::vector<UInt8> header;
    Append(header, "RIFF");
    Append(header, static_cast<UInt32>(dataBytes + kHeaderBytesAfterSize), 4);
    Append(header, "WAVE");
    Append(header, "fmt ");
    Append(header, 16, 4); // size of this part
    Append(header, 1, 2);  // plain samples
    Append(header, static_cast<UInt32>(channels_), 2);
    Append(header, rate, 4);
    Append(header, rate * frameBytes, 4);
    Append(header, frameBytes, 2);
    Append(header, kBitsPerSample, 2);
    Append(header, "data");
    Append(header, static_cast<UInt32>(dataBytes), 4);
    file_.Write(header.data(), header.size());
}

void WavWriter::Write(const SInt16* samples, size_t count)
{
    if (dataBytes_ + static_cast<SInt64>(count) * kBytesPerSample > kMostDataBytes) {
        file_.Fail("it is longer than a WAV file");
    }
    std::vector<UInt8> bytes;
    bytes.reserve(count * kBytesPerSample);
    for (size_t i = 0; i < count; ++i) {
        Append(bytes, static_cast<UInt16>(samples[i]), kBytesPerSample);
    }
    file_.Write(bytes.data(), bytes.size());
    dataBytes_ += static_cast<SInt64>(bytes.size());
}

void WavWriter::Close()
{
    if (file_.Rewind()) {
        WriteHeader(dataBytes_);
    }
    file_.Commit();
}

} // namespace viewer
