/* SPDX-License-Identifier: MIT
 *
 * The plug-in boundary: what a host may call in a bundle and what a bundle calls in its host.
 * C11 and C++20. All names are exported unmangled with C linkage.
 *
 * Conventions
 * - An object is known by its pointer: VornPluginMakeNewObject hands it out, and it comes back as
 *   the first argument of every host call.
 * - Results are OSErr: 0, a negative platform code, or a positive code below. Query functions
 *   (those with another result or none) report no error: the host sees false, for
 *   VornPluginGetObjectDisplayFlags zero, or an untouched output.
 * - No exception leaves an entry point, VornPluginFreeObject excepted: it has no barrier. One that
 *   comes out of a host callback (the toolbox unwinds a disposed thread that way) passes through
 *   the bundle's frames and is swallowed like any other; the toolbox throws it again at the
 *   thread's next yield.
 * - Everything runs on the toolbox's cooperative threads; nothing here may be called from another
 *   operating-system thread.
 */
#ifndef VORN_PLUGIN_ABI_H
#define VORN_PLUGIN_ABI_H

#include "src/util/Export.h"
#include "toolbox/drag/Drag.h"
#include "toolbox/events/Events.h"
#include "toolbox/foundation/Foundation.h"

TOOLBOX_BEGIN_DECLS

#ifdef __cplusplus
class VornPlugin;
#else
typedef struct VornPlugin VornPlugin;
#endif

enum {
    kDataOutOfRangeErr = 1200,     /* a range outside the object's data */
    kVornErrRenderFailed = 1202,   /* rendering failed with no code of its own */
    kVornErrImageFailed = 1206,    /* an image failed before its first frame */
    kDataNotAvailableErr = 1207,   /* the bytes are not there yet, or the data has ended */
    kVornErrImageNoData = 1208,    /* an image had no data for a first frame */
    kVornErrStillRendering = 1209, /* asked for the rendering error before rendering ended */
    kVornErrReserved1210 = 1210
};

/* Display flags: how an object's picture is placed in the area the host gives it. */
enum {
    kVornDisplayScale = 0x01,      /* scale to the bounds */
    kVornDisplayShrinkOnly = 0x02, /* with Scale and KeepAspect: never enlarge */
    kVornDisplayKeepAspect = 0x04, /* with Scale: keep the proportions */
    kVornDisplayCenterH = 0x08,
    kVornDisplayCenterV = 0x10,
    kVornDisplayAlignRight = 0x20,   /* unless centred horizontally */
    kVornDisplayAlignBottom = 0x40,  /* unless centred vertically */
    kVornDisplayPartialRedraw = 0x80 /* images draw only their invalidated rows */
};

/* The host's callbacks, all five required. They may be called from any of the object's threads. */
typedef struct VornPluginHostCalls {
    /* The object reports the rectangle it wants, its top left at 0,0. Result ignored. */
    OSErr (*gotRect)(VornPlugin* object, const Rect* displayRect);
    /* Rendering has ended with `finalError`; comes before VornPluginDecodeObject returns, whose
     * result may be another one. */
    OSErr (*renderingDone)(VornPlugin* object, OSErr finalError);
    /* An image has new rows from `first` up to `end`. */
    OSErr (*decodedChunk)(VornPlugin* object, SInt16 first, SInt16 end);
    /* Copies up to *count bytes of the object from `offset` on to `buffer` and writes the number
     * copied into *count, the length known so far into *dataSize and whether that is final into
     * *dataComplete. A null buffer with a count of 0 only asks for these two (whatever `offset`
     * is; it may be negative). 0 on success, also with fewer bytes than asked for;
     * kDataNotAvailableErr with *count 0 at the end of the data (after a failure of the source too:
     * any other code ends rendering without a movie). While it waits it yields (YieldToAnyThread);
     * a request of at most 4096 bytes waits for all of them or the end. */
    OSErr (*getData)(VornPlugin* object, void* buffer, SInt32 offset, SInt32* count,
                     SInt32* dataSize, unsigned char* dataComplete);
    /* The length the host expects, -1 if it has no idea. Always written. */
    OSErr (*getEstimatedObjectBytes)(VornPlugin* object, SInt32* outBytes);
} VornPluginHostCalls;
TOOLBOX_STATIC_ASSERT(sizeof(VornPluginHostCalls) == 5 * sizeof(void*), "five slots, nothing else");
TOOLBOX_STATIC_ASSERT(offsetof(VornPluginHostCalls, gotRect) == 0, "slot 0");
TOOLBOX_STATIC_ASSERT(offsetof(VornPluginHostCalls, renderingDone) == sizeof(void*), "slot 1");
TOOLBOX_STATIC_ASSERT(offsetof(VornPluginHostCalls, decodedChunk) == 2 * sizeof(void*), "slot 2");
TOOLBOX_STATIC_ASSERT(offsetof(VornPluginHostCalls, getData) == 3 * sizeof(void*), "slot 3");
TOOLBOX_STATIC_ASSERT(offsetof(VornPluginHostCalls, getEstimatedObjectBytes) == 4 * sizeof(void*),
                      "slot 4");

