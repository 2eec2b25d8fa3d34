// SPDX-License-Identifier: MIT
//
// The packets of a movie, one after another, demultiplexed by libavformat on a fiber of its own.
// Where bytes are missing the fiber waits; nobody else does.
#pragma once

#include "toolbox/Errors.h"
#include "toolbox/quicktime/LibAV.h"
#include "toolbox/quicktime/MovieBytes.h"
#include "toolbox/quicktime/Sniffer.h"

#include <exception>
#include <vector>

namespace toolbox
{

class MovieStream
{
public:
    // Reads from `start` on; kUnknown: finds out where the data begins and what it is.
    // `prologue` is read before the data. Throws std::bad_alloc.
    explicit MovieStream(DataHandlerClient& handler, Sniffed start = {},
                         std::vector<UInt8> prologue = {});
    ~MovieStream();
    MovieStream(const MovieStream&) = delete;
    MovieStream& operator=(const MovieStream&) = delete;

    enum class Step {
        kPacket,  // Packet() is the next one
        kWaiting, // bytes are missing: try again in a later slice
        kEnded,   // no more packets
        kFailed   // no packets at all: this is not a movie, or it cannot be read
    };
    // Goes on to the next packet.
    Step Advance();
    // The packet that Advance came to; the receiver may move its contents out.
    AVPacket& Packet() { return *packet_; }
    // What stream that packet is of. Valid until the MovieStream goes.
    const AVStream& StreamOfPacket() const { return *format_->streams[packet_->stream_index]; }
    // What the data is, known with the first packet.
    const Sniffed& Start() const { return start_; }
    // The length that the data itself announces at its head, kNoTime if it does not.
    Nanoseconds AnnouncedDuration() const;
    // How far the data has been read, in bytes from its beginning.
    SInt64 BytesTaken() const { return offset_; }
    const MovieBytes& Bytes() const { return bytes_; }
    // Takes back what was asked of the data handler, before this goes and the handler stays.
    void Abandon() { bytes_.Abandon(); }
    // Nothing is read any more; Advance ends the fiber.
    void Stop() { bytes_.Stop(); }

private:
    void Run();
    bool FindStart();
    SInt64 SkipTags();
    AVIOContext* MakeInput();
    bool OpenFormat();
    void ReadPackets();
    bool ReadBareFrames();
    SInt32 ReadSome(void* dest, SInt64 offset, SInt32 count);
    static int ReadCallback(void* opaque, UInt8* buffer, int size);
    static SInt64 SizeCallback(void* opaque, SInt64 offset, int whence);
    void RethrowFromCallback();

    DataHandlerClient& handler_;
    MovieBytes bytes_;
    Sniffed start_;
    std::vector<UInt8> prologue_;
    size_t prologueSize_ = 0; // which the places of packets are told without
    SInt64 offset_ = 0;
    LibAVPtr<AVFormatContext> format_;
    LibAVPtr<AVPacket> packet_;
    Step step_ = Step::kWaiting;
    std::exception_ptr thrown_; // by a read under libavformat's frames
    Fiber fiber_;
};

} // namespace toolbox
