// SPDX-License-Identifier: MIT
#include "decoders/jpeg/JpegReader.h"

#include "decoders/common/CommentText.h"
#include "decoders/common/WideRows.h"
#include "toolbox/events/Events.h"

#include <algorithm>
#include <jerror.h>

namespace
{

constexpr UInt32 kTicksBetweenPasses = 15;
// No encoder writes that many; a file of a few bytes a scan would keep the processor busy.
constexpr int kMostScans = 500;
constexpr unsigned kLongestComment = 4096;

// The library recovers from what it warns of, but from these with wrong pixels.
constexpr int kDamage[] = {JWRN_ARITH_BAD_CODE, JWRN_HIT_MARKER, JWRN_HUFF_BAD_CODE,
                           JWRN_MUST_RESYNC};

} // namespace

JpegReader::JpegReader(VornPlugin& ownImage) : image_(ownImage), frame_(ownImage), source_(decoder_)
{
    decoder_.err = jpeg_std_error(&errors_);
    errors_.error_exit = [](j_common_ptr decoder) {
        std::longjmp(static_cast<ErrorManager*>(decoder->err)->giveUp, 1);
    };
    errors_.emit_message = [](j_common_ptr decoder, int level) {
        auto* const errors = static_cast<ErrorManager*>(decoder->err);
        if (level < 0 && std::ranges::count(kDamage, errors->msg_code) != 0)
            errors->isDamaged = true;
    };
    CreateDecoder();
}

void JpegReader::CreateDecoder()
{
    jpeg_source_mgr* const source = decoder_.src;
    Guarded([this] { jpeg_create_decompress(&decoder_); });
    decoder_.src = source;
    jpeg_save_markers(&decoder_, JPEG_COM, kLongestComment);
}

template <class Step>
void JpegReader::Guarded(Step step)
{
    if (setjmp(errors_.giveUp) != 0) {
        frame_.Rows().Tell();
        throw Failure();
    }
    step();
    frame_.Rows().Tell();
}

OSErr JpegReader::Failure() const
{
    if (errors_.msg_code == JERR_OUT_OF_MEMORY)
        return memFullErr;
    return source_.WasTooShort() ? OSErr{kDataNotAvailableErr} : OSErr{kVornErrRenderFailed};
}

void JpegReader::Decode()
{
    try {
        while (!isComplete_)
            DecodeNextBlock();
        // Where nothing but the end mark of a plain scan is missing the image is whole.
        const bool needsEndMark = decoder_.buffered_image || decoder_.arith_code;
        if (errors_.isDamaged || (source_.WasTooShort() && needsEndMark))
            throw Failure();
    } catch (OSErr failure) {
        if (frame_.IsAdded() && decoder_.buffered_image)
            ShowWhatWasUsed();
        throw failure;
    }
}

// What scans brought before a failure is shown, however fast they came, by decoding them anew: the
// library may have given up, which rows of a damaged scan it smooths depends on where it waited,
// and its tables may be those of a later scan.
void JpegReader::ShowWhatWasUsed()
try {
    jpeg_destroy_decompress(&decoder_);
    CreateDecoder();
    source_.StartOver(image_);
    hasHeader_ = isInPass_ = isComplete_ = false;
    while (!isComplete_)
        DecodeNextBlock();
} catch (OSErr) { // the first failure counts
}

void JpegReader::DecodeNextBlock()
{
    const size_t count = source_.ReadBlock(image_);
    now_ = TickCount();
    if (!hasHeader_ && !ReadHeader())
        return;
    // The library cannot stop in the middle of arithmetic codes.
    if (decoder_.arith_code && !source_.HasAll())
        budget_.TakeBytes(count);
    else
        Guarded([this] {
            isComplete_ = decoder_.buffered_image ? DecodeScans() : ReadRows() && Finish();
        });
}

bool JpegReader::ReadHeader()
{
    Guarded([this] { hasHeader_ = jpeg_read_header(&decoder_, TRUE) == JPEG_HEADER_OK; });
    if (hasHeader_) {
        BeginFrame();
        // Without restarts it hurries where many bytes are there, and makes other things of damage.
        if (decoder_.restart_interval == 0)
            decoder_.restart_interval = ~0U; // blocks, more than there are
        // It never has to wait: images in several scans are buffered.
        Guarded([this] { jpeg_start_decompress(&decoder_); });
    }
    return hasHeader_;
}

