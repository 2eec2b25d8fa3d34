// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>
#include <utility>

namespace toolbox
{

// Owns an open descriptor of the system; below 0 is none.
class FileDescriptor
{
public:
    explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
    ~FileDescriptor() { Close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.Release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        Close();
        descriptor_ = other.Release();
        return *this;
    }

    bool IsOpen() const { return descriptor_ >= 0; }
    int Get() const { return descriptor_; }
    // The caller owns the descriptor from now on.
    int Release() { return std::exchange(descriptor_, -1); }
    // What the system says to closing: 0, or -1 and errno. Nothing is open afterwards.
    int Close() { return IsOpen() ? close(Release()) : 0; }

private:
    int descriptor_;
};

} // namespace toolbox
