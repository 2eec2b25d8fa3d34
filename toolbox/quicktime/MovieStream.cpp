// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MovieStream.h"

#include "toolbox/quicktime/BareFrames.h"
#include "toolbox/quicktime/ProgramStreamMap.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>
#include <vector>

namespace toolbox
{
namespace
{

constexpr int kReadBufferSize = 32768;
constexpr size_t kFiberStackSize = size_t{256} * 1024;
constexpr size_t kFirstLook = 4096;
// The demultiplexer of sound finds the first frame itself behind less than this.
constexpr SInt64 kJunkItsDemuxerSkips = 60000;
constexpr size_t kLastLook = 1 << 20; // data that is no movie up to here is none

const char* DemuxerName(StreamKind kind)
{
    switch (kind) {
    case StreamKind::kProgramStream:
        return "mpeg";
    case StreamKind::kTransportStream:
        return "mpegts";
    case StreamKind::kVideo:
        return "mpegvideo";
    case StreamKind::kAudio:
        return "mp3";
    case StreamKind::kUnknown:
        break;
    }
    return nullptr;
}

// libavformat leaves an I/O context that its caller supplied to the caller, on failure too.
void FreeInput(AVIOContext* input)
{
    if (input != nullptr) {
        av_freep(&input->buffer);
        avio_context_free(&input);
    }
}

} // namespace

MovieStream::MovieStream(DataHandlerClient& handler, Sniffed start, std::vector<UInt8> prologue)
    : handler_(handler), bytes_(handler), start_(start), prologue_(std::move(prologue)),
      packet_(av_packet_alloc()), fiber_([this] { Run(); }, kFiberStackSize)
{
    if (!packet_) {
        throw std::bad_alloc();
    }
}

MovieStream::~MovieStream()
{
    Stop();
    while (fiber_.IsStarted() && !fiber_.IsEnded()) {
        fiber_.Resume();
    }
    AVIOContext* input = format_ ? format_->pb : nullptr;
    format_.reset();
    FreeInput(input);
}

MovieStream::Step MovieStream::Advance()
{
    if (!fiber_.IsEnded()) {
        step_ = Step::kWaiting;
        fiber_.Resume();
    }
    return step_;
}

Nanoseconds MovieStream::AnnouncedDuration() const
{
    Nanoseconds longest = kNoTime;
    for (unsigned i = 0; format_ && i < format_->nb_streams; ++i) {
        const AVStream& stream = *format_->streams[i];
        if (stream.duration != AV_NOPTS_VALUE && stream.duration > 0) {
            longest =
                std::max(longest, av_rescale_q(stream.duration, stream.time_base, kNanosecondBase));
        }
    }
    return longest;
}

void MovieStream::Run()
{
    const bool isKnown = start_.kind != StreamKind::kUnknown || FindStart();
    bool hasPackets = isKnown && OpenFormat();
    if (hasPackets) {
        ReadPackets();
    } else if (isKnown && start_.kind == StreamKind::kAudio) {
        hasPackets = ReadBareFrames();
    }
    step_ = hasPackets ? Step::kEnded : Step::kFailed;
}

// Sound of so few frames that its demultiplexer does not believe in it is found by their headers
// alone.
bool MovieStream::ReadBareFrames()
{
    format_.reset(avformat_alloc_context());
    AVStream* const stream = format_ ? avformat_new_stream(format_.get(), nullptr) : nullptr;
    if (stream == nullptr) {
        return false;
    }
    stream->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
    stream->codecpar->codec_id = AV_CODEC_ID_MP3;
    BareFrames frames(start_.start);
    bool hasPackets = false;
    while (!bytes_.IsStopped() &&
           frames.ReadNext(*packet_, [this](UInt8* to, SInt64 offset, SInt32 count) {
               return ReadSome(to, offset, count);
           })) {
        hasPackets = true;
        step_ = Step::kPacket;
        fiber_.Suspend();
    }
    return hasPackets;
}

SInt32 MovieStream::ReadSome(void* dest, SInt64 offset, SInt32 count)
{
    return bytes_.Read(fiber_, dest, offset, count);
}

// The offset behind the tags that may stand before the first frame of sound.
SInt64 MovieStream::SkipTags()
{
    SInt64 offset = 0;
    for (;;) {
        std::array<UInt8, kTagHeaderSize> head{};
        SInt32 have = 0;
        while (have < static_cast<SInt32>(head.size())) {
            const SInt32 got = ReadSome(head.data() + have, offset + have,
                                        static_cast<SInt32>(head.size()) - have);
            if (got <= 0) {
                return offset;
            }
            have += got;
        }
        const SInt64 size = TagSize(head.data());
        if (size == 0) {
            return offset;
        }
        offset += size;
    }
}

// Looks again each time twice as much has arrived, so that the looking stays linear.
bool MovieStream::FindStart()
{
    const bool expectSound = SoundIsExpected(handler_.MIMEType(), handler_.FileName());
    const SInt64 base = SkipTags();
    std::vector<UInt8> head;
    size_t have = 0;
    bool isAll = false;
    while (!isAll && start_.kind == StreamKind::kUnknown && have < kLastLook) {
        if (have == head.size()) {
            head.resize(std::clamp(have * 2, kFirstLook, kLastLook));
        }
        const SInt32 got = ReadSome(head.data() + have, base + static_cast<SInt64>(have),
                                    static_cast<SInt32>(head.size() - have));
        isAll = got <= 0;
        have += isAll ? 0 : static_cast<size_t>(got);
        if (isAll || have == head.size()) {
            start_ = Sniff(head.data(), have, expectSound, isAll);
        }
    }
    if (start_.kind == StreamKind::kProgramStream) {
        const auto begin = static_cast<size_t>(start_.start);
        prologue_ = MakeProgramStreamMapFor(head.data() + begin, have - begin);
    }
    if (start_.kind == StreamKind::kAudio && start_.start < kJunkItsDemuxerSkips) {
        start_.start = 0;
    }
    start_.start += base;
    return start_.kind != StreamKind::kUnknown && !bytes_.IsStopped();
}

// Not seekable, so that no demultiplexer looks for tags at an end that is not there yet.
// Null without memory.
AVIOContext* MovieStream::MakeInput()
{
    auto* const buffer = static_cast<UInt8*>(av_malloc(kReadBufferSize));
    AVIOContext* const input = buffer == nullptr
                                   ? nullptr
                                   : avio_alloc_context(buffer, kReadBufferSize, 0, this,
                                                        ReadCallback, nullptr, SizeCallback);
    if (input == nullptr) {
        av_free(buffer);
        return nullptr;
    }
    input->seekable = 0;
    return input;
}

bool MovieStream::OpenFormat()
{
    offset_ = start_.start;
    prologueSize_ = prologue_.size();
    format_.reset(avformat_alloc_context());
    AVIOContext* const input = format_ ? MakeInput() : nullptr;
    if (input == nullptr) {
        return false;
    }
    format_->pb = input;
    AVFormatContext* opening = format_.release();
    const int err = avformat_open_input(&opening, nullptr,
                                        av_find_input_format(DemuxerName(start_.kind)), nullptr);
    format_.reset(opening);
    if (err < 0) {
        FreeInput(input);
    }
    RethrowFromCallback();
    return err >= 0;
}

void MovieStream::ReadPackets()
{
    const auto inFront = static_cast<SInt64>(prologueSize_);
    while (av_read_frame(format_.get(), packet_.get()) >= 0) {
        packet_->pos -= packet_->pos >= inFront ? inFront : 0;
        step_ = Step::kPacket;
        fiber_.Suspend();
        av_packet_unref(packet_.get());
        if (bytes_.IsStopped()) {
            break;
        }
    }
    RethrowFromCallback();
}

// No exception passes through libavformat's frames: it is kept here and thrown again behind them.
int MovieStream::ReadCallback(void* opaque, UInt8* buffer, int size)
{
    auto* const self = static_cast<MovieStream*>(opaque);
    std::vector<UInt8>& prologue = self->prologue_;
    if (!prologue.empty()) {
        const int count = std::min(size, static_cast<int>(prologue.size()));
        std::copy_n(prologue.begin(), count, buffer);
        prologue.erase(prologue.begin(), prologue.begin() + count);
        return count;
    }
    try {
        const SInt32 got = self->ReadSome(buffer, self->offset_, size);
        if (got > 0) {
            self->offset_ += got;
            return got;
        }
        return got == 0 ? AVERROR_EOF : AVERROR_EXIT;
    } catch (...) {
        self->thrown_ = std::current_exception();
        return AVERROR_EXIT;
    }
}

// Tells the length that is expected, 0 if none is, to demultiplexers that weigh what a header says
// against it; seeks nowhere.
SInt64 MovieStream::SizeCallback(void* opaque, SInt64, int whence)
{
    auto* const self = static_cast<MovieStream*>(opaque);
    if (whence != AVSEEK_SIZE || self->bytes_.IsStopped()) {
        return AVERROR(ENOSYS);
    }
    return std::max<SInt64>(0, self->handler_.FileSize() - self->start_.start);
}

void MovieStream::RethrowFromCallback()
{
    if (thrown_) {
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }
}

} // namespace toolbox
