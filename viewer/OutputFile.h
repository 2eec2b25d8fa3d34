// SPDX-License-Identifier: MIT
//
// A file that is written as a whole: what stood there before stays until the new one is complete.
#pragma once

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/types.h>

namespace viewer
{

// "PATH: WHAT could not be written: REASON".
class OutputFailure : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// A regular file is written under another name beside its place and put there at the end.
// Anything else (a device, a pipe, "-" for standard output) is written as it comes, and nothing is
// ever removed that was there before. Operations throw OutputFailure.
class OutputFile
{
public:
    // `what` names the contents for the user.
    OutputFile(const std::string& path, std::string what);
    // Leaves no trace of what was not committed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(const void* bytes, size_t count);
    // Goes back to the start, to write over it. False where that is not possible.
    bool Rewind();
    bool CanRewind() const { return canRewind_; }
    // For libraries that write by themselves. Their failures show in Commit at the latest.
    std::FILE* Stream() { return stream_.get(); }
    // All has been written.
    void Commit();
    // Throws what errno tells of.
    [[noreturn]] void Fail() const;
    [[noreturn]] void Fail(const std::string& reason) const;

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    void Open(const std::string& path);
    int OpenBeside(const std::string& path, mode_t mode);
    void Discard();

    std::string path_;
    std::string what_;
    std::string target_;
    std::string temporary_; // empty: the target itself is being written
    bool canRewind_ = false;
    std::unique_ptr<std::FILE, CloseFile> stream_;
};

} // namespace viewer
