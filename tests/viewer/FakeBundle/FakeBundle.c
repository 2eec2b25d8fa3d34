/* SPDX-License-Identifier: MIT */
#include "tests/viewer/FakeBundle/FakeBundle.h"

#include "toolbox/Errors.h"
#include "toolbox/quickdraw/QuickDraw.h"
#include "toolbox/threads/Threads.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kChunk = 16384, kLogSize = 1 << 18 };

struct VornPlugin {
    char name[64];
    SInt32 bytes;
    Boolean ended;
    Boolean hasDimensions;
    Boolean waited;
    UInt32 flags;
};

static VornPluginHostCalls gCalls;
static char gLog[kLogSize];
static size_t gLogLength;
static SInt32 gViolations;
static SInt32 gWrongClips;
static VornPlugin* gOpening; /* made, but not opened yet */

static void Log(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(gLog + gLogLength, kLogSize - gLogLength, format, arguments);
    va_end(arguments);
    if (length > 0 && gLogLength + (size_t)length < kLogSize) {
        gLogLength += (size_t)length;
    }
}

const char* FakeBundleLog(void)
{
    return gLog;
}
SInt32 FakeBundleViolations(void)
{
    return gViolations;
}
SInt32 FakeBundleWrongClips(void)
{
    return gWrongClips;
}

void FakeBundleReset(void)
{
    gLogLength = 0;
    gLog[0] = '\0';
    gViolations = 0;
    gWrongClips = 0;
    gOpening = NULL;
}

static void CheckAdmission(const VornPlugin* object)
{
    if (gOpening != NULL && gOpening != object) {
        ++gViolations;
    }
}

static Boolean Has(const VornPlugin* object, const char* word)
{
    return strstr(object->name, word) != NULL;
}

static SInt32 NumberBehind(const VornPlugin* object, const char* word, SInt32 otherwise)
{
    const char* place = strstr(object->name, word);
    return place == NULL ? otherwise : (SInt32)atoi(place + strlen(word));
}

static void CheckClip(const Rect* rect)
{
    RgnHandle clip = NewRgn();
    GetClip(clip);
    const Rect clipped = GetRegionRect(clip, 0);
    if (CountRegionRects(clip) != 1 || !EqualRect(&clipped, rect)) {
        ++gWrongClips;
    }
    DisposeRgn(clip);
}

Boolean VornPluginCanHandleData(CFBundleRef bundle, const void* bytes, SInt32 length,
                                const char* mimeType, const char* fileName)
{
    (void)bundle;
    (void)bytes;
    (void)length;
    CheckAdmission(NULL);
    Log("check %s\n", fileName);
    return strcmp(mimeType, "video/x-fake") == 0;
}

OSErr VornPluginMakeNewObject(CFBundleRef bundle, const VornPluginHostCalls* hostCalls,
                              OSType fileType, OSType creator, const char* fileName,
                              const char* mimeType, VornPlugin** outObject)
{
    (void)bundle;
    (void)creator;
    (void)mimeType;
    CheckAdmission(NULL);
    *outObject = NULL;
    if (strstr(fileName, "badmake") != NULL) {
        return memFullErr;
    }
    gCalls = *hostCalls;
    VornPlugin* object = calloc(1, sizeof(VornPlugin));
    snprintf(object->name, sizeof object->name, "%s", fileName);
    Log("make %s %c%c%c%c\n", fileName, (int)(fileType >> 24), (int)(fileType >> 16 & 0xFF),
        (int)(fileType >> 8 & 0xFF), (int)(fileType & 0xFF));
    gOpening = object;
    *outObject = object;
    return noErr;
}

OSErr VornPluginDecodeObject(VornPlugin* object)
{
    static char chunk[kChunk];
    SInt32 size = 0;
    unsigned char complete = 0;
    SInt32 count = 0;
    OSErr err = noErr;
    while (err == noErr) {
        count = kChunk;
        err = gCalls.getData(object, chunk, object->bytes, &count, &size, &complete);
        object->bytes += count;
        if (Has(object, "stop") && object->bytes >= NumberBehind(object, "stop", 0)) {
            return ioErr;
        }
    }
    object->ended = 1;
    err = Has(object, "baddecode") ? ioErr : noErr;
    gCalls.renderingDone(object, err);
    return err;
}

