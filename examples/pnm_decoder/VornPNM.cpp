// SPDX-License-Identifier: MIT
//
// Shows binary PGM and PPM images: the decoder that docs/writing-a-decoder.md goes through.
#include "decoders/common/DecoderPlugin.h"
#include "decoders/common/FrameBudget.h"
#include "decoders/common/StillFrame.h"
#include "src/datasource/ReadingFunctions.h"
#include "src/plugin/MakeNewPlugin.h"

#include <algorithm>
#include <vector>

struct PnmReader {
    static constexpr UInt8 kSignatures[][3] = {{'P', '5', '\n'}, {'P', '6', '\n'}};

    explicit PnmReader(VornPlugin& ownImage) : image(ownImage) {}

    void Decode()
    {
        const UInt8 kind = NextByte() == 'P' ? NextByte() : UInt8{0};
        const SInt16 width = NextNumber();
        const SInt16 height = NextNumber();
        const SInt16 white = NextNumber();
        if ((kind != '5' && kind != '6') || white > 255)
            throw OSErr{kVornErrRenderFailed};
        const UInt16 depth = kind == '6' ? 32 : 8;
        FrameBudget().Take(static_cast<UInt64>(width), static_cast<UInt64>(height), depth);
        StillFrame frame(image);
        frame.Add(width, height, depth, depth == 8 ? StillFrame::NewGrayRamp() : nullptr);
        PixelWriteState& pixels = frame.Pixels();
        // With one more, for RGBSampleTo32bitGWorld looks at the byte behind its samples.
        std::vector<UInt8> samples(static_cast<size_t>(width) * (depth == 32 ? 3 : 1) + 1);
        for (SInt16 row = 0; row < height; ++row) {
            for (size_t i = 0; i + 1 < samples.size(); ++i)
                samples[i] = static_cast<UInt8>(std::min<SInt32>(NextByte(), white) * 255 / white);
            if (depth == 32)
                RGBSampleTo32bitGWorld(&pixels, samples.data(), width, row, false);
            else
                SetPixMapRowPixels(&pixels, &pixels.bounds, {row, 0}, width, samples.data());
            frame.Rows().Note(row);
            frame.Rows().Tell();
        }
    }

    UInt8 NextByte()
    {
        UInt8 byte = 0;
        SInt32 count = 1;
        ReadAvailableBytes(&image, &count, &byte, true);
        if (count != 1)
            throw OSErr{kDataNotAvailableErr};
        return byte;
    }

    // With the comments and white space before it, and the one white space behind it.
    SInt16 NextNumber()
    {
        UInt8 byte = NextByte();
        for (bool isComment = false; isComment || byte <= ' ' || byte == '#'; byte = NextByte())
            isComment = byte == '#' || (isComment && byte != '\n');
        SInt32 number = 0;
        for (; byte >= '0' && byte <= '9' && number <= 0x7FFF; byte = NextByte())
            number = number * 10 + byte - '0';
        if (number == 0 || number > 0x7FFF || byte > ' ')
            throw OSErr{kVornErrRenderFailed};
        return static_cast<SInt16>(number);
    }

    VornPlugin& image;
};

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new DecoderPlugin<PnmReader>(bundle);
}
