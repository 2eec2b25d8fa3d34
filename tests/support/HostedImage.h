// SPDX-License-Identifier: MIT
//
// Objects of a built image bundle, driven through its exported names only.
#pragma once

#include "src/image/ImageFunctions.h"
#include "tests/support/ArrivalHost.h"
#include "tests/support/BuiltBundle.h"

#include <string>
#include <vector>

namespace test
{

// The pixels of a rectangle, 0x00RRGGBB each, row by row.
struct Picture {
    SInt32 width = 0;
    SInt32 height = 0;
    std::vector<UInt32> pixels;

    UInt32 At(SInt32 row, SInt32 column) const
    {
        return pixels[static_cast<size_t>(row * width + column)];
    }
    bool operator==(const Picture&) const = default;
};

// The largest difference of a component; 256 if the sizes differ.
int Difference(const Picture& a, const Picture& b);

constexpr UInt32 kWhitePage = 0xFFFFFF;

// Of an image, with the functions by which what a frame is made of can be seen.
class ImageBundle : public BuiltBundle
{
public:
    explicit ImageBundle(const std::string& name);

    decltype(&GetFrameGWorld) getFrameGWorld = nullptr;
    decltype(&GetFrameMaskGWorld) getFrameMaskGWorld = nullptr;
    decltype(&GetImageCurFrame) getCurrentFrame = nullptr;
};

// One object, and a page (a window's port) on which it stands at the top left in its own size.
class HostedImage
{
public:
    // All bytes are there when first asked for, unless they are to arrive in pieces or the host's
    // plan is changed.
    HostedImage(const ImageBundle& ownBundle, std::vector<UInt8> bytes);
    ~HostedImage();
    HostedImage(const HostedImage&) = delete;
    HostedImage& operator=(const HostedImage&) = delete;

    // So many bytes more at each of the object's requests.
    void ArriveInPieces(SInt32 size);
    OSErr Decode() { return bundle_.decodeObject(object_); }
    // What the page shows when the object has been displayed on `paper`, a page of that size and
    // colour; only its new rows if `partial`.
    Picture Display(SInt32 width, SInt32 height, UInt32 paper = kWhitePage, bool partial = false);
    std::string Comment() const;
    // Bits a pixel of the frame and of its mask; 0: there is none.
    int Depth() const;
    int MaskDepth() const;
    // The errors that the host was told of, and whether it was told anything beginning with `text`.
    bool WasTold(const std::string& text) const;

    ArrivalHost host;

private:
    const ImageBundle& bundle_;
    VornPlugin* object_ = nullptr;
};

} // namespace test
