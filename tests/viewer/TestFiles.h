// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>

// A folder of its own for a test's files, removed with it.
class TestFolder
{
public:
    TestFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "viewer-test-XXXXXX").string();
        path_ = mkdtemp(name.data());
    }
    ~TestFolder() { std::filesystem::remove_all(path_); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string Path(const std::string& name) const { return (path_ / name).string(); }

    // Writes a file and answers its path.
    std::string Write(const std::string& name, const std::string& contents) const
    {
        std::ofstream(Path(name), std::ios::binary) << contents;
        return Path(name);
    }

    std::string Read(const std::string& name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path path_;
};

// While it exists no file grows beyond some bytes, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &former_);
        rlimit limit = former_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &former_); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit former_{};
};

// Bytes that tell their places apart.
inline std::string Pattern(size_t size)
{
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    }
    return bytes;
}
