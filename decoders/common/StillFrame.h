// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/FrameLock.h"
#include "src/image/ImageFunctions.h"

#include <optional>

// The one frame of a still image, filled while its file arrives. Its pixels stay in place for as
// long as this lives.
class StillFrame
{
public:
    explicit StillFrame(VornPlugin& ownImage) : image_(ownImage) {}
    StillFrame(const StillFrame&) = delete;
    StillFrame& operator=(const StillFrame&) = delete;

    // Adds the frame, white and so transparent where it has a mask, and tells the host how large
    // the image is. The colours (null for direct ones) pass to the image. Throws.
    void Add(SInt16 width, SInt16 height, UInt16 depth, CTabHandle colors = nullptr,
             UInt16 maskDepth = 0);
    // 256 colours, all black; for index `i` it has entry `i`. Throws memFullErr.
    static CTabHandle NewColors();
    // 256 greys from black to white.
    static CTabHandle NewGrayRamp();

    // What follows wants an added frame.
    PixelWriteState& Pixels() { return pixels_->State(); }
    PixelWriteState& Mask() { return mask_->State(); }
    UInt8* Row(UInt32 row) { return RowOf(Pixels(), row); }
    UInt8* MaskRow(UInt32 row) { return RowOf(Mask(), row); }
    // A row has been written. Throws nothing and calls nobody, so it may be called under a
    // library's frames.
    void NoteRow(SInt32 row) noexcept;
    // Tells image and host of the rows noted since the last call. Only outside a library's frames:
    // the host may do as it likes.
    void TellOfNewRows();

private:
    static UInt8* RowOf(const PixelWriteState& state, UInt32 row)
    {
        return state.baseAddr + size_t{row} * state.rowBytes;
    }

    VornPlugin& image_;
    std::optional<FrameLock> pixels_;
    std::optional<FrameLock> mask_;
    SInt32 firstNew_ = 0;
    SInt32 endNew_ = 0; // not above firstNew_: no new row
};