/* Entry points, in the order of an object's life ------------------------------------------- */

/* Whether the bundle can show an object, judged by MIME type and file name (either may be empty)
 * and its first `length` bytes, which are not copied. May be called before any object exists. */
VORN_EXPORT Boolean VornPluginCanHandleData(CFBundleRef bundle, const void* bytes, SInt32 length,
                                            const char* mimeType, const char* fileName);
/* Installs the host calls for the whole bundle and makes an object, which the host owns.
 * File name and MIME type are copied, 255 bytes of each at most. On failure *outObject is null:
 * -50 for a table with a null slot, else the code of what failed. */
VORN_EXPORT OSErr VornPluginMakeNewObject(CFBundleRef bundle, const VornPluginHostCalls* hostCalls,
                                          OSType fileType, OSType creator, const char* fileName,
                                          const char* mimeType, VornPlugin** outObject);
/* Decodes the object, pulling its bytes through getData; returns when all of them are in. Run it
 * on a cooperative thread of its own. The result is 0, or the code that decoding ended with; it
 * may differ from what renderingDone was told. */
VORN_EXPORT OSErr VornPluginDecodeObject(VornPlugin* object);
/* Draws into the current port within `displayRect`, under the port's clip. */
VORN_EXPORT OSErr VornPluginDisplayObject(VornPlugin* object, const Rect* displayRect,
                                          unsigned char flag);
/* Gives the object time: to be called often, with the port and clip set as for displaying. */
VORN_EXPORT OSErr VornPluginIdleObject(VornPlugin* object, const Rect* displayRect,
                                       unsigned char flag);
/* Offers a user's action to the object; true when it took it. */
VORN_EXPORT Boolean VornPluginHandleObjectClick(VornPlugin* object, const Rect* displayRect,
                                                const EventRecord* event);
/* Adds the object's flavours and image to a drag; *outFlag (may be null): dragging is allowed. */
VORN_EXPORT OSErr VornPluginPrepareDrag(VornPlugin* object, DragRef drag, UInt32 itemRef,
                                        const Rect* displayRect, unsigned char* outFlag);
VORN_EXPORT OSErr VornPluginCleanupDrag(VornPlugin* object);
/* The object's data: its type and, if outData is not null, a new handle (or null) for the host. */
VORN_EXPORT OSErr VornPluginGetObjectData(VornPlugin* object, UInt32* dataType, Handle* outData);
/* Where in `bounds` the object would draw, by its display flags. */
VORN_EXPORT void VornPluginGetObjectDisplayRect(VornPlugin* object, const Rect* bounds,
                                                Rect* outRect);
VORN_EXPORT UInt32 VornPluginGetObjectDisplayFlags(VornPlugin* object);
VORN_EXPORT void VornPluginSetObjectDisplayFlags(VornPlugin* object, UInt32 flags);
/* True once the object has reported its rectangle. */
VORN_EXPORT Boolean VornPluginHaveObjectDimensions(VornPlugin* object);
/* The outcome of decoding, kVornErrStillRendering before it is known. */
VORN_EXPORT void VornPluginGetObjectRenderingError(VornPlugin* object, OSErr* outError);
/* The object's comment, at most bufferSize characters: the buffer holds bufferSize + 1 bytes. */
VORN_EXPORT void VornPluginGetObjectComment(VornPlugin* object, char* buffer, UInt32 bufferSize);
/* Destroys an object; null is allowed. Only after its VornPluginDecodeObject has returned. No
 * barrier: what the destruction throws reaches the host. */
VORN_EXPORT void VornPluginFreeObject(VornPlugin* object);

/* Set-up and support ----------------------------------------------------------------------- */

/* Copies the table into the bundle (in any case); true if none of its slots is null. */
VORN_EXPORT Boolean SetupPluginHostCalls(const VornPluginHostCalls* calls);
/* Calls of the bundle's own code into the host: each forwards to its slot. */
VORN_EXPORT OSErr CallPluginHostGotRect(VornPlugin* object, const Rect* displayRect);
VORN_EXPORT OSErr CallPluginHostRenderingDone(VornPlugin* object, OSErr finalError);
VORN_EXPORT OSErr CallPluginHostDecodedChunk(VornPlugin* object, SInt16 first, SInt16 end);
VORN_EXPORT OSErr CallPluginHostGetData(VornPlugin* object, void* buffer, SInt32 offset,
                                        SInt32* count, SInt32* dataSize,
                                        unsigned char* dataComplete);
VORN_EXPORT OSErr CallPluginHostGetEstimatedObjectBytes(VornPlugin* object, SInt32* outBytes);
/* For decoders that hold only the object. No exception barrier. */
VORN_EXPORT void SetObjectDisplayRect(VornPlugin* object, const Rect* rect);
VORN_EXPORT void SetObjectComment(VornPlugin* object, const char* comment);
/* Throws `err` as a 16-bit integer; the first argument is not used. */
VORN_EXPORT void ThrowWithError(const void* unused, OSErr err);

TOOLBOX_END_DECLS

#endif
