// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/FrameBudget.h"
#include "decoders/common/NewRows.h"
#include "decoders/gif/GifReader.h"

#include <string>

// Turns the records of a GIF file into the frames of an image.
//
// The first frame is the whole canvas, so that it can be shown while it arrives; each of the others
// has the size of what it changes. A first image that reaches beyond the canvas enlarges it, as in
// browsers; later ones are cut off at its edges.
class GifDecoder
{
public:
    // Reads the header.
    explicit GifDecoder(VornPlugin& image);

    // Decodes all frames. What has been decoded can be shown also when it throws:
    // kVornErrRenderFailed for bad data, missing rows or no frame at all, kDataNotAvailableErr for
    // data that end too early, memFullErr for an image that is too large, or what the host failed
    // with.
    void Run();

private:
    void ReadRecords();
    void ReadExtension();
    // All of an extension in one piece; what goes on for too long is cut off.
    std::string ReadExtensionBytes(int& function);
    void ReadImage();
    // The rows of the file's current image, into the part `target` of the frame.
    void ReadRows(SInt16 index, const Rect& target);
    void SkipRows();
    // Reports the size, unless it is nothing yet. Throws memFullErr if it is too large.
    void SetCanvas(SInt32 width, SInt32 height);
    // Adds a frame for the current image that lies at `place` of the canvas.
    SInt16 AddFrame(const Rect& place, bool hasMask);
    void DescribeFrame(SInt16 index, Point position);
    void Finish();

    VornPlugin& image_;
    GifReader reader_;
    GifFileType& file_;
    FrameBudget budget_;
    NewRows newRows_;
    Rect canvas_{};
    CTabHandle globalColors_ = nullptr; // the image's
    SInt32 frameCount_ = 0;
    GraphicsControlBlock control_; // of the next image
    bool hasTransparency_ = false; // some frame has
    bool lacksRows_ = false;       // some frame does
    bool hasComment_ = false;
    UInt16 plays_ = 1; // modulo 65536, which is what 0 stands for
};
