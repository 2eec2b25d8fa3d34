/* SPDX-License-Identifier: MIT
 *
 * The smallest host: shows one object on a page, plays a second of it and writes the page to a
 * picture file. docs/writing-a-host.md goes through it.
 *
 *   minimal_host BUNDLE OBJECT PICTURE.ppm
 *   minimal_host build/dev/plugins/VornMovie.plugin clip.mpg page.ppm
 *
 * Exit status: 0 it showed, 1 it did not, 2 usage.
 */
#define _POSIX_C_SOURCE 200809L /* pread, nanosleep */

#include "src/plugin/VornPluginABI.h"
#include "toolbox/Errors.h"
#include "toolbox/quicktime/Movies.h"
#include "toolbox/threads/Threads.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

enum { kPageWidth = 480, kPageHeight = 320, kDecodeStackSize = 65536 };
static const SInt64 kPlayMicroseconds = 1000000;
static const UInt32 kFitAndCenter = kVornDisplayScale | kVornDisplayShrinkOnly |
                                    kVornDisplayKeepAspect | kVornDisplayCenterH |
                                    kVornDisplayCenterV;

/* The bundle's entry points, found by name: nothing here is linked to the bundle. */
static struct {
    CFBundleRef reference;
    __typeof__(&VornPluginCanHandleData) canHandleData;
    __typeof__(&VornPluginMakeNewObject) makeNewObject;
    __typeof__(&VornPluginDecodeObject) decodeObject;
    __typeof__(&VornPluginDisplayObject) displayObject;
    __typeof__(&VornPluginIdleObject) idleObject;
    __typeof__(&VornPluginHandleObjectClick) handleObjectClick;
    __typeof__(&VornPluginSetObjectDisplayFlags) setObjectDisplayFlags;
    __typeof__(&VornPluginGetObjectDisplayRect) getObjectDisplayRect;
    __typeof__(&VornPluginHaveObjectDimensions) haveObjectDimensions;
    __typeof__(&VornPluginFreeObject) freeObject;
} bundle;

/* The one object. A host with several finds them by the plug-in's pointer. */
static struct {
    VornPlugin* plugin;
    int file;
    SInt32 fileSize;
    Boolean isDecoded;
    OSErr decodeResult;
} object;

static CGrafPtr window;

/* Host calls ------------------------------------------------------------------------------ */

static OSErr GotRect(VornPlugin* plugin, const Rect* rect)
{
    (void)plugin;
    printf("the object wants %d x %d pixels\n", rect->right, rect->bottom);
    return noErr;
}

static OSErr RenderingDone(VornPlugin* plugin, OSErr error)
{
    (void)plugin;
    printf("decoding ended with %d\n", error);
    return noErr;
}

static OSErr DecodedChunk(VornPlugin* plugin, SInt16 first, SInt16 end)
{
    (void)plugin;
    (void)first;
    (void)end;
    return noErr; /* a movie has no rows to tell of */
}

/* A file is all there, so nothing waits; the yield is what lets the rest of the page live while
 * an object loads. This frame may be unwound out of it, so it owns nothing. */
static OSErr GetData(VornPlugin* plugin, void* buffer, SInt32 offset, SInt32* count,
                     SInt32* dataSize, unsigned char* dataComplete)
{
    const SInt32 wanted = *count;
    ssize_t got = 0;
    (void)plugin;
    *count = 0;
    YieldToAnyThread();
    *dataSize = object.fileSize;
    *dataComplete = 1;
    if (buffer == NULL || wanted <= 0)
        return noErr;
    got = offset < 0 ? 0 : pread(object.file, buffer, (size_t)wanted, offset);
    if (got <= 0)
        return kDataNotAvailableErr; /* the end, and a failure of the file too */
    *count = (SInt32)got;
    return noErr;
}

static OSErr GetEstimatedObjectBytes(VornPlugin* plugin, SInt32* bytes)
{
    (void)plugin;
    *bytes = object.fileSize;
    return noErr;
}

static const VornPluginHostCalls hostCalls = {GotRect, RenderingDone, DecodedChunk, GetData,
                                              GetEstimatedObjectBytes};

/* The bundle ------------------------------------------------------------------------------ */

static void Fail(const char* what, const char* why)
{
    fprintf(stderr, "minimal_host: %s: %s\n", what, why);
    exit(1);
}

static void FailWithCode(const char* what, OSErr error)
{
    char text[32];
    snprintf(text, sizeof text, "error %d", error);
    Fail(what, text);
}

