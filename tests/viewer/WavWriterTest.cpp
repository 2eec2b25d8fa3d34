// SPDX-License-Identifier: MIT
#include "viewer/WavWriter.h"

#include "tests/viewer/TestFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

namespace
{

using viewer::WavWriter;

TEST(WavWriter, WritesAHeaderAndLittleEndianSamples)
{
    const TestFolder folder;
    WavWriter wav(folder.Path("a.wav"), 44100, 2);
    const std::array<SInt16, 4> samples = {1, -2, 0x1234, -32768};
    wav.Write(samples.data(), samples.size());
    wav.Close();
    const std::string expected("RIFF\x2C\0\0\0WAVEfmt \x10\0\0\0\x01\0\x02\0"
                               "\x44\xAC\0\0\x10\xB1\x02\0\x04\0\x10\0data\x08\0\0\0"
                               "\x01\0\xFE\xFF\x34\x12\0\x80",
                               52);
    EXPECT_EQ(folder.Read("a.wav"), expected);
}

TEST(WavWriter, AnEmptyFileIsAHeaderAlone)
{
    const TestFolder folder;
    WavWriter(folder.Path("a.wav"), 8000, 1).Close();
    EXPECT_EQ(folder.Read("a.wav").size(), 44u);
}

TEST(WavWriter, TellsOfAPlaceThatCannotBeWritten)
{
    const TestFolder folder;
    EXPECT_THROW(WavWriter(folder.Path("no/such/folder.wav"), 8000, 1), std::runtime_error);
}

TEST(WavWriter, TellsOfAFullDisk)
{
    const std::vector<SInt16> samples(100'000);
    WavWriter wav("/dev/full", 8000, 1);
    EXPECT_THROW(
        {
            wav.Write(samples.data(), samples.size());
            wav.Close();
        },
        std::runtime_error);
}

TEST(WavWriter, AFailureLeavesWhatStoodThere)
{
    const TestFolder folder;
    const std::string path = folder.Write("a.wav", "old");
    const std::vector<SInt16> samples(100'000);
    {
        const FullDisk full(1000);
        WavWriter wav(path, 8000, 1);
        EXPECT_THROW(
            {
                wav.Write(samples.data(), samples.size());
                wav.Close();
            },
            std::runtime_error);
    }
    EXPECT_EQ(folder.Read("a.wav"), "old");
}

TEST(WavWriter, IntoAPipeTheLengthIsLeftOpen)
{
    const TestFolder folder;
    const std::string path = folder.Path("fifo.wav");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = folder.Read("fifo.wav"); });
    WavWriter wav(path, 8000, 1);
    const SInt16 sample = 0x1234;
    wav.Write(&sample, 1);
    wav.Close();
    reader.join();
    ASSERT_EQ(read.size(), 46u);
    EXPECT_EQ(read.substr(4, 4), "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(read.substr(44), "\x34\x12");
}

} // namespace
