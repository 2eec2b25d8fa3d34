/* SPDX-License-Identifier: MIT */
#include "tests/plugin/host_in_c.h"

/* A decoder in C needs these as well. */
#include "src/datasource/ReadingFunctions.h"
#include "src/util/FileNames.h"
#include "src/util/Strings.h"

#include <string.h>

static LifeInC life;
static VornPlugin* object;
static const char* document;

static OSErr GotRect(VornPlugin* caller, const Rect* displayRect)
{
    life.sameObject = life.sameObject && caller == object;
    life.displayRect = *displayRect;
    return 0;
}

static OSErr RenderingDone(VornPlugin* caller, OSErr finalError)
{
    life.sameObject = life.sameObject && caller == object;
    life.reported = finalError;
    return 0;
}

static OSErr DecodedChunk(VornPlugin* caller, SInt16 first, SInt16 end)
{
    (void)caller;
    (void)first;
    (void)end;
    return 0;
}

static OSErr GetBytes(VornPlugin* caller, void* buffer, SInt32 offset, SInt32* count,
                      SInt32* dataSize, unsigned char* dataComplete)
{
    const SInt32 size = (SInt32)strlen(document);
    const SInt32 asked = *count;
    life.sameObject = life.sameObject && caller == object;
    *dataSize = size;
    *dataComplete = 1;
    if (asked == 0)
        return 0;
    if (offset < 0 || offset >= size) {
        *count = 0;
        return kDataNotAvailableErr;
    }
    if (asked > size - offset)
        *count = size - offset;
    memcpy(buffer, document + offset, (size_t)*count);
    return 0;
}

static OSErr GetEstimatedObjectBytes(VornPlugin* caller, SInt32* outBytes)
{
    (void)caller;
    *outBytes = -1;
    return 0;
}

LifeInC LiveInC(CFBundleRef bundle, const char* bytes)
{
    static const VornPluginHostCalls calls = {GotRect, RenderingDone, DecodedChunk, GetBytes,
                                              GetEstimatedObjectBytes};
    memset(&life, 0, sizeof life);
    life.sameObject = 1;
    document = bytes;
    life.made =
        VornPluginMakeNewObject(bundle, &calls, FOUR_CHARS('M', 'P', 'E', 'G'),
                                FOUR_CHARS('?', '?', '?', '?'), "clip.mpg", "video/mpeg", &object);
    if (life.made != 0)
        return life;
    VornPluginSetObjectDisplayFlags(object, kVornDisplayScale | kVornDisplayKeepAspect);
    life.decoded = VornPluginDecodeObject(object);
    VornPluginGetObjectRenderingError(object, &life.renderingError);
    life.haveDimensions = VornPluginHaveObjectDimensions(object);
    life.flags = VornPluginGetObjectDisplayFlags(object);
    VornPluginGetObjectComment(object, life.comment, sizeof life.comment - 1);
    VornPluginFreeObject(object);
    return life;
}
