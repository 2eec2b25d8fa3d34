// SPDX-License-Identifier: MIT
#include "decoders/jpeg/JpegReader.h"

#include "decoders/common/ArrivingBlock.h"
#include "decoders/common/CommentText.h"
#include "toolbox/events/Events.h"

#include <algorithm>
#include <array>
#include <jerror.h>

namespace
{

constexpr UInt32 kTicksBetweenPasses = 15;
// No encoder writes that many; a file of a few bytes a scan would keep the processor busy.
constexpr int kMostScans = 500;
constexpr unsigned kLongestComment = 4096;
constexpr JDIMENSION kRowsAtOnce = 16;

// Turns a row of C, M, Y, K samples in its place into 32-bit pixels (the bytes x, R, G, B).
// `isInverted`, as Adobe's programs write: 255 is no ink.
void WidePixelsFromCmyk(UInt8* row, size_t width, bool isInverted)
{
    const UInt32 flip = isInverted ? 0 : 0xFF;
    for (size_t i = 0; i < width; ++i) {
        UInt8* const pixel = row + i * 4;
        const UInt32 cyan = pixel[0] ^ flip;
        const UInt32 magenta = pixel[1] ^ flip;
        const UInt32 yellow = pixel[2] ^ flip;
        const UInt32 light = pixel[3] ^ flip;
        pixel[0] = 0xFF;
        pixel[1] = static_cast<UInt8>(cyan * light / 255);
        pixel[2] = static_cast<UInt8>(magenta * light / 255);
        pixel[3] = static_cast<UInt8>(yellow * light / 255);
    }
}

} // namespace

JpegReader::JpegReader(VornPlugin& ownImage) : image_(ownImage), frame_(ownImage), source_(decoder_)
{
    decoder_.err = jpeg_std_error(&errors_);
    errors_.error_exit = OnError;
    errors_.emit_message = OnMessage;
    jpeg_source_mgr* const source = decoder_.src;
    if (!Guarded([this] { jpeg_create_decompress(&decoder_); }))
        throw OSErr{memFullErr};
    decoder_.src = source;
    jpeg_save_markers(&decoder_, JPEG_COM, kLongestComment);
}

JpegReader::~JpegReader()
{
    jpeg_destroy_decompress(&decoder_);
}

void JpegReader::OnError(j_common_ptr decoder)
{
    std::longjmp(static_cast<ErrorManager*>(decoder->err)->giveUp, 1);
}

// The library recovers from what it warns of, but from some of it with wrong pixels.
void JpegReader::OnMessage(j_common_ptr decoder, int level)
{
    if (level >= 0)
        return;
    auto* const errors = static_cast<ErrorManager*>(decoder->err);
    switch (errors->msg_code) {
    case JWRN_ARITH_BAD_CODE:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_MUST_RESYNC:
        errors->isDamaged = true;
        break;
    default:
        break;
    }
}

template <class Step>
bool JpegReader::Guarded(Step step)
{
    if (setjmp(errors_.giveUp) != 0)
        return false;
    step();
    return true;
}

OSErr JpegReader::Failure() const
{
    if (errors_.msg_code == JERR_OUT_OF_MEMORY)
        return memFullErr;
    return source_.WasTooShort() ? OSErr{kDataNotAvailableErr} : OSErr{kVornErrRenderFailed};
}

void JpegReader::DecodeNextBlock()
{
    source_.ReadBlock(image_);
    now_ = TickCount();
    if (stage_ == Stage::Header)
        ReadHeader();
    if (stage_ == Stage::Header)
        return;
    // The library cannot stop in the middle of arithmetic codes.
    if (decoder_.arith_code && !source_.HasAll()) {
        budget_.TakeBytes(ArrivingBlock::kSize);
        return;
    }
    bool isDone = false;
    const bool isFine = Guarded([this, &isDone] { isDone = Continue(); });
    frame_.Rows().Tell();
    if (!isFine)
        throw Failure();
    if (isDone)
        CheckOutcome();
    isComplete_ = isDone;
}

void JpegReader::CheckOutcome() const
{
    // Where nothing but the end mark of a plain scan is missing the image is whole.
    const bool needsEndMark = decoder_.buffered_image || decoder_.arith_code;
    if (source_.WasTooShort() && (errors_.isDamaged || needsEndMark))
        throw OSErr{kDataNotAvailableErr};
    if (errors_.isDamaged)
        throw OSErr{kVornErrRenderFailed};
}

void JpegReader::ReadHeader()
{
    int found = JPEG_SUSPENDED;
    if (!Guarded([this, &found] { found = jpeg_read_header(&decoder_, TRUE); }))
        throw Failure();
    if (found != JPEG_HEADER_OK)
        return;
    stage_ = Stage::Start;
    BeginFrame();
}

