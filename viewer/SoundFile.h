// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/SoundMixer.h"
#include "viewer/WavWriter.h"

#include <memory>
#include <string>

namespace viewer
{

// While it exists it is the toolbox's sound sink and writes the mixed sound to a WAV file.
class SoundFile
{
public:
    explicit SoundFile(const std::string& path);
    ~SoundFile();
    SoundFile(const SoundFile&) = delete;
    SoundFile& operator=(const SoundFile&) = delete;

    // Completes the file, an empty one if nothing sounded. Throws std::runtime_error with a text
    // for the user, also for what went wrong before.
    void Finish();
    // Nothing has been played into it.
    bool IsEmpty() const { return isEmpty_; }

private:
    static void* Open(void* file, SInt32 sampleRate, SInt32 channels);
    static void Play(void* file, void* stream, const SInt16* frames, SInt32 count,
                     SInt64 atMicroseconds);
    static void Close(void* file, void* stream);
    // Runs an action; the movies must not see it fail.
    template <typename Action>
    void Guard(Action action);

    std::string path_;
    std::unique_ptr<WavWriter> wav_;
    SoundMixer mixer_;
    std::string failure_;
    bool isEmpty_ = false;
};

} // namespace viewer
