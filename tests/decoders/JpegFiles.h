// SPDX-License-Identifier: MIT
//
// JPEG files, written and read by libjpeg-turbo alone.
#pragma once

#include "tests/support/HostedImage.h"

#include <cstdio>
#include <jpeglib.h>
#include <string>
#include <vector>

namespace test
{

using Bytes = std::vector<UInt8>;

// What to make a file of; its pixels are soft hills with some noise.
struct JpegSpec {
    UInt32 width = 67;
    UInt32 height = 53;
    J_COLOR_SPACE colorSpace = JCS_YCbCr; // in the file
    int sampling = 2;                     // of the first component against the others, both ways
    bool isProgressive = false;
    bool hasScanForEach = false; // a sequential one with a scan for each component
    bool isArithmetic = false;
    int restartInterval = 0;
    bool hasAdobeMarker = true; // of a file with four components
    std::string comment = {};
};

Bytes WriteJpeg(const JpegSpec& spec);
// The whole image, throws std::runtime_error if libjpeg-turbo gives it up. Of inks C * K / 255
// is left of the light where 255 is no ink.
// Counts the library's warnings if asked to. An image of more than 512 MiB is given up, too.
Picture ReadJpeg(const Bytes& file, int* warnings = nullptr);

// Where the marker of that code (0xDA: a scan) begins for the `count`th time; throws if it does
// not.
size_t FindMarker(const Bytes& file, UInt8 code, int count = 1);

} // namespace test