void JpegReader::BeginFrame()
{
    switch (decoder_.jpeg_color_space) {
    case JCS_GRAYSCALE:
        decoder_.out_color_space = JCS_GRAYSCALE;
        break;
    case JCS_RGB:
    case JCS_YCbCr:
        decoder_.out_color_space = JCS_EXT_XRGB;
        break;
    case JCS_CMYK:
    case JCS_YCCK:
        decoder_.out_color_space = JCS_CMYK;
        break;
    default:
        throw OSErr{kVornErrRenderFailed};
    }
    const bool isGray = decoder_.out_color_space == JCS_GRAYSCALE;
    const UInt16 depth = isGray ? 8 : 32;
    decoder_.buffered_image = jpeg_has_multiple_scans(&decoder_);
    budget_.Take(decoder_.image_width, decoder_.image_height, depth);
    if (decoder_.buffered_image)
        budget_.TakeBytes(CoefficientBytes());
    SetComment();
    frame_.Add(static_cast<SInt16>(decoder_.image_width),
               static_cast<SInt16>(decoder_.image_height), depth,
               isGray ? StillFrame::NewGrayRamp() : nullptr);
}

// What the library keeps of an image in several scans.
UInt64 JpegReader::CoefficientBytes() const
{
    UInt64 blocks = 0;
    for (int i = 0; i < decoder_.num_components; ++i) {
        const jpeg_component_info& component = decoder_.comp_info[i];
        const auto across = static_cast<UInt64>(component.h_samp_factor);
        const auto down = static_cast<UInt64>(component.v_samp_factor);
        blocks += (component.width_in_blocks + across - 1) / across * across *
                  ((component.height_in_blocks + down - 1) / down * down);
    }
    return blocks * sizeof(JBLOCK);
}

void JpegReader::SetComment()
{
    for (const jpeg_marker_struct* marker = decoder_.marker_list; marker != nullptr;
         marker = marker->next) {
        if (marker->marker != JPEG_COM || marker->data_length == 0)
            continue;
        const std::string_view text(reinterpret_cast<const char*>(marker->data),
                                    marker->data_length);
        SetObjectComment(&image_, CommentFromText(text).c_str());
        return;
    }
}

bool JpegReader::Continue()
{
    if (stage_ == Stage::Start) {
        if (!jpeg_start_decompress(&decoder_))
            return false;
        stage_ = Stage::Rows;
    }
    return decoder_.buffered_image ? DecodeScans() : DecodeOneScan();
}

// After the end of the bytes there would be grey without end; its rows stay as they are.
JDIMENSION JpegReader::EndOfRows() const
{
    return std::min(decoder_.output_height, source_.RowsBeforeEnd());
}

bool JpegReader::ReadRows()
{
    std::array<JSAMPROW, kRowsAtOnce> rows;
    while (decoder_.output_scanline < EndOfRows()) {
        const JDIMENSION first = decoder_.output_scanline;
        const JDIMENSION wanted = std::min(kRowsAtOnce, EndOfRows() - first);
        for (JDIMENSION i = 0; i < wanted; ++i)
            rows[i] = frame_.Row(first + i);
        const JDIMENSION count = jpeg_read_scanlines(&decoder_, rows.data(), wanted);
        if (count == 0)
            return false;
        for (JDIMENSION i = 0; i < count; ++i) {
            if (decoder_.out_color_space == JCS_CMYK)
                WidePixelsFromCmyk(rows[i], decoder_.output_width, decoder_.saw_Adobe_marker);
            frame_.Rows().Note(static_cast<SInt32>(first + i));
        }
    }
    return true;
}

bool JpegReader::DecodeOneScan()
{
    return ReadRows() && Finish();
}

// True also for an image that ends with the bytes: there is nothing to finish then.
bool JpegReader::Finish()
{
    return decoder_.output_scanline < decoder_.output_height || jpeg_finish_decompress(&decoder_);
}

bool JpegReader::DecodeScans()
{
    ConsumeScans();
    if (jpeg_input_complete(&decoder_))
        return ShowLastPass();
    ShowPass();
    return false;
}

void JpegReader::ConsumeScans()
{
    int status = JPEG_ROW_COMPLETED;
    while (status != JPEG_SUSPENDED && status != JPEG_REACHED_EOI) {
        status = jpeg_consume_input(&decoder_);
        if (decoder_.input_scan_number > kMostScans)
            ERREXIT(&decoder_, JERR_BAD_PROGRESSION);
    }
}

bool JpegReader::IsPassDue() const
{
    return shownScan_ == 0 ||
           (decoder_.input_scan_number - 1 > shownScan_ && now_ - lastPass_ >= kTicksBetweenPasses);
}

void JpegReader::ShowPass()
{
    if (!isInPass_) {
        if (!IsPassDue())
            return;
        // A scan that is complete never has to wait; the first one shows what there is.
        const int scan = std::max(1, decoder_.input_scan_number - 1);
        if (!jpeg_start_output(&decoder_, scan))
            return;
        isInPass_ = true;
        shownScan_ = scan;
        lastPass_ = now_;
    }
    if (ReadRows() && jpeg_finish_output(&decoder_))
        isInPass_ = false;
}

bool JpegReader::ShowLastPass()
{
    if (isInPass_)
        jpeg_finish_output(&decoder_);
    isInPass_ = false;
    jpeg_start_output(&decoder_, decoder_.input_scan_number);
    ReadRows();
    if (decoder_.output_scanline == decoder_.output_height)
        jpeg_finish_output(&decoder_);
    return Finish();
}
