// SPDX-License-Identifier: MIT
//
// Which thread is running, and telling the listeners how far spooling has come.
#include "src/movie/VornMoviePlugin.h"
#include "toolbox/Errors.h"

namespace
{

bool IsCurrentThread(ThreadID thread)
{
    ThreadID current = kNoThreadID;
    return GetCurrentThread(&current) == noErr && current == thread;
}

} // namespace

Boolean VornMoviePlugin::OnDecodingThread() const
{
    return IsCurrentThread(decodingThread);
}

Boolean VornMoviePlugin::OnTaskingThread() const
{
    return IsCurrentThread(taskingThread);
}

Boolean VornMoviePlugin::OnApplicationThread() const
{
    ThreadState state = kStoppedThreadState;
    return GetThreadState(kApplicationThreadID, &state) == noErr && state == kRunningThreadState;
}

void VornMoviePlugin::AddLoadListener(VornMovieLoadListener* listener)
{
    for (SInt32 index = 0; index < loadListeners.count; ++index) {
        if (loadListeners.items[index] == listener) {
            return;
        }
    }
    loadListeners.Append(listener);
}

void VornMoviePlugin::RemoveLoadListener(VornMovieLoadListener* listener)
{
    for (SInt32 index = 0; index < loadListeners.count; ++index) {
        if (loadListeners.items[index] == listener) {
            loadListeners.items[index] = nullptr;
            return;
        }
    }
}

// Reads the count again on every pass: a listener added by a notification hears it too.
template <typename Notification>
void VornMoviePlugin::NotifyListeners(const Notification& notification)
{
    for (SInt32 index = 0; index < loadListeners.count; ++index) {
        VornMovieLoadListener* const listener = loadListeners[index];
        if (listener != nullptr) {
            notification(*listener);
        }
    }
}

void VornMoviePlugin::NotifyListenersProgress(SInt32 bytes)
{
    NotifyListeners([bytes](VornMovieLoadListener& listener) { listener.LoadProgress(bytes); });
}

void VornMoviePlugin::NotifyListenersComplete(SInt32 bytes)
{
    NotifyListeners([bytes](VornMovieLoadListener& listener) { listener.LoadComplete(bytes); });
    if (movieController != nullptr) {
        MCMovieChanged(movieController, movie);
    }
}

void VornMoviePlugin::NotifyListenersTermination()
{
    NotifyListeners(
        [](VornMovieLoadListener& listener) { listener.NotifyListenerOfPluginDeath(); });
}
