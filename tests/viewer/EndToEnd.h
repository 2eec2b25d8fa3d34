// SPDX-License-Identifier: MIT
//
// The clips that the ffmpeg program made, with what a plain decode of each gives.
#pragma once

#include "tests/viewer/RunningViewer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

inline std::string Clip(const std::string& name)
{
    return std::string(VORN_CLIPS) + "/" + name;
}

inline std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// 16-bit samples.
inline std::string SoundOf(const std::string& clip)
{
    return ReadFile(Clip(clip) + ".pcm");
}

inline int PicturesOf(const std::string& clip)
{
    const std::string text = ReadFile(Clip(clip) + ".pictures");
    return text.empty() ? 0 : std::stoi(text);
}

class EndToEnd : public testing::Test
{
protected:
    ViewerResult Run(const std::vector<std::string>& arguments) { return viewer.Run(arguments); }
    std::string Write(const std::string& name, const std::string& contents) const
    {
        return viewer.Folder().Write(name, contents);
    }

    RunningViewer viewer;
};
