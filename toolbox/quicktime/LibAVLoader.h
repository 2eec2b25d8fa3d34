// SPDX-License-Identifier: MIT
//
// Loads the codec libraries when a movie is going to be played: a hundred files in all, which no
// page of images has to wait for, on a thread of its own, which is the only thing it does.
#pragma once

#include "toolbox/quicktime/LibAVCalls.h"

#include <array>
#include <atomic>
#include <string>
#include <thread>

namespace toolbox
{

// The files by the names that the system's linker knows them by, and the folder in which they were
// when this was built.
struct LibAVFiles {
    // Those that the headers belong to.
    static LibAVFiles OfBuild();

    std::string folder;
    std::array<std::string, kLibAVLibraries> names;
};

class LibAVLoader
{
public:
    explicit LibAVLoader(LibAVFiles files) : files_(std::move(files)) {}
    // Waits for the library that is being loaded; those behind it are left out.
    ~LibAVLoader() { End(); }
    LibAVLoader(const LibAVLoader&) = delete;
    LibAVLoader& operator=(const LibAVLoader&) = delete;

    // The process's own. It outlives all movies; its thread ends before the process does.
    static LibAVLoader& Shared();

    // Whether the libraries are there: all of them as far as can be seen quickly, and where none
    // can be seen, by loading them.
    bool ArePresent();
    // Begins to load, once; the caller goes on meanwhile.
    void Begin();
    bool IsLoading() const { return state_.load(std::memory_order_acquire) == State::kLoading; }
    // Begins, if nobody has, and waits until it is over. Whether the calls can be made.
    bool Await();
    // Only where they can be made; waits as well.
    const LibAVCalls& Calls();

private:
    enum class State { kNotBegun, kLoading, kLoaded, kFailed };
    void Load();
    bool LoadAll();
    bool FindCalls();
    void End();
    void Join();

    LibAVFiles files_;
    std::array<void*, kLibAVLibraries> handles_{};
    LibAVCalls calls_;
    std::atomic<State> state_ = State::kNotBegun;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace toolbox
