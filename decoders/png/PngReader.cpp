// SPDX-License-Identifier: MIT
#include "decoders/png/PngReader.h"

#include "decoders/common/ArrivingBlock.h"
#include "decoders/common/CommentText.h"
#include "decoders/common/Palette.h"
#include "decoders/common/WideRows.h"

#include <algorithm>
#include <csetjmp>
#include <iterator>
#include <string_view>
#include <vector>

namespace
{

constexpr png_uint_32 kLargestCoordinate = 0x7FFF;
constexpr png_uint_32 kMostTextChunks = 100;
constexpr png_alloc_size_t kLargestChunk = 8'000'000;

constexpr UInt32 kEveryColumn = 0xFF;
// The columns that a pass of an interlaced image changes, where its pixels stand for those still
// missing: bit (column mod 8) is set.
constexpr UInt32 kPassColumns[] = {0xFF, 0xF0, 0xFF, 0xCC, 0xFF, 0xAA, 0xFF};

// What is taken for a comment, the best first.
constexpr std::string_view kCommentKeys[] = {"Comment", "Description", "Title"};

PngReader& ReaderOf(png_structp png)
{
    return *static_cast<PngReader*>(png_get_progressive_ptr(png));
}

} // namespace

PngReader::PngReader(VornPlugin& ownImage) : image_(ownImage), frame_(ownImage)
{
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
    if (info_ == nullptr) {
        png_destroy_read_struct(&png_, &info_, nullptr);
        throw OSErr{memFullErr};
    }
    SetUp();
}

PngReader::~PngReader()
{
    png_destroy_read_struct(&png_, &info_, nullptr);
}

void PngReader::SetUp()
{
    png_set_progressive_read_fn(png_, this, OnHeader, OnRow, OnEnd);
    png_set_user_limits(png_, kLargestCoordinate, kLargestCoordinate);
    png_set_chunk_cache_max(png_, kMostTextChunks);
    png_set_chunk_malloc_max(png_, kLargestChunk);
    // Of the chunks that a decoder may do without only transparency and texts matter here; the
    // others are not even looked into, however damaged they are.
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_AS_DEFAULT,
                                reinterpret_cast<png_const_bytep>("tEXt\0zTXt\0iTXt"), 3);
}

void PngReader::Decode()
{
    std::vector<UInt8> bytes;
    while (!isComplete_) {
        const size_t waiting = bytes.size();
        bytes.resize(waiting + ArrivingBlock::kSize);
        const ArrivingBlock block(image_, bytes.data() + waiting);
        bytes.resize(waiting + block.count);
        const size_t taken = DecodePieces(bytes, block.isLast);
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(taken));
        if (block.isLast && !isComplete_)
            throw OSErr{kDataNotAvailableErr};
    }
}

// Tells how many of the bytes it has taken: all if they are the last.
size_t PngReader::DecodePieces(std::span<UInt8> bytes, bool areLast)
{
    size_t taken = 0;
    bool isFine = true;
    while (isFine && !isComplete_ && taken < bytes.size()) {
        const auto rest = bytes.subspan(taken);
        const size_t piece = pieces_.Next(rest);
        if (piece > rest.size() && !areLast)
            break;
        isFine = DecodePiece(rest.first(std::min(piece, rest.size())), taken);
    }
    frame_.Rows().Tell();
    if (!isFine)
        throw failure_;
    if (isComplete_)
        SetComment();
    return taken;
}

bool PngReader::DecodePiece(std::span<UInt8> piece, size_t& taken)
{
    leftBehindHeader_ = 0;
    const bool isFine = Process(piece.data(), piece.size());
    if (isAtHeader_)
        BeginFrame();
    const size_t count = piece.size() - leftBehindHeader_;
    pieces_.Take(count);
    taken += count;
    return isFine;
}

bool PngReader::Process(UInt8* bytes, size_t count)
{
    if (setjmp(png_jmpbuf(png_)) != 0)
        return false;
    png_process_data(png_, info_, bytes, count);
    return true;
}

