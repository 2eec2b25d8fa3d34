// SPDX-License-Identifier: MIT
//
// Shows binary PGM and PPM images: the decoder that docs/writing-a-decoder.md goes through.
#include "decoders/common/ArrivingBlock.h"
#include "decoders/common/DeclaredTypes.h"
#include "decoders/common/FirstBytes.h"
#include "decoders/common/FrameBudget.h"
#include "decoders/common/StillFrame.h"
#include "src/image/VornImagePlugin.h"
#include "src/plugin/MakeNewPlugin.h"

#include <algorithm>
#include <vector>

namespace
{

// Reads a file byte by byte; its caller fills the frame.
struct PnmReader {
    UInt8 NextByte()
    {
        while (next == end) {
            frame.Rows().Tell(); // before it waits
            if (hasAll)
                throw OSErr{kDataNotAvailableErr};
            const ArrivingBlock block(image, buffer.data());
            next = 0;
            end = block.count;
            hasAll = block.isLast;
        }
        return buffer[next++];
    }

    static bool IsSpace(UInt8 byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

    // With the comments before it, and the one white space behind it.
    SInt16 NextNumber()
    {
        UInt8 byte = NextByte();
        for (bool isComment = false; isComment || IsSpace(byte) || byte == '#'; byte = NextByte())
            isComment = byte == '#' || (isComment && byte != '\n');
        SInt32 number = 0;
        for (; byte >= '0' && byte <= '9' && number <= 0x7FFF; byte = NextByte())
            number = number * 10 + byte - '0';
        if (number == 0 || number > 0x7FFF || !IsSpace(byte))
            throw OSErr{kVornErrRenderFailed};
        return static_cast<SInt16>(number);
    }

    VornPlugin& image;
    StillFrame frame{image};
    std::vector<UInt8> buffer = std::vector<UInt8>(ArrivingBlock::kSize);
    size_t next = 0; // of the bytes in the buffer
    size_t end = 0;
    bool hasAll = false;
};

class VornPNMPlugin : public VornImagePlugin
{
public:
    using VornImagePlugin::VornImagePlugin;

    Boolean CanHandleData(const char* mimeTypeText, const char* name) override
    {
        static constexpr UInt8 kStarts[2][3] = {{'P', '5', '\n'}, {'P', '6', '\n'}};
        return IsDeclared(*this, mimeTypeText, name) || BeginsWith(*this, kStarts[0]) ||
               BeginsWith(*this, kStarts[1]);
    }

    void Render() override
    {
        PnmReader file{*this};
        const bool isPnm = file.NextByte() == 'P';
        const UInt8 kind = file.NextByte();
        const SInt16 width = file.NextNumber();
        const SInt16 height = file.NextNumber();
        const SInt16 white = file.NextNumber();
        if (!isPnm || (kind != '5' && kind != '6') || white > 255)
            throw OSErr{kVornErrRenderFailed};
        const UInt16 depth = kind == '6' ? 32 : 8;
        FrameBudget().Take(width, height, depth);
        file.frame.Add(width, height, depth, depth == 8 ? StillFrame::NewGrayRamp() : nullptr);
        PixelWriteState& pixels = file.frame.Pixels();
        // With one more, for RGBSampleTo32bitGWorld looks at the byte behind its samples.
        std::vector<UInt8> samples(width * (depth == 32 ? 3 : 1) + 1);
        for (SInt16 row = 0; row < height; ++row) {
            for (size_t i = 0; i + 1 < samples.size(); ++i) {
                const SInt32 sample = std::min<SInt32>(file.NextByte(), white);
                samples[i] = static_cast<UInt8>((sample * 255 + white / 2) / white);
            }
            if (depth == 32)
                RGBSampleTo32bitGWorld(&pixels, samples.data(), width, row, false);
            else
                SetPixMapRowPixels(&pixels, &pixels.bounds, {row, 0}, width, samples.data());
            file.frame.Rows().Note(row);
        }
        file.frame.Rows().Tell();
    }
};

} // namespace

VornPlugin* MakeNewPlugin(CFBundleRef bundle)
{
    return new VornPNMPlugin(bundle);
}
