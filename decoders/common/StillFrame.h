// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/FrameLock.h"
#include "decoders/common/NewRows.h"

#include <optional>

// The one frame of a still image, filled while its file arrives. Its pixels stay in place for as
// long as this lives.
class StillFrame
{
public:
    explicit StillFrame(VornPlugin& ownImage) : image_(ownImage), newRows_(ownImage) {}
    StillFrame(const StillFrame&) = delete;
    StillFrame& operator=(const StillFrame&) = delete;

    // Adds the frame, white and so transparent where it has a mask, and tells the host how large
    // the image is. The colours (null for direct ones) pass to the image. Throws.
    void Add(SInt16 width, SInt16 height, UInt16 depth, CTabHandle colors = nullptr,
             UInt16 maskDepth = 0);
    bool IsAdded() const { return pixels_.has_value(); }
    // 256 colours, all black; for index `i` it has entry `i`. Throws memFullErr.
    static CTabHandle NewColors();
    // 256 greys from black to white.
    static CTabHandle NewGrayRamp();

    // What follows wants an added frame.
    PixelWriteState& Pixels() { return pixels_->State(); }
    PixelWriteState& Mask() { return mask_->State(); }
    UInt8* Row(UInt32 row) { return RowOf(Pixels(), row); }
    UInt8* MaskRow(UInt32 row) { return RowOf(Mask(), row); }
    // Rows that have been written, to be told of outside the library's frames.
    NewRows& Rows() { return newRows_; }

private:
    static UInt8* RowOf(const PixelWriteState& state, UInt32 row)
    {
        return state.baseAddr + size_t{row} * state.rowBytes;
    }

    VornPlugin& image_;
    std::optional<FrameLock> pixels_;
    std::optional<FrameLock> mask_;
    NewRows newRows_;
};
