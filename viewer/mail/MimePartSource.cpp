// SPDX-License-Identifier: MIT
#include "viewer/mail/MimePartSource.h"

#include <array>
#include <cerrno>

namespace viewer
{
namespace
{

constexpr size_t kBlock = 16384;

} // namespace

MimePartSource::MimePartSource(GMimePointer<GMimeStream> stream, std::string declaredType)
    : stream_(std::move(stream)), declaredType_(std::move(declaredType))
{
}

void MimePartSource::Pump(SInt32 end)
{
    std::array<char, kBlock> block;
    while (stream_ != nullptr && !IsComplete() && Received() < end) {
        const ssize_t got = g_mime_stream_read(stream_.get(), block.data(), block.size());
        if (got > 0) {
            Keep(block.data(), static_cast<size_t>(got));
        } else if (got == 0) {
            Complete();
        } else {
            End(FailureFromErrno(errno));
        }
    }
}

} // namespace viewer
