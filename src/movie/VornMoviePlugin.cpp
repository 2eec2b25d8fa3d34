// SPDX-License-Identifier: MIT
#include "src/movie/VornMoviePlugin.h"

#include "toolbox/Errors.h"
#include "toolbox/gestalt/Gestalt.h"
#include "toolbox/memory/Memory.h"

#include <cstring>

namespace
{

constexpr UInt16 kLastVersionWithoutLoadState = 0x040F;

// The text after the last dot of a file name, null if it has fewer than two characters. The first
// character is never taken for the dot, so a name without one gives all but its first character.
const char* FindExtension(const char* fileName)
{
    if (fileName == nullptr || *fileName == '\0') {
        return nullptr;
    }
    const size_t end = std::strlen(fileName);
    size_t dot = end - 1;
    while (dot > 0 && fileName[dot] != '.') {
        --dot;
    }
    return dot + 2 < end ? fileName + dot + 1 : nullptr;
}

} // namespace

VornMoviePlugin* VornMoviePlugin::gMoviePlugin = nullptr;

VornMoviePlugin::VornMoviePlugin(CFBundleRef bundleRef) : VornPlugin(bundleRef)
{
    SInt32 response = 0;
    const OSErr err = Gestalt(gestaltQuickTime, &response);
    if (err != noErr) {
        throw err;
    }
    if (!QuickTimePresent()) {
        throw OSErr{paramErr};
    }
    quickTimeVersion = static_cast<UInt16>(static_cast<UInt32>(response) >> 16);
    hasLoadStateCalls = quickTimeVersion > kLastVersionWithoutLoadState;
    EnterMovies();
    gMoviePlugin = this;
}

// The order matters: the listeners (QuickTime's data handler instances) must let go first, the
// tasking thread must not run on a dying movie, and the movie must be gone before its file is.
VornMoviePlugin::~VornMoviePlugin()
{
    NotifyListenersTermination();
    if (taskingThread != kNoThreadID) {
        DisposeThread(taskingThread, nullptr, false);
    }
    if (movie != nullptr) {
        StopMovie(movie);
    }
    if (spoolBuffer != nullptr) {
        DisposeHandle(spoolBuffer);
    }
    if (movieController != nullptr) {
        DisposeMovieController(movieController);
    }
    if (movie != nullptr) {
        DisposeMovie(movie);
    }
    if (spoolReadRefNum != -1) {
        FSClose(spoolReadRefNum);
    }
    if (spoolFileCreated) {
        FSpDelete(&spoolFileSpec);
    }
    // Also when a newer plug-in has taken our place: the data handler's binding relies on hosts
    // opening one movie at a time.
    gMoviePlugin = nullptr;
    loadListeners.Clear(false);
}

VornMoviePlugin* VornMoviePlugin::GetMoviePlugin()
{
    return gMoviePlugin;
}

void VornMoviePlugin::MyErrProc(OSErr, RefCon) {}

Boolean VornMoviePlugin::CanHandleData(const char* type, const char* name)
{
    if (!QuickTimePresent()) {
        return false;
    }
    const char* const extension = FindExtension(name);
    return CanHandleMimeType(type) || (extension != nullptr && CanHandleFileExtension(extension));
}
