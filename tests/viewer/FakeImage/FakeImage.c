/* SPDX-License-Identifier: MIT
 *
 * A bundle for the viewer's tests, in C: an "image" of 100 x 50 pixels that writes down what is
 * asked of it. An object does what its file name says, words separated by '-':
 *   rows       tells of ten new rows with every 100 bytes, else of none
 *   moves      draws in each Idle once it is decoded
 *   once       draws grey the first time it is displayed, and nothing from then on
 *   fails<N>   decoding ends with that code
 */
#include "src/plugin/VornPluginABI.h"
#include "toolbox/Errors.h"
#include "toolbox/quickdraw/QuickDraw.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kLogSize = 1 << 16, kChunk = 100, kRows = 10 };

struct VornPlugin {
    char name[64];
    SInt32 bytes;
    Boolean ended;
    int displays;
    UInt32 flags;
};

static VornPluginHostCalls gCalls;
static char gLog[kLogSize];
static size_t gLogLength;

VORN_EXPORT const char* FakeBundleLog(void);
VORN_EXPORT void FakeBundleReset(void);

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

void FakeBundleReset(void)
{
    gLogLength = 0;
    gLog[0] = '\0';
}

static Boolean Has(const VornPlugin* object, const char* word)
{
    return strstr(object->name, word) != NULL;
}

static void Fill(const Rect* rect, UInt16 grey)
{
    const RGBColor color = {grey, grey, grey};
    RGBBackColor(&color);
    EraseRect(rect);
    BackColor(whiteColor);
}

Boolean VornPluginCanHandleData(CFBundleRef bundle, const void* bytes, SInt32 length,
                                const char* mimeType, const char* fileName)
{
    (void)bundle;
    (void)bytes;
    (void)length;
    (void)fileName;
    return strcmp(mimeType, "image/x-fake") == 0;
}

OSErr VornPluginMakeNewObject(CFBundleRef bundle, const VornPluginHostCalls* hostCalls,
                              OSType fileType, OSType creator, const char* fileName,
                              const char* mimeType, VornPlugin** outObject)
{
    (void)bundle;
    (void)fileType;
    (void)creator;
    (void)mimeType;
    gCalls = *hostCalls;
    *outObject = calloc(1, sizeof(VornPlugin));
    snprintf((*outObject)->name, sizeof(*outObject)->name, "%s", fileName);
    return noErr;
}

OSErr VornPluginDecodeObject(VornPlugin* object)
{
    char chunk[kChunk];
    SInt32 size = 0;
    unsigned char complete = 0;
    SInt16 row = 0;
    const Rect picture = {0, 0, 50, 100};
    gCalls.gotRect(object, &picture);
    for (SInt32 count = kChunk;; count = kChunk) {
        if (gCalls.getData(object, chunk, object->bytes, &count, &size, &complete) != noErr) {
            break;
        }
        object->bytes += count;
        if (Has(object, "rows")) {
            gCalls.decodedChunk(object, row, (SInt16)(row + kRows));
            row = (SInt16)(row + kRows);
        }
    }
    object->ended = 1;
    const char* fails = strstr(object->name, "fails");
    const OSErr err = fails == NULL ? noErr : (OSErr)atoi(fails + strlen("fails"));
    gCalls.renderingDone(object, err);
    return err == noErr ? noErr : paramErr;
}

OSErr VornPluginDisplayObject(VornPlugin* object, const Rect* displayRect, unsigned char flag)
{
    RgnHandle clip = NewRgn();
    GetClip(clip);
    const Rect clipped = GetRegionRect(clip, 0);
    DisposeRgn(clip);
    (void)flag;
    Log("display %s %d-%d\n", object->name, clipped.top, clipped.bottom);
    ++object->displays;
    if (!Has(object, "once") || object->displays == 1) {
        Fill(displayRect, 0x8080);
    }
    return noErr;
}

OSErr VornPluginIdleObject(VornPlugin* object, const Rect* displayRect, unsigned char flag)
{
    (void)flag;
    Log("idle %s\n", object->name);
    if (object->ended && Has(object, "moves")) {
        EraseRect(displayRect);
    }
    return noErr;
}

/* Leaves the port's colours as somebody else's drawing would. */
Boolean VornPluginHandleObjectClick(VornPlugin* object, const Rect* displayRect,
                                    const EventRecord* event)
{
    (void)displayRect;
    Log("event %s %d\n", object->name, event->what);
    BackColor(blackColor);
    ForeColor(whiteColor);
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
    (void)object;
    return noErr;
}

OSErr VornPluginGetObjectData(VornPlugin* object, UInt32* dataType, Handle* outData)
{
    (void)object;
    (void)dataType;
    (void)outData;
    return paramErr;
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
    (void)object;
    return 1;
}

void VornPluginGetObjectComment(VornPlugin* object, char* buffer, UInt32 bufferSize)
{
    snprintf(buffer, bufferSize + 1, "flags %u", object->flags);
}

void VornPluginFreeObject(VornPlugin* object)
{
    free(object);
}
