// SPDX-License-Identifier: MIT
#include "viewer/WavWriter.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace viewer
{
namespace
{

constexpr SInt32 kBytesPerSample = 2;
constexpr SInt32 kBitsPerSample = 16;
constexpr SInt64 kHeaderBytesAfterSize = 36; // of 44, what the first size field counts
constexpr SInt64 kMostDataBytes = 0xFFFFFFFF - kHeaderBytesAfterSize;

[[noreturn]] void ThrowErrno()
{
    throw std::runtime_error(std::string("the sound could not be written: ") +
                             std::strerror(errno));
}

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
    : file_(std::fopen(path.c_str(), "wbe")), sampleRate_(sampleRate), channels_(channels)
{
    if (file_ == nullptr) {
        ThrowErrno();
    }
    WriteHeader();
}

void WavWriter::WriteHeader()
{
    const auto rate = static_cast<UInt32>(sampleRate_);
    const auto frameBytes = static_cast<UInt32>(channels_ * kBytesPerSample);
    std::vector<UInt8> header;
    Append(header, "RIFF");
    Append(header, static_cast<UInt32>(dataBytes_ + kHeaderBytesAfterSize), 4);
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
    Append(header, static_cast<UInt32>(dataBytes_), 4);
    WriteBytes(header);
}

void WavWriter::Write(const SInt16* samples, size_t count)
{
    if (dataBytes_ + static_cast<SInt64>(count) * kBytesPerSample > kMostDataBytes) {
        throw std::runtime_error("the sound could not be written: it is longer than a WAV file");
    }
    std::vector<UInt8> bytes;
    bytes.reserve(count * kBytesPerSample);
    for (size_t i = 0; i < count; ++i) {
        Append(bytes, static_cast<UInt16>(samples[i]), kBytesPerSample);
    }
    WriteBytes(bytes);
    dataBytes_ += static_cast<SInt64>(bytes.size());
}

void WavWriter::WriteBytes(const std::vector<UInt8>& bytes)
{
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) {
        ThrowErrno();
    }
}

void WavWriter::Close()
{
    std::rewind(file_.get());
    WriteHeader();
    if (std::fclose(file_.release()) != 0) {
        ThrowErrno();
    }
}

} // namespace viewer
