// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/Sniffer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <optional>

namespace toolbox
{
namespace
{

constexpr size_t kTransportPacket = 188;
constexpr int kTransportPacketsWanted = 5;
constexpr int kFramesWantedForSound = 2;
constexpr int kFramesWantedOtherwise = 4;

// One audio frame header, ISO 11172-3 2.4.1.3 and its extension to lower sample rates.
struct AudioFrame {
    size_t size = 0;
    UInt32 fixedBits = 0; // sync, version, layer and sample rate: the same in every frame
};

std::optional<AudioFrame> ParseAudioFrame(const UInt8* p)
{
    static constexpr UInt16 kBitRates[2][3][15] = {
        {{0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
         {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
         {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}},
        {{0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
         {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
         {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160}}};
    static constexpr UInt32 kSampleRates[3] = {44100, 48000, 32000};
    const UInt32 header = FOUR_CHARS(p[0], p[1], p[2], p[3]);
    const UInt32 version = (header >> 19) & 3; // 0: 2.5, 2: 2, 3: 1
    const UInt32 layer = 4 - ((header >> 17) & 3);
    const UInt32 bitRateIndex = (header >> 12) & 15;
    const UInt32 sampleRateIndex = (header >> 10) & 3;
    if ((header >> 21) != 0x7FF || version == 1 || layer == 4 || bitRateIndex == 0 ||
        bitRateIndex == 15 || sampleRateIndex == 3) {
        return std::nullopt;
    }
    const bool isLow = version != 3;
    const UInt32 rate = kSampleRates[sampleRateIndex] >> (isLow ? (version == 0 ? 2 : 1) : 0);
    const UInt32 bits = kBitRates[isLow ? 1 : 0][layer - 1][bitRateIndex] * 1000U;
    const UInt32 padding = (header >> 9) & 1;
    AudioFrame frame;
    if (layer == 1) {
        frame.size = size_t{4} * (12 * bits / rate + padding);
    } else {
        const UInt32 samplesOver8 = layer == 3 && isLow ? 72 : 144;
        frame.size = samplesOver8 * bits / rate + padding;
    }
    frame.fixedBits = header & 0xFFFE0C00U;
    return frame;
}

// Whether a chain of frames begins at `at`: as many as wanted, or as many as there are up to the
// very end of the data.
bool IsAudioAt(const UInt8* bytes, size_t count, size_t at, int wanted, bool isAll)
{
    UInt32 fixedBits = 0;
    for (int seen = 0; seen < wanted; ++seen) {
        if (at + 4 > count) {
            return isAll && seen > 0 && at <= count;
        }
        const std::optional<AudioFrame> frame = ParseAudioFrame(bytes + at);
        if (!frame || (seen > 0 && frame->fixedBits != fixedBits)) {
            return false;
        }
        fixedBits = frame->fixedBits;
        at += frame->size;
    }
    return true;
}

bool IsTransportAt(const UInt8* bytes, size_t count, size_t at)
{
    int seen = 0;
    while (seen < kTransportPacketsWanted && at < count && bytes[at] == 0x47) {
        at += kTransportPacket;
        ++seen;
    }
    return seen == kTransportPacketsWanted;
}

// Start codes: 0xB3 a sequence header, 0xBA and above what only systems streams have.
StreamKind KindOfStartCode(const UInt8* p)
{
    if (p[0] != 0 || p[1] != 0 || p[2] != 1) {
        return StreamKind::kUnknown;
    }
    if (p[3] == 0xB3) {
        return StreamKind::kVideo;
    }
    const bool isSystems = p[3] >= 0xBA && p[3] < 0xF0;
    return isSystems ? StreamKind::kProgramStream : StreamKind::kUnknown;
}

Sniffed FindPictures(const UInt8* bytes, size_t count)
{
    for (size_t at = 0; at + 4 <= count; ++at) {
        if (bytes[at] == 0) {
            const StreamKind kind = KindOfStartCode(bytes + at);
            if (kind != StreamKind::kUnknown) {
                return {kind, static_cast<SInt64>(at)};
            }
        } else if (bytes[at] == 0x47 && IsTransportAt(bytes, count, at)) {
            return {StreamKind::kTransportStream, static_cast<SInt64>(at)};
        }
    }
    return {};
}

Sniffed FindSound(const UInt8* bytes, size_t count, int wanted, bool isAll)
{
    for (size_t at = 0; at + 4 <= count; ++at) {
        if (bytes[at] == 0xFF && IsAudioAt(bytes, count, at, wanted, isAll)) {
            return {StreamKind::kAudio, static_cast<SInt64>(at)};
        }
    }
    return {};
}

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

bool SoundIsExpected(const std::string& mimeType, const std::string& fileName)
{
    if (LowerCase(mimeType).starts_with("audio/")) {
        return true;
    }
    static constexpr std::array kEndings = {".mp3", ".mp2", ".mp1", ".mpa",
                                            ".m1a", ".m2a", ".mpga"};
    const std::string name = LowerCase(fileName);
    return std::any_of(kEndings.begin(), kEndings.end(),
                       [&](const char* ending) { return name.ends_with(ending); });
}

Sniffed Sniff(const UInt8* bytes, size_t count, bool expectSound, bool isAll)
{
    if (expectSound) {
        const Sniffed sound = FindSound(bytes, count, kFramesWantedForSound, isAll);
        return sound.kind != StreamKind::kUnknown ? sound : FindPictures(bytes, count);
    }
    const Sniffed pictures = FindPictures(bytes, count);
    if (pictures.kind != StreamKind::kUnknown) {
        return pictures;
    }
    return FindSound(bytes, count, kFramesWantedOtherwise, false);
}

SInt64 TagSize(const UInt8* bytes)
{
    if (std::memcmp(bytes, "ID3", 3) != 0 || bytes[3] == 0xFF || bytes[4] == 0xFF) {
        return 0;
    }
    SInt64 size = 0;
    for (size_t i = 6; i < kTagHeaderSize; ++i) {
        if ((bytes[i] & 0x80) != 0) {
            return 0;
        }
        size = (size << 7) | bytes[i];
    }
    const bool hasFooter = (bytes[5] & 0x10) != 0;
    return size + static_cast<SInt64>(kTagHeaderSize) * (hasFooter ? 2 : 1);
}

} // namespace toolbox
