// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/Sniffer.h"

#include "toolbox/quicktime/MpegAudioHeader.h"

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

// Whether a chain of frames begins at `at`: as many as wanted, or as many as there are up to the
// very end of the data.
bool IsAudioAt(const UInt8* bytes, size_t count, size_t at, int wanted, bool isAll)
{
    UInt32 fixedBits = 0;
    for (int seen = 0; seen < wanted; ++seen) {
        if (at + kMpegAudioHeaderSize > count) {
            return isAll && seen > 0 && at <= count;
        }
        const std::optional<MpegAudioHeader> frame = ParseMpegAudioHeader(bytes + at);
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
