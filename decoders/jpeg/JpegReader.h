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
    explicit JpegReader(VornPlugin& ownImage);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    // Reads what has arrived and decodes it. Throws kDataNotAvailableErr where the file ends too
    // early, kVornErrRenderFailed for a damaged one and memFullErr for an image too large; it is
    // not to be called again then, nor once the image is complete.
    void DecodeNextBlock();
    bool IsComplete() const { return isComplete_; }

private:
    struct ErrorManager : jpeg_error_mgr {
        std::jmp_buf giveUp;
        bool isDamaged; // the library went on, but pixels are wrong
    };
    enum class Stage { Header, Start, Rows };

    [[noreturn]] static void OnError(j_common_ptr decoder);
    static void OnMessage(j_common_ptr decoder, int level);
    template <class Step>
    bool Guarded(Step step);
    OSErr Failure() const;
    void CheckOutcome() const;
    void ReadHeader();
    void BeginFrame();
    UInt64 CoefficientBytes() const;
    void SetComment();
    // These are called under a guard. True: there is no more to do, with the bytes at hand for
    // ReadRows, at all for the others.
    bool Continue();
    JDIMENSION EndOfRows() const;
    bool ReadRows();
    bool Finish();
    bool DecodeOneScan();
    bool DecodeScans();
    void ConsumeScans();
    void ShowPass();
    bool IsPassDue() const;
    bool ShowLastPass();

    VornPlugin& image_;
    StillFrame frame_;
    FrameBudget budget_;
    jpeg_decompress_struct decoder_{};
    ErrorManager errors_{};
    JpegSource source_;
    Stage stage_ = Stage::Header;
    bool isInPass_ = false;
    int shownScan_ = 0; // what the last pass shows, 0 before the first
    UInt32 now_ = 0;    // in ticks
    UInt32 lastPass_ = 0;
    bool isComplete_ = false;
};