/* NAME.plugin holds Contents/Linux/NAME.so. */
static void* LoadCode(const char* path)
{
    char code[4096];
    const char* slash = strrchr(path, '/');
    const char* name = slash != NULL ? slash + 1 : path;
    const char* dot = strrchr(name, '.');
    const int length = dot != NULL ? (int)(dot - name) : (int)strlen(name);
    void* handle = NULL;
    snprintf(code, sizeof code, "%s/Contents/Linux/%.*s.so", path, length, name);
    handle = dlopen(code, RTLD_NOW | RTLD_LOCAL);
    if (handle == NULL)
        Fail(path, dlerror());
    return handle;
}

/* `entryPoint` is the address of a pointer to a function, which ISO C does not let a void* be. */
static void Find(void* code, const char* name, void* entryPoint)
{
    void* symbol = dlsym(code, name);
    if (symbol == NULL)
        Fail(name, "no such entry point");
    memcpy(entryPoint, &symbol, sizeof symbol);
}

static void OpenBundle(const char* path)
{
    void* code = LoadCode(path);
    CFURLRef url =
        CFURLCreateFromFileSystemRepresentation(NULL, (const UInt8*)path, (CFIndex)strlen(path), 1);
    bundle.reference = url != NULL ? CFBundleCreate(NULL, url) : NULL;
    if (bundle.reference == NULL)
        Fail(path, "not a bundle");
    CFRelease(url);
    Find(code, "VornPluginCanHandleData", &bundle.canHandleData);
    Find(code, "VornPluginMakeNewObject", &bundle.makeNewObject);
    Find(code, "VornPluginDecodeObject", &bundle.decodeObject);
    Find(code, "VornPluginDisplayObject", &bundle.displayObject);
    Find(code, "VornPluginIdleObject", &bundle.idleObject);
    Find(code, "VornPluginHandleObjectClick", &bundle.handleObjectClick);
    Find(code, "VornPluginSetObjectDisplayFlags", &bundle.setObjectDisplayFlags);
    Find(code, "VornPluginGetObjectDisplayRect", &bundle.getObjectDisplayRect);
    Find(code, "VornPluginHaveObjectDimensions", &bundle.haveObjectDimensions);
    Find(code, "VornPluginFreeObject", &bundle.freeObject);
}

/* The page -------------------------------------------------------------------------------- */

static const Rect pageRect = {0, 0, kPageHeight, kPageWidth};

/* Before each call that draws: the object may be drawn on the page and nowhere else. */
static void PreparePort(void)
{
    RgnHandle clip = NewRgn();
    SetPort(window);
    RectRgn(clip, &pageRect);
    SetClip(clip);
    DisposeRgn(clip);
}

static OSErr IdleObject(void)
{
    PreparePort();
    return bundle.idleObject(object.plugin, &pageRect, 0);
}

static void DisplayObject(void)
{
    Rect place = {0, 0, 0, 0};
    OSErr error = noErr;
    PreparePort();
    error = bundle.displayObject(object.plugin, &pageRect, 0);
    if (error != noErr)
        FailWithCode("display", error);
    bundle.getObjectDisplayRect(object.plugin, &pageRect, &place);
    printf("drawn at %d,%d to %d,%d\n", place.left, place.top, place.right, place.bottom);
}

static void PressSpace(void)
{
    EventRecord event = {keyDown, kSpaceCharCode, 0, {0, 0}, btnState};
    event.when = TickCount();
    PreparePort();
    printf("space bar: %s\n", bundle.handleObjectClick(object.plugin, &pageRect, &event)
                                  ? "taken"
                                  : "not for the object");
}

/* Sleeps until the toolbox has something to do, `end` at the latest. A host with a window waits
 * for the user's events here. */
static void SleepUntilDue(SInt64 end)
{
    const SInt64 now = ToolboxMicroseconds();
    SInt64 due = NextToolboxDeadline();
    struct timespec pause;
    if (due < 0 || due > end)
        due = end;
    if (due <= now || !object.isDecoded) /* the decoding thread is still ready to run */
        return;
    pause.tv_sec = (time_t)((due - now) / 1000000);
    pause.tv_nsec = (long)((due - now) % 1000000 * 1000);
    nanosleep(&pause, NULL);
}

/* The object's life ----------------------------------------------------------------------- */

