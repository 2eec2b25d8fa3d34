// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MpegAudioHeader.h"

namespace toolbox
{

std::optional<MpegAudioHeader> ParseMpegAudioHeader(const UInt8* p)
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
    MpegAudioHeader frame;
    frame.sampleRate = rate;
    if (layer == 1) {
        frame.samples = 384;
        frame.size = size_t{4} * (12 * bits / rate + padding);
    } else {
        frame.samples = layer == 3 && isLow ? 576 : 1152;
        frame.size = frame.samples / 8 * bits / rate + padding;
    }
    frame.fixedBits = header & 0xFFFE0C00U;
    return frame;
}

} // namespace toolbox
