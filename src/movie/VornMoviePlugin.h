// SPDX-License-Identifier: MIT
#pragma once

#include "src/movie/VornMovieLoadListener.h"
#include "src/plugin/VornPlugin.h"
#include "src/util/CPointerList.h"
#include "toolbox/files/Files.h"
#include "toolbox/quicktime/Movies.h"
#include "toolbox/threads/Threads.h"

// Plays one embedded movie. Its bytes are copied from the data source to a spool file as they
// arrive; QuickTime reads them from there through the plug-in's own data handler.
//
// Three cooperative threads meet here without locks: the application thread (construction,
// display, idle, clicks, destruction), the decoding thread (Render) and the tasking thread, which
// opens the movie and gives it time until all bytes are in.
class VornMoviePlugin : public VornPlugin
{
public:
    // Throws Gestalt's error, or paramErr if movies cannot be played in this process.
    explicit VornMoviePlugin(CFBundleRef bundle);
    ~VornMoviePlugin() override;

    // The plug-in constructed last, null once any has been destroyed since. The data handler binds
    // to it when QuickTime opens it.
    static VornMoviePlugin* GetMoviePlugin();
    // A movie error procedure; nothing installs it.
    static void MyErrProc(OSErr err, RefCon refCon);

    Boolean CanHandleData(const char* mimeType, const char* fileName) override;
    // Draws through the controller; nothing before there is one.
    void Display(const Rect& bounds, unsigned char flag) override;
    // Builds the controller once the movie is playable, reports the object's size, and gives the
    // controller time. Throws the movie's error.
    void Idle(const Rect& bounds, unsigned char flag) override;
    Boolean HandleClick(const Rect& bounds, const EventRecord& event) override;
    // A movie cannot be dragged out and its data are not handed out.
    void PrepareDrag(DragReference drag, UInt32 itemRef, const Rect& bounds,
                     unsigned char& allowed) override;
    void CleanupDrag() override;
    void GetData(UInt32& dataType, Handle* outHandle) override;
    void GetDisplayRect(const Rect& bounds, Rect& outRect) override;
    // Spools all bytes; returns when they are in. Throws OSErr.
    void Render() override;
    void DisposeDecodingData() override;

    // For the data handler ------------------------------------------------------------------

    // Copies up to *ioCount spooled bytes at `offset` into `buffer`; *ioCount becomes the number
    // copied. Bytes that are not on disk yet are waited for, yielding, with `waitForData`; without
    // it they throw SInt32: notEnoughDataErr while data arrive, eofErr afterwards. Everything else
    // throws OSErr. With `waitForData` never on the decoding thread.
    void GetMovieData(void* buffer, SInt32 offset, SInt32* ioCount, unsigned char waitForData);
    // Yields until `targetBytes` bytes are on disk or the data have ended. Never on the decoding
    // thread, which brings them. 64 bits wide, as the end of a request may lie past 2 GiB.
    void SpoolMovieData(SInt64 targetBytes);

    // Which of the plug-in's threads is running; false when the Thread Manager cannot tell.
    Boolean OnDecodingThread() const;
    Boolean OnTaskingThread() const;
    Boolean OnApplicationThread() const;

    // Adds a listener that is not in the list yet; it stays the caller's. Throws memFullErr.
    void AddLoadListener(VornMovieLoadListener* listener);
    // Leaves a hole in the list, so that a walk in progress stays in step.
    void RemoveLoadListener(VornMovieLoadListener* listener);

    // Spooling. All throw OSErr.
    void CreateMovieFile();
    // Copies one chunk from the data source to the spool file.
    void SpoolMovieToFile();
    void CloseMovieFile();

    // Opens the movie from the spool file; the first argument is ignored. Returns what went wrong,
    // leaving `movie` null.
    OSErr OpenMovie(unsigned char ignored, unsigned char asyncLoad);
    // Trims the movie to what has loaded.
    void AdjustMovieLength();
    void SetupMovieController();
    // Clips the controller to the current port's clip.
    void SetMovieControllerClip();

    // The tasking thread; `param` is the plug-in. Never throws.
    static void* TaskingThreadEntry(void* param);
    void MovieTaskingThread();

    void NotifyListenersProgress(SInt32 bytes);
    void NotifyListenersComplete(SInt32 bytes);
    void NotifyListenersTermination();

    FSSpec spoolFileSpec{};
    ThreadID taskingThread = kNoThreadID; // none while 0
    Boolean spoolFileCreated = false;     // the file is there and ours to delete
    Boolean allDataSpooled = false;       // never cleared again
    Boolean inControllerCall = false;     // the application thread must not wait for bytes
    SInt32 bytesSpooled = 0;              // on disk
    Boolean reservedFlag = false;
    Boolean hasLoadStateCalls = false; // QuickTime 4.1 or later
    UInt16 quickTimeVersion = 0;       // 0x0410 is 4.1
    // Two paths on purpose: spooling closes its own when the data are complete, QuickTime's reads
    // go on until the plug-in is destroyed. -1 when closed.
    SInt16 spoolWriteRefNum = -1;
    SInt16 spoolReadRefNum = -1;
    Movie movie = nullptr;
    MovieController movieController = nullptr;
    UInt32 reservedLong = 0;
    Handle spoolBuffer = nullptr; // one chunk
    CGrafPtr moviePort = nullptr; // where the movie draws
    CPointerList<VornMovieLoadListener*> loadListeners;

private:
    void OpenSpoolFileForWriting();
    void OpenSpoolFileForReading();
    SInt32 ReadSpooledBytes(void* buffer, SInt32 offset, SInt32 want);
    void OpenMovieIfDue(UInt32& nextOpenTick);
    bool IsMoviePlayable();
    void ShowMovieInController();
    template <typename Notification>
    void NotifyListeners(const Notification& notification);

    static VornMoviePlugin* gMoviePlugin;
};