static void* DecodeObject(void* unused)
{
    (void)unused;
    object.decodeResult = bundle.decodeObject(object.plugin);
    object.isDecoded = 1;
    return NULL;
}

static void OpenFile(const char* path)
{
    struct stat status;
    object.file = open(path, O_RDONLY);
    if (object.file < 0 || fstat(object.file, &status) != 0)
        Fail(path, "cannot be opened");
    if (status.st_size > INT32_MAX)
        Fail(path, "larger than 2147483647 bytes");
    object.fileSize = (SInt32)status.st_size;
}

static void StartObject(const char* path)
{
    const char* slash = strrchr(path, '/');
    const char* name = slash != NULL ? slash + 1 : path;
    const OSType unknown = FOUR_CHARS('?', '?', '?', '?');
    ThreadID thread = kNoThreadID;
    OSErr error = noErr;
    if (!bundle.canHandleData(bundle.reference, "", 0, "", name))
        Fail(path, "the bundle does not know this kind of object");
    error = bundle.makeNewObject(bundle.reference, &hostCalls, unknown, unknown, name, "",
                                 &object.plugin);
    if (error != noErr)
        FailWithCode("making the object", error);
    bundle.setObjectDisplayFlags(object.plugin, kFitAndCenter);
    PreparePort(); /* the thread inherits the port */
    error = NewThread(kCooperativeThread, NewThreadEntryUPP(DecodeObject), NULL, kDecodeStackSize,
                      0, NULL, &thread);
    if (error != noErr)
        FailWithCode("starting to decode", error);
}

/* Until the object knows its size, or cannot come to know it: decoding has ended, and everybody
 * had a turn since then, and so had the object. */
static void WaitForSize(void)
{
    Boolean isLastRound = 0;
    while (!bundle.haveObjectDimensions(object.plugin)) {
        OSErr error = noErr;
        if (isLastRound)
            Fail("the object", "there is nothing to show in it");
        isLastRound = object.isDecoded;
        YieldToAnyThread();
        error = IdleObject();
        if (error != noErr)
            FailWithCode("idle", error);
    }
}

static void Play(void)
{
    const SInt64 end = ToolboxMicroseconds() + kPlayMicroseconds;
    MovieStatistics statistics;
    PressSpace();
    while (ToolboxMicroseconds() < end) {
        YieldToAnyThread();
        IdleObject();
        SleepUntilDue(end);
    }
    GetMovieStatistics(NULL, &statistics);
    printf("%d pictures shown, %lld sound frames played\n", statistics.picturesShown,
           (long long)statistics.soundFrames);
}

/* An object may be freed only after its decoding has returned. */
static void FinishObject(void)
{
    while (!object.isDecoded) {
        YieldToAnyThread();
        IdleObject();
    }
    bundle.freeObject(object.plugin);
    close(object.file);
}

/* The pixels of a port are the bytes x, R, G, B. */
static void WritePicture(const char* path)
{
    SInt32 rowBytes = 0;
    const UInt8* pixels = GetPortPixels(window, &rowBytes);
    FILE* file = fopen(path, "wb");
    int isWritten = 0;
    if (file == NULL)
        Fail(path, "cannot be written");
    fprintf(file, "P6\n%d %d\n255\n", kPageWidth, kPageHeight);
    for (ptrdiff_t v = 0; v < kPageHeight; ++v) {
        for (ptrdiff_t h = 0; h < kPageWidth; ++h)
            fwrite(pixels + v * rowBytes + h * 4 + 1, 1, 3, file);
    }
    isWritten = !ferror(file);
    if (fclose(file) != 0 || !isWritten)
        Fail(path, "cannot be written");
    printf("page written to %s\n", path);
}

int main(int argc, char** argv)
{
    if (argc != 4) {
        fprintf(stderr, "usage: minimal_host BUNDLE OBJECT PICTURE.ppm\n");
        return 2;
    }
    for (size_t end = strlen(argv[1]); end > 1 && argv[1][end - 1] == '/';)
        argv[1][--end] = '\0'; /* as a shell completes a folder's name */
    OpenBundle(argv[1]);
    OpenFile(argv[2]);
    if (CreateWindowPort(&pageRect, &window) != noErr)
        Fail("the page", "no memory");
    StartObject(argv[2]);
    WaitForSize();
    DisplayObject();
    Play();
    WritePicture(argv[3]);
    FinishObject();
    DisposeWindowPort(window);
    CFRelease(bundle.reference); /* the code stays loaded: the toolbox knows its data handler */
    return 0;
}
