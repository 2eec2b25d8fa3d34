// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/LibAVLoader.h"

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <system_error>
#include <unistd.h>

namespace toolbox
{

LibAVFiles LibAVFiles::OfBuild()
{
    LibAVFiles files;
    files.folder = VORN_LIBAV_FOLDER;
    files.names[kAVUtil] = "libavutil.so." AV_STRINGIFY(LIBAVUTIL_VERSION_MAJOR);
    files.names[kSWResample] = "libswresample.so." AV_STRINGIFY(LIBSWRESAMPLE_VERSION_MAJOR);
    files.names[kSWScale] = "libswscale.so." AV_STRINGIFY(LIBSWSCALE_VERSION_MAJOR);
    files.names[kAVCodec] = "libavcodec.so." AV_STRINGIFY(LIBAVCODEC_VERSION_MAJOR);
    files.names[kAVFormat] = "libavformat.so." AV_STRINGIFY(LIBAVFORMAT_VERSION_MAJOR);
    return files;
}

// Never destroyed: movies may be left when the process ends. The loading thread must not be, as it
// would run beside the ends of the libraries that it loads. Those are registered later than any
// function of ours and so called earlier, but not before what belongs to the thread that exits.
LibAVLoader& LibAVLoader::Shared()
{
    struct Wait {
        ~Wait() { Shared().Join(); }
    };
    thread_local const Wait atEndOfThread;
    static LibAVLoader& loader = []() -> LibAVLoader& {
        auto* const made = new LibAVLoader(LibAVFiles::OfBuild());
        std::atexit([] { Shared().End(); });
        return *made;
    }();
    return loader;
}

bool LibAVLoader::ArePresent()
{
    switch (state_.load(std::memory_order_acquire)) {
    case State::kLoaded:
        return true;
    case State::kFailed:
        return false;
    default:
        break;
    }
    const auto isThere = [this](const std::string& name) {
        return access((files_.folder + "/" + name).c_str(), R_OK) == 0;
    };
    return std::all_of(files_.names.begin(), files_.names.end(), isThere) || Await();
}

void LibAVLoader::Begin()
{
    State expected = State::kNotBegun;
    if (!state_.compare_exchange_strong(expected, State::kLoading)) {
        return;
    }
    try {
        thread_ = std::thread([this] { Load(); });
    } catch (const std::system_error&) {
        Load(); // the caller waits for it instead
    }
}

bool LibAVLoader::Await()
{
    Begin();
    state_.wait(State::kLoading, std::memory_order_acquire);
    return state_.load(std::memory_order_acquire) == State::kLoaded;
}

const LibAVCalls& LibAVLoader::Calls()
{
    if (state_.load(std::memory_order_acquire) != State::kLoaded) {
        Await();
    }
    return calls_;
}

void LibAVLoader::Load()
{
    // In one order with the count of those who wait, which is looked at next: no weaker one will
    // do.
    state_.store(LoadAll() ? State::kLoaded : State::kFailed, std::memory_order_seq_cst);
    state_.notify_all();
}

// They stay for the life of the process: some of what they bring cannot be unloaded.
bool LibAVLoader::LoadAll()
{
    for (size_t i = 0; i < files_.names.size(); ++i) {
        handles_[i] = isEnding_ ? nullptr : dlopen(files_.names[i].c_str(), RTLD_LAZY | RTLD_LOCAL);
        if (handles_[i] == nullptr) {
            return false;
        }
    }
    if (!FindCalls()) {
        return false;
    }
    calls_.av_log_set_level(AV_LOG_QUIET); // what is wrong with the data is told by codes
    return calls_.avcodec_find_decoder(AV_CODEC_ID_MPEG1VIDEO) != nullptr;
}

bool LibAVLoader::FindCalls()
{
    bool hasAll = true;
#define VORN_FIND_LIBAV_CALL(library, name)                                                        \
    calls_.name = reinterpret_cast<decltype(calls_.name)>(dlsym(handles_[library], #name));        \
    hasAll = hasAll && calls_.name != nullptr;
    VORN_LIBAV_CALLS(VORN_FIND_LIBAV_CALL)
#undef VORN_FIND_LIBAV_CALL
    return hasAll;
}

void LibAVLoader::End()
{
    isEnding_ = true;
    Join();
}

void LibAVLoader::Join()
{
    if (thread_.joinable()) {
        thread_.join();
    }
}

} // namespace toolbox
