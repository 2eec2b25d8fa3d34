// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/FrameBudget.h"
#include "decoders/common/StillFrame.h"
#include "decoders/png/PngPieces.h"

#include <png.h>

#include <span>

// Fills an image's frame from the bytes of a PNG file, through libpng's progressive reader.
//
// Under the library's frames nothing is thrown, nobody is called and nothing with a destructor
// lives, for the library gives up by a long jump: the reader comes out of it behind the header to
// add the frame, and after each block to tell of new rows.
class PngReader
{
public:
    static constexpr UInt8 kSignatures[][8] = {{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'}};

    explicit PngReader(VornPlugin& ownImage);
    ~PngReader();
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    // Decodes the file, once. Throws kDataNotAvailableErr where it ends too early,
    // kVornErrRenderFailed where it is damaged and memFullErr for an image that is too large.
    void Decode();

private:
    static void OnHeader(png_structp png, png_infop info);
    static void OnRow(png_structp png, png_bytep samples, png_uint_32 row, int pass);
    static void OnEnd(png_structp png, png_infop info);
    [[noreturn]] static void OnError(png_structp png, png_const_charp text);
    static void OnWarning(png_structp png, png_const_charp text);

    void SetUp();
    size_t DecodePieces(std::span<UInt8> bytes, bool areLast);
    bool DecodePiece(std::span<UInt8> piece, size_t& taken);
    bool Process(UInt8* bytes, size_t count);
    void ChooseDepths();
    bool ChooseDepthsWithAlpha();
    void AskForSamples();
    void BeginFrame();
    CTabHandle Colors();
    void PutRow(png_bytep samples, UInt32 row, int pass);
    void SetComment();

    VornPlugin& image_;
    StillFrame frame_;
    const FrameBudget budget_;
    PngPieces pieces_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    UInt32 width_ = 0;
    UInt32 height_ = 0;
    UInt16 depth_ = 0;
    UInt16 maskDepth_ = 0;
    bool hasPalette_ = false;
    bool isInterlaced_ = false;
    size_t leftBehindHeader_ = 0; // bytes given to Process that it has not taken
    bool isAtHeader_ = false;
    bool isComplete_ = false;
    OSErr failure_ = kVornErrRenderFailed;
};
