// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/IndexedCanvas.h"
#include "decoders/common/NewRows.h"
#include "decoders/gif/GifReader.h"

#include <string>

// Turns the records of a GIF file into the frames of an image.
class GifDecoder
{
public:
    static constexpr UInt8 kSignatures[][6] = {{'G', 'I', 'F', '8', '7', 'a'},
                                               {'G', 'I', 'F', '8', '9', 'a'}};

    // Reads the header.
    explicit GifDecoder(VornPlugin& image);

    // Decodes all frames. What has been decoded can be shown also when it throws:
    // kVornErrRenderFailed for bad data, missing rows or no frame at all, kDataNotAvailableErr for
    // data that end too early, memFullErr for an image that is too large, or what the host failed
    // with.
    void Decode();

private:
    void ReadRecords();
    void ReadExtension();
    // All of an extension in one piece; what goes on for too long is cut off.
    std::string ReadExtensionBytes(int& function);
    void ReadImage();
    // Adds a frame for the file's current image.
    IndexedCanvas::Frame AddFrame();
    void DescribeFrame(SInt16 index);
    // The rows of the file's current image.
    void ReadRows(const IndexedCanvas::Frame& place);
    void SkipRows();
    void Finish();

    VornPlugin& image_;
    GifReader reader_;
    GifFileType& file_;
    IndexedCanvas canvas_;
    NewRows newRows_;
    CTabHandle globalColors_ = nullptr; // the image's
    GraphicsControlBlock control_;      // of the next image
    bool hasTransparency_ = false;      // some frame has
    bool lacksRows_ = false;            // some frame does
    bool hasComment_ = false;
    UInt16 plays_ = 1; // modulo 65536, which is what 0 stands for
};
