// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/ByteStream.h"
#include "decoders/common/IndexedCanvas.h"
#include "decoders/common/LzwDecoder.h"
#include "decoders/common/NewRows.h"
#include "decoders/common/Palette.h"

#include <optional>

// Turns the records of a GIF file into the frames of an image.
class GifDecoder
{
public:
    static constexpr UInt8 kSignatures[][6] = {{'G', 'I', 'F', '8', '7', 'a'},
                                               {'G', 'I', 'F', '8', '9', 'a'}};

    explicit GifDecoder(VornPlugin& image)
        : image_(image), bytes_(image), canvas_(image), newRows_(image)
    {
    }

    // Decodes all frames. What has been decoded can be shown also when it throws:
    // kVornErrRenderFailed for bad data, missing rows or no frame at all, kDataNotAvailableErr for
    // data that end too early, memFullErr for an image that is too large, or what the host failed
    // with.
    void Decode();

private:
    // What an extension says of the next picture.
    struct Control {
        UInt8 flags = 0;
        UInt16 delay = 0;
        SInt16 transparent = -1;
    };
    struct Picture {
        IndexedCanvas::Place place;
        bool isInterlaced;
        // The row that comes n-th in the file.
        SInt32 RowAt(SInt32 n) const;
    };

    void ReadHeader();
    void ReadRecords();
    void ReadExtension();
    void ReadImage();
    void ReadRows(const Picture& picture, const IndexedCanvas::Frame& place);
    Palette ReadPalette(UInt8 flags);
    // The data of a record are in parts; an empty one is the last.
    std::span<const UInt8> NextPart();
    const UInt8* NextRow();
    void DescribeFrame(SInt16 index);
    void Finish();

    VornPlugin& image_;
    ByteStream bytes_;
    std::array<UInt8, 255> part_;
    bool hasParts_ = false; // the record that is being read
    LzwDecoder codes_;
    IndexedCanvas canvas_;
    NewRows newRows_;
    CTabHandle globalColors_ = nullptr; // the image's
    std::optional<RGBColor> background_;
    Control control_;
    bool hasTransparency_ = false; // some frame has
    bool lacksRows_ = false;       // some frame does
    bool hasComment_ = false;
    UInt16 plays_ = 1; // modulo 65536, which is what 0 stands for
};
