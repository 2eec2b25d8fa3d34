// SPDX-License-Identifier: MIT
#include "viewer/mail/HeadedFile.h"

#include "toolbox/Types.h"
#include "viewer/FileDescriptor.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace viewer
{
namespace
{

// What the C library reads through.
struct HeadedFile {
    std::string head;
    FileDescriptor file;
    SInt64 position = 0;

    SInt64 HeadSize() const { return static_cast<SInt64>(head.size()); }
};

HeadedFile& Self(void* cookie)
{
    return *static_cast<HeadedFile*>(cookie);
}

ssize_t Read(void* cookie, char* buffer, size_t size)
{
    HeadedFile& self = Self(cookie);
    ssize_t count = 0;
    if (self.position < self.HeadSize()) {
        const std::string_view rest =
            std::string_view(self.head).substr(static_cast<size_t>(self.position), size);
        std::memcpy(buffer, rest.data(), rest.size());
        count = static_cast<ssize_t>(rest.size());
    } else {
        count = pread(self.file.Get(), buffer, size, self.position - self.HeadSize());
    }
    self.position += std::max<ssize_t>(count, 0);
    return count;
}

int Seek(void* cookie, off64_t* offset, int whence)
{
    HeadedFile& self = Self(cookie);
    struct stat status {
    };
    SInt64 from = 0;
    if (whence == SEEK_CUR) {
        from = self.position;
    } else if (whence == SEEK_END) {
        if (fstat(self.file.Get(), &status) != 0) {
            return -1;
        }
        from = self.HeadSize() + status.st_size;
    }
    if (from + *offset < 0) {
        return -1;
    }
    self.position = *offset = from + *offset;
    return 0;
}

int Close(void* cookie)
{
    delete &Self(cookie);
    return 0;
}

} // namespace

GMimePointer<GMimeStream> StreamOfHeadedFile(const std::string& head, int file)
{
    auto self = std::make_unique<HeadedFile>(HeadedFile{head, FileDescriptor(dup(file))});
    FILE* const stream =
        self->file.IsOpen() ? fopencookie(self.get(), "r", {Read, nullptr, Seek, Close}) : nullptr;
    if (stream == nullptr) {
        return nullptr;
    }
    static_cast<void>(self.release()); // closing the stream takes it away
    return GMimePointer<GMimeStream>(g_mime_stream_file_new_with_bounds(stream, 0, -1));
}

} // namespace viewer
