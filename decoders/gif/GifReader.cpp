// SPDX-License-Identifier: MIT
#include "decoders/gif/GifReader.h"

#include <cstring>
#include <utility>

GifReader::GifReader(VornPlugin& object) : object_(object)
{
    file_ = DGifOpen(this, Read, nullptr);
    Check(file_ == nullptr ? GIF_ERROR : GIF_OK);
}

void GifReader::Check(int result)
{
    if (result != GIF_ERROR)
        return;
    if (failure_)
        std::rethrow_exception(std::exchange(failure_, nullptr));
    throw ranOut_ ? OSErr{kDataNotAvailableErr} : OSErr{kVornErrRenderFailed};
}

GifRecordType GifReader::NextRecord()
{
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    const int result = DGifGetRecordType(file_, &type);
    if (result == GIF_ERROR && ranOut_)
        return TERMINATE_RECORD_TYPE;
    Check(result);
    return type;
}

int GifReader::Read(GifFileType* file, GifByteType* dest, int count)
{
    auto* const self = static_cast<GifReader*>(file->UserData);
    try {
        return self->Copy(dest, static_cast<size_t>(count));
    } catch (...) {
        self->failure_ = std::current_exception();
        return 0;
    }
}

int GifReader::Copy(GifByteType* dest, size_t count)
{
    size_t copied = 0;
    while (copied < count && !ranOut_) {
        const size_t part = std::min(count - copied, end_ - next_);
        std::memcpy(dest + copied, buffer_.data() + next_, part);
        next_ += part;
        copied += part;
        if (copied == count)
            break;
        ranOut_ = isLastBlock_;
        if (!isLastBlock_) {
            const ArrivingBlock block(object_, buffer_.data());
            next_ = 0;
            end_ = block.count;
            isLastBlock_ = block.isLast;
        }
    }
    return static_cast<int>(copied);
}