void JpegReader::BeginFrame()
{
    if (decoder_.out_color_space == JCS_UNKNOWN)
        throw OSErr{kVornErrRenderFailed};
    if (decoder_.out_color_space == JCS_RGB)
        decoder_.out_color_space = JCS_EXT_XRGB;
    decoder_.buffered_image = jpeg_has_multiple_scans(&decoder_);
    if (frame_.IsAdded())
        return;
    const bool isGray = decoder_.out_color_space == JCS_GRAYSCALE;
    const UInt16 depth = isGray ? 8 : 32;
    budget_.Take(decoder_.image_width, decoder_.image_height, depth);
    if (decoder_.buffered_image)
        budget_.TakeBytes(CoefficientBytes());
    SetComment();
    frame_.Add(static_cast<SInt16>(decoder_.image_width),
               static_cast<SInt16>(decoder_.image_height), depth,
               isGray ? StillFrame::NewGrayRamp() : nullptr);
}

// What the library keeps of an image in several scans, but for the blocks that fill up its edges.
UInt64 JpegReader::CoefficientBytes() const
{
    UInt64 blocks = 0;
    const auto count = static_cast<size_t>(decoder_.num_components);
    for (const jpeg_component_info& component : std::span(decoder_.comp_info, count))
        blocks += UInt64{component.width_in_blocks} * component.height_in_blocks;
    return blocks * sizeof(JBLOCK);
}

void JpegReader::SetComment()
{
    const jpeg_marker_struct* comment = decoder_.marker_list; // no others are kept
    while (comment != nullptr && comment->data_length == 0)
        comment = comment->next;
    if (comment == nullptr)
        return;
    const std::string_view text(reinterpret_cast<const char*>(comment->data), comment->data_length);
    SetObjectComment(&image_, CommentFromText(text).c_str());
}

bool JpegReader::ReadRows()
{
    // Rows behind the end of the bytes, which may come with any row, would be grey: they stay.
    while (decoder_.output_scanline < std::min(decoder_.output_height, source_.RowsBeforeEnd())) {
        const JDIMENSION row = decoder_.output_scanline;
        JSAMPROW samples = frame_.Row(row);
        if (jpeg_read_scanlines(&decoder_, &samples, 1) == 0)
            return false;
        if (decoder_.out_color_space == JCS_CMYK)
            WidePixelsFromCmyk(samples, decoder_.output_width, decoder_.saw_Adobe_marker);
        frame_.Rows().Note(static_cast<SInt32>(row));
    }
    return true;
}

// True also for an image that ends with the bytes: there is nothing to finish then.
bool JpegReader::Finish()
{
    return decoder_.output_scanline < decoder_.output_height || jpeg_finish_decompress(&decoder_);
}

bool JpegReader::DecodeScans()
{
    ConsumeScans();
    const bool hasAllScans = jpeg_input_complete(&decoder_);
    const int complete = decoder_.input_scan_number - 1;
    const bool isNew = complete > shownScan_ && now_ - lastPass_ >= kTicksBetweenPasses;
    if (hasAllScans && isInPass_)
        EndPass(); // for the sake of the last one
    if (hasAllScans)
        BeginPass(decoder_.input_scan_number);
    else if (!isInPass_ && (shownScan_ == 0 || isNew))
        // A scan that is complete never has to wait; the first one shows what there is.
        BeginPass(std::max(1, complete));
    if (isInPass_ && ReadRows())
        EndPass();
    return hasAllScans && Finish();
}

void JpegReader::ConsumeScans()
{
    int status = JPEG_ROW_COMPLETED;
    while (status != JPEG_SUSPENDED && status != JPEG_REACHED_EOI) {
        status = jpeg_consume_input(&decoder_);
        if (decoder_.input_scan_number > kMostScans)
            ERREXIT(&decoder_, JERR_BAD_PROGRESSION);
        if (status != JPEG_SUSPENDED)
            source_.NoteUse();
    }
}

void JpegReader::BeginPass(int scan)
{
    isInPass_ = jpeg_start_output(&decoder_, scan);
    shownScan_ = scan;
    lastPass_ = now_;
}
