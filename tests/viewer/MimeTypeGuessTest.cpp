// SPDX-License-Identifier: MIT
#include "viewer/MimeTypeGuess.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using namespace std::string_literals;

std::string Guess(const std::string& bytes)
{
    return viewer::GuessMimeType(reinterpret_cast<const UInt8*>(bytes.data()), bytes.size());
}

TEST(MimeTypeGuess, MoviesStartWithAPackOrASequenceHeader)
{
    EXPECT_EQ(Guess("\0\0\1\xBA rest"s), "video/mpeg");
    EXPECT_EQ(Guess("\0\0\1\xB3 rest"s), "video/mpeg");
    EXPECT_EQ(Guess("\0\0\0\0\0\1\xB3 rest"s), "video/mpeg"); // filled up
    EXPECT_EQ(Guess("\0\0\1\xAF rest"s), "");
    EXPECT_EQ(Guess("\0\1\xBA rest"s), "");
    EXPECT_EQ(Guess("\0\0\1"s), "");
}

TEST(MimeTypeGuess, ATransportStreamHasASyncByteInEachPacket)
{
    std::string packets(512, '\0');
    packets[0] = packets[188] = packets[376] = 0x47;
    EXPECT_EQ(Guess(packets), "video/mpeg");
    packets[376] = 0x46;
    EXPECT_EQ(Guess(packets), "");
    EXPECT_EQ(Guess("G is a letter"), "");
}

TEST(MimeTypeGuess, SoundStartsWithATagOrAFrame)
{
    EXPECT_EQ(Guess("ID3\4"), "audio/mpeg");
    EXPECT_EQ(Guess("\xFF\xFB\x90\x64"), "audio/mpeg"); // layer III
    EXPECT_EQ(Guess("\xFF\xFD\xA4\x04"), "audio/mpeg"); // layer II
    EXPECT_EQ(Guess("\xFF\xFE\xC8\x04"), "audio/mpeg"); // layer I
    EXPECT_EQ(Guess("\xFF\xE3\x90\x64"), "audio/mpeg"); // version 2.5
}

TEST(MimeTypeGuess, WhatOnlyLooksLikeAFrameIsNoSound)
{
    EXPECT_EQ(Guess("\xFF\xF1\x50\x80"), "");     // no layer: another kind of sound
    EXPECT_EQ(Guess("\xFF\xEB\x90\x64"), "");     // no version
    EXPECT_EQ(Guess("\xFF\xFB\xF0\x64"), "");     // no bit rate
    EXPECT_EQ(Guess("\xFF\xFB\x9C\x64"), "");     // no sample rate
    EXPECT_EQ(Guess("\xFF\xFEH\0i\0"s), "");      // a text in UTF-16
    EXPECT_EQ(Guess("\xFF\xFF\xFF\xFF\xFF"), ""); // blank
    EXPECT_EQ(Guess("\xFF\xFB"), "");             // too short
}

TEST(MimeTypeGuess, ImagesHaveSignatures)
{
    EXPECT_EQ(Guess("GIF89a"), "image/gif");
    EXPECT_EQ(Guess("GIF87a"), "image/gif");
    EXPECT_EQ(Guess("\x89PNG\r\n"), "image/png");
    EXPECT_EQ(Guess("\xFF\xD8\xFF\xE0"), "image/jpeg");
}

TEST(MimeTypeGuess, NothingIsKnownOfOtherBytes)
{
    EXPECT_EQ(Guess(""), "");
    EXPECT_EQ(Guess("Dear reader"), "");
}

} // namespace