OSErr VornPluginDisplayObject(VornPlugin* object, const Rect* displayRect, unsigned char flag)
{
    (void)flag;
    CGrafPtr port = NULL;
    Rect bounds;
    SInt32 rowBytes = 0;
    Log("display %s\n", object->name);
    CheckClip(displayRect);
    GetPort(&port);
    GetPortBounds(port, &bounds);
    UInt8* pixels = GetPortPixels(port, &rowBytes);
    const int grey = (int)NumberBehind(object, "grey", 0);
    for (SInt32 v = displayRect->top; v < displayRect->bottom && v < bounds.bottom; ++v) {
        for (SInt32 h = displayRect->left; h < displayRect->right && h < bounds.right; ++h) {
            memset(pixels + v * rowBytes + h * 4, grey, 4);
        }
    }
    return noErr;
}

static void WaitInside(VornPlugin* object)
{
    object->waited = 1;
    while (object->bytes < NumberBehind(object, "wait", 0) && !object->ended) {
        YieldToAnyThread();
    }
}

OSErr VornPluginIdleObject(VornPlugin* object, const Rect* displayRect, unsigned char flag)
{
    (void)flag;
    CheckClip(displayRect);
    if (!object->waited) {
        WaitInside(object);
    }
    if (!object->hasDimensions && !Has(object, "never") &&
        object->bytes >= NumberBehind(object, "open", 1)) {
        const Rect picture = {0, 0, 50, 100};
        const Rect bar = {0, 0, 17, 240};
        const Rect rect = Has(object, "bar") ? bar : picture;
        object->hasDimensions = 1;
        gCalls.gotRect(object, &rect);
    }
    if (gOpening == object && (object->hasDimensions || object->ended)) {
        gOpening = NULL;
    }
    return Has(object, "badidle") && object->ended ? invalidMovie : noErr;
}

Boolean VornPluginHandleObjectClick(VornPlugin* object, const Rect* displayRect,
                                    const EventRecord* event)
{
    CheckClip(displayRect);
    Log("event %s %d %u %d,%d%s\n", object->name, event->what, event->message, event->where.v,
        event->where.h, (event->modifiers & shiftKey) != 0 ? " shift" : "");
    return 1;
}

OSErr VornPluginPrepareDrag(VornPlugin* object, DragRef drag, UInt32 itemRef,
                            const Rect* displayRect, unsigned char* outFlag)
{
    (void)object;
    (void)drag;
    (void)itemRef;
    (void)displayRect;
    (void)outFlag;
    return noErr;
}

OSErr VornPluginCleanupDrag(VornPlugin* object)
{
    Log("cleanup %s\n", object->name);
    return noErr;
}

OSErr VornPluginGetObjectData(VornPlugin* object, UInt32* dataType, Handle* outData)
{
    (void)object;
    *dataType = FOUR_CHARS('?', '?', '?', '?');
    *outData = NULL;
    return noErr;
}

void VornPluginGetObjectDisplayRect(VornPlugin* object, const Rect* bounds, Rect* outRect)
{
    (void)object;
    *outRect = *bounds;
}

void VornPluginSetObjectDisplayFlags(VornPlugin* object, UInt32 flags)
{
    object->flags = flags;
}

Boolean VornPluginHaveObjectDimensions(VornPlugin* object)
{
    return object->hasDimensions;
}

void VornPluginGetObjectComment(VornPlugin* object, char* buffer, UInt32 bufferSize)
{
    snprintf(buffer, bufferSize + 1, "flags %u", object->flags);
}

void VornPluginFreeObject(VornPlugin* object)
{
    CheckAdmission(object);
    Log("free %s\n", object->name);
    if (gOpening == object) {
        gOpening = NULL;
    }
    free(object);
}
