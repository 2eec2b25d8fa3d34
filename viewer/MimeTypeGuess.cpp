// SPDX-License-Identifier: MIT
#include "viewer/MimeTypeGuess.h"

#include <algorithm>
#include <string_view>

namespace viewer
{
namespace
{

constexpr size_t kTransportPacket = 188;
constexpr size_t kTransportPacketsWanted = 3;
constexpr char kTransportSync = 0x47;

struct Signature {
    std::string_view start;
    const char* mimeType;
};

constexpr Signature kSignatures[] = {
    {"ID3", "audio/mpeg"},
    {"GIF8", "image/gif"},
    {"\x89PNG", "image/png"},
    {"\xFF\xD8\xFF", "image/jpeg"},
};

// A start code: two zeros or more, a one, and what it starts.
bool IsMovie(std::string_view bytes)
{
    constexpr char kPackHeader = '\xBA';     // of a program stream
    constexpr char kSequenceHeader = '\xB3'; // of a video stream
    const size_t one = bytes.find_first_not_of('\0');
    return one != std::string_view::npos && one >= 2 && one + 1 < bytes.size() && bytes[one] == 1 &&
           (bytes[one + 1] == kPackHeader || bytes[one + 1] == kSequenceHeader);
}

bool IsTransportStream(std::string_view bytes)
{
    for (size_t packet = 0; packet < kTransportPacketsWanted; ++packet) {
        const size_t at = packet * kTransportPacket;
        if (at >= bytes.size() || bytes[at] != kTransportSync) {
            return false;
        }
    }
    return true;
}

// The mark of UTF-16, which a frame of layer I may begin with too, before a Latin letter.
bool IsText(std::string_view bytes)
{
    return bytes.size() > 3 && bytes.starts_with("\xFF\xFE") && (bytes[2] & 0x80) == 0 &&
           bytes[3] == '\0';
}

// The header of a frame: eleven bits that are set, a version, a layer, a bit rate and a sample
// rate, each of which has one value that is none.
bool IsAudioFrame(std::string_view bytes)
{
    if (bytes.size() < 3 || bytes[0] != '\xFF' || (bytes[1] & 0xE0) != 0xE0) {
        return false;
    }
    const int version = (bytes[1] >> 3) & 3;
    const int layer = (bytes[1] >> 1) & 3;
    const int bitRate = (bytes[2] >> 4) & 15;
    const int sampleRate = (bytes[2] >> 2) & 3;
    return version != 1 && layer != 0 && bitRate != 15 && sampleRate != 3;
}

} // namespace

std::string GuessMimeType(const UInt8* bytes, size_t count)
{
    const std::string_view start(reinterpret_cast<const char*>(bytes), count);
    const auto* const known =
        std::find_if(std::begin(kSignatures), std::end(kSignatures),
                     [&](const Signature& each) { return start.starts_with(each.start); });
    if (known != std::end(kSignatures)) {
        return known->mimeType;
    }
    if (IsMovie(start) || IsTransportStream(start)) {
        return "video/mpeg";
    }
    return IsAudioFrame(start) && !IsText(start) ? "audio/mpeg" : "";
}

} // namespace viewer