void PngReader::OnError(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void PngReader::OnWarning(png_structp, png_const_charp) {}

void PngReader::OnHeader(png_structp png, png_infop info)
{
    PngReader& reader = ReaderOf(png);
    reader.width_ = png_get_image_width(png, info);
    reader.height_ = png_get_image_height(png, info);
    reader.isInterlaced_ = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE;
    reader.ChooseDepths();
    reader.AskForSamples();
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    reader.leftBehindHeader_ = png_process_data_pause(png, 0);
    reader.isAtHeader_ = true;
}

void PngReader::ChooseDepths()
{
    const int type = png_get_color_type(png_, info_);
    const bool hasAlpha =
        (type & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    hasPalette_ = type == PNG_COLOR_TYPE_PALETTE && !hasAlpha;
    const bool isIndexed = hasPalette_ || (type == PNG_COLOR_TYPE_GRAY && !hasAlpha);
    const bool isAllowed = hasAlpha ? ChooseDepthsWithAlpha()
                                    : budget_.Allows(width_, height_, depth_ = isIndexed ? 8 : 32);
    if (isAllowed)
        return;
    failure_ = memFullErr;
    png_error(png_, "too large");
}

// Half the memory where the whole is not allowed.
bool PngReader::ChooseDepthsWithAlpha()
{
    const bool isWide = budget_.Allows(width_, height_, 32, 32);
    depth_ = maskDepth_ = isWide ? 32 : 16;
    return isWide || budget_.Allows(width_, height_, 16, 16);
}

// One byte a sample: an index, a grey, or R, G, B and, for a mask, alpha.
void PngReader::AskForSamples()
{
    png_set_scale_16(png_);
    if (hasPalette_) {
        png_set_packing(png_);
        return;
    }
    png_set_expand(png_);
    if (depth_ == 8)
        return;
    png_set_gray_to_rgb(png_);
    // The writing function for that depth puts alpha into the mask as it comes.
    if (maskDepth_ == 16)
        png_set_invert_alpha(png_);
}

void PngReader::BeginFrame()
{
    isAtHeader_ = false;
    SetComment();
    frame_.Add(static_cast<SInt16>(width_), static_cast<SInt16>(height_), depth_,
               depth_ == 8 ? Colors() : nullptr, maskDepth_);
}

CTabHandle PngReader::Colors()
{
    png_colorp palette = nullptr;
    int count = 0;
    if (!hasPalette_ || png_get_PLTE(png_, info_, &palette, &count) == 0)
        return StillFrame::NewGrayRamp();
    Palette colors;
    for (int i = 0; i < count; ++i)
        colors.Set(i, Palette::ColorOf(palette[i].red, palette[i].green, palette[i].blue));
    return colors.Release();
}

void PngReader::OnRow(png_structp png, png_bytep samples, png_uint_32 row, int pass)
{
    // A pass tells also of the rows that it leaves as they are, without samples.
    if (samples != nullptr)
        ReaderOf(png).PutRow(samples, row, pass);
}

void PngReader::PutRow(png_bytep samples, UInt32 row, int pass)
{
    const UInt32 columns = isInterlaced_ ? kPassColumns[pass] : kEveryColumn;
    const auto width = static_cast<SInt16>(width_);
    const auto rowNumber = static_cast<SInt16>(row);
    const bool hasMask = maskDepth_ != 0;
    if (depth_ == 8)
        png_progressive_combine_row(png_, frame_.Row(row), samples);
    else if (depth_ == 16)
        InterlacedRGBAlphaTo16bitGWorld(&frame_.Pixels(), &frame_.Mask(), samples, width, rowNumber,
                                        static_cast<SInt32>(columns));
    else if (columns == kEveryColumn)
        RGBSampleTo32bitGWorld(&frame_.Pixels(), samples, width, rowNumber, hasMask);
    else
        PutWidePixels(frame_.Row(row), samples, width_, columns, hasMask);
    if (maskDepth_ == 32)
        PutWideMask(frame_.MaskRow(row), samples, width_, columns);
    frame_.Rows().Note(rowNumber);
}

// The library takes it lightly if the compressed data end too early or are damaged.
void PngReader::OnEnd(png_structp png, png_infop)
{
    constexpr int kPasses = 7;
    PngReader& reader = ReaderOf(png);
    const bool hasAllRows = reader.isInterlaced_
                                ? png_get_current_pass_number(png) >= kPasses
                                : png_get_current_row_number(png) >= reader.height_;
    if (!hasAllRows)
        png_error(png, "rows are missing");
    reader.isComplete_ = true;
}

void PngReader::SetComment()
{
    png_textp texts = nullptr;
    const int count = png_get_text(png_, info_, &texts, nullptr);
    for (const std::string_view key : kCommentKeys) {
        for (int i = 0; i < count; ++i) {
            if (texts[i].key == key && texts[i].text != nullptr) {
                SetObjectComment(&image_, CommentFromText(texts[i].text).c_str());
                return;
            }
        }
    }
}
