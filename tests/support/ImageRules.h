// SPDX-License-Identifier: MIT
//
// What holds for the images of every bundle, whatever their format: each rule is checked with a
// file of the test's choice.
#pragma once

#include "tests/support/HostedImage.h"

namespace test
{

// A file whose image has that size.
struct ImageFile {
    std::vector<UInt8> bytes;
    SInt32 width = 0;
    SInt32 height = 0;
};

// Byte by byte, and in pieces of any size.
void ExpectSamePixelsHoweverItArrives(const ImageBundle& bundle, const ImageFile& file);

// Whenever the host has been told of new rows, a partial display draws them and no others. The
// number of times that there were some.
int CountBandsDrawnAsTold(const ImageBundle& bundle, const ImageFile& file, SInt32 piece);

// With any `changes` of its bytes it decodes, or fails with a code for damage. How many of `files`
// so changed fail.
int CountFailuresOfChangedFiles(const ImageBundle& bundle, const ImageFile& file, int changes,
                                unsigned files);

// Wherever the file is cut off, every `step` bytes, no memory for pixels stays behind.
void ExpectNothingLeftOfParts(const ImageBundle& bundle, const ImageFile& file, size_t step);

} // namespace test
