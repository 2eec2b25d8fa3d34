// SPDX-License-Identifier: MIT
#include "decoders/gif/GifReader.h"

#include <utility>

GifReader::GifReader(VornPlugin& object) : bytes_(object)
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
    throw bytes_.RanOut() ? OSErr{kDataNotAvailableErr} : OSErr{kVornErrRenderFailed};
}

GifRecordType GifReader::NextRecord()
{
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    const int result = DGifGetRecordType(file_, &type);
    if (result == GIF_ERROR && bytes_.RanOut())
        return TERMINATE_RECORD_TYPE;
    Check(result);
    return type;
}

int GifReader::Read(GifFileType* file, GifByteType* dest, int count)
{
    auto* const self = static_cast<GifReader*>(file->UserData);
    try {
        return static_cast<int>(self->bytes_.Read(dest, static_cast<size_t>(count)));
    } catch (...) {
        self->failure_ = std::current_exception();
        return 0;
    }
}
