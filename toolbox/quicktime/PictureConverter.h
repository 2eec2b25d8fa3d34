// SPDX-License-Identifier: MIT
//
// From a decoder's picture to a port's pixels: one conversion, scaled if need be, straight into
// the place where it is shown.
#pragma once

#include "toolbox/quickdraw/QuickDraw.h"
#include "toolbox/quicktime/LibAV.h"

#include <vector>

namespace toolbox
{

class PictureConverter
{
public:
    // Draws the picture so that it fills `place`, where the port's clip and `clip` (null: no
    // limit) let it be seen, and adds it to the port's dirty region. A picture of a format that
    // cannot be converted is not drawn.
    void Draw(const AVFrame& picture, CGrafPort& port, const Rect& place, RgnHandle clip);

private:
    struct Geometry {
        int width = 0;
        int height = 0;
        int format = -1;
        int colorspace = -1;
        int range = -1;
        int toWidth = 0;
        int toHeight = 0;
        bool operator==(const Geometry&) const = default;
    };
    bool Prepare(const AVFrame& picture, const Rect& place);
    bool IsScaled() const;
    bool IsMadeFor(const Rect& place) const;
    void Convert(const AVFrame& picture, UInt8* pixels, SInt32 rowBytes);
    void DrawThroughScratch(const AVFrame& picture, CGrafPort& port, const Rect& place,
                            const std::vector<Rect>& visible);
    void EnlargeScratch(CGrafPort& port, const Rect& place, const Rect& visible, SInt32 rowBytes);

    Geometry geometry_;
    LibAVPtr<SwsContext> scaler_;
    std::vector<UInt8> scratch_;
};

} // namespace toolbox
