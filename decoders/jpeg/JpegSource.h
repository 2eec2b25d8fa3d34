// SPDX-License-Identifier: MIT
#pragma once

#include "decoders/common/ByteBacklog.h"

#include <cstdio>
#include <jpeglib.h>

// The bytes that libjpeg-turbo decodes from. Where it asks for more than have arrived it is told to
// give up for now, and goes on when there are more; where there will be no more it gets an end mark
// to finish with.
class JpegSource
{
public:
    // Makes it the source of `decoder`, to which it must stay.
    explicit JpegSource(jpeg_decompress_struct& decoder);
    JpegSource(const JpegSource&) = delete;
    JpegSource& operator=(const JpegSource&) = delete;

    // Adds the object's next bytes, and tells how many. Outside the library's frames: it waits.
    size_t ReadBlock(VornPlugin& object);
    // The library has made something of all that it has taken so far.
    void NoteUse()
    {
        // A marker that it has seen and not taken yet has two bytes.
        backlog_.NoteUse(manager_.bytes_in_buffer + (decoder_.unread_marker != 0 ? 2 : 0));
    }
    // Begins again, for a library that does so, and ends with what was noted last.
    void StartOver(VornPlugin& object);
    // All bytes of the object are there.
    bool HasAll() const { return backlog_.HasAll(); }
    // The library has asked for more than all of them, and got an end mark.
    bool WasTooShort() const { return wasTooShort_; }
    // If it was in its first pass over the image then: one past the last row that may have come of
    // bytes that were there.
    JDIMENSION RowsBeforeEnd() const { return rowsBeforeEnd_; }

private:
    static boolean Fill(j_decompress_ptr decoder);
    static void Skip(j_decompress_ptr decoder, long count);

    jpeg_decompress_struct& decoder_;
    jpeg_source_mgr manager_{};
    ByteBacklog backlog_;
    JDIMENSION rowsBeforeEnd_ = JPEG_MAX_DIMENSION;
    bool wasTooShort_ = false;
};
