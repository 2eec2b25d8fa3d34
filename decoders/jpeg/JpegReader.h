// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/FrameBudget.h"
#include "decoders/common/StillFrame.h"
#include "decoders/jpeg/JpegSource.h"

#include <csetjmp>

// Fills an image's frame from the bytes of a JPEG file, through libjpeg-turbo. An image in one scan
// shows its rows as they arrive. One in several scans, such as a progressive one, shows the rows of
// the first scan that way, then the whole image again as scans become complete, at most four times
// a second, and in the end once more.
//
// Under the library's frames nothing is thrown, nobody is called and nothing with a destructor
// lives, for the library gives up by a long jump.
class JpegReader
{
public:
    static constexpr UInt8 kSignatures[][3] = {{0xFF, 0xD8, 0xFF}};

    explicit JpegReader(VornPlugin& ownImage);
    ~JpegReader() { jpeg_destroy_decompress(&decoder_); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    // Decodes the file, once. Throws kDataNotAvailableErr where it ends too early,
    // kVornErrRenderFailed where it is damaged and memFullErr for an image that is too large.
    void Decode();

private:
    struct ErrorManager : jpeg_error_mgr {
        std::jmp_buf giveUp;
        bool isDamaged; // the library went on, but pixels are wrong
    };

    // Runs a step in which the library may give up; tells of new rows, and throws if it did.
    template <class Step>
    void Guarded(Step step);
    void CreateDecoder();
    OSErr Failure() const;
    void ShowWhatWasUsed();
    void DecodeNextBlock();
    bool ReadHeader();
    void BeginFrame();
    UInt64 CoefficientBytes() const;
    void SetComment();
    // These are called under a guard. True: there is no more to do, with the bytes at hand for
    // ReadRows, at all for the others.
    bool ReadRows();
    bool DecodeScans();
    bool Finish();
    void ConsumeScans();
    void BeginPass(int scan);
    void EndPass() { isInPass_ = !jpeg_finish_output(&decoder_); }

    VornPlugin& image_;
    StillFrame frame_;
    FrameBudget budget_;
    jpeg_decompress_struct decoder_{};
    ErrorManager errors_{};
    JpegSource source_;
    bool hasHeader_ = false;
    bool isInPass_ = false;
    int shownScan_ = 0; // what the last pass shows, 0 before the first
    UInt32 now_ = 0;    // in ticks
    UInt32 lastPass_ = 0;
    bool isComplete_ = false;
};
