// SPDX-License-Identifier: MIT
//
// An open file of the operating system that closes itself.
#pragma once

#include <unistd.h>
#include <utility>

namespace viewer
{

class FileDescriptor
{
public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor()
    {
        if (number_ >= 0) {
            close(number_);
        }
    }

    int Get() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }

private:
    int number_;
};

} // namespace viewer
