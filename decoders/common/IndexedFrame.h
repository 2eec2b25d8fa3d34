// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/FrameLock.h"
#include "src/plugin/VornPluginABI.h"

#include <optional>

// A frame of indices, with a one-bit mask or without, while rows are written into it. Its pixels
// stay in place for as long as this lives.
class IndexedFrame
{
public:
    // `transparent` is the index that the mask makes transparent, -1 for none.
    IndexedFrame(VornPlugin& image, SInt16 index, SInt16 transparent);

    // Writes `count` indices from `start` on, if all of them lie in the frame.
    void WriteRow(Point start, SInt16 count, const UInt8* indices);
    bool HasMask() const { return mask_.has_value(); }
    // Gives a frame without a mask one that shows `rows` of its rows, the n-th of which is
    // `rowAt(n)`; the others become transparent. Without memory for it they stay white.
    template <class RowAt>
    void ShowOnly(SInt32 rows, const RowAt& rowAt)
    {
        AddMask();
        for (SInt32 n = 0; mask_ && n < rows; ++n)
            ShowRow(rowAt(n));
    }

private:
    void AddMask();
    void ShowRow(SInt32 row);

    VornPlugin& image_;
    const SInt16 index_;
    const SInt16 transparent_;
    FrameLock pixels_;
    std::optional<FrameLock> mask_;
};
