/* SPDX-License-Identifier: MIT
 *
 * The data handler component interface (component type 'dhlr'), as QuickTime published it: the
 * selectors of the calls and the records they take. Parameters are listed in slot order.
 */
#ifndef VORN_TOOLBOX_DATAHANDLER_H
#define VORN_TOOLBOX_DATAHANDLER_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

enum {
    kDataHGetDataSelect = 2,       /* Handle h, long hOffset, long offset, long size */
    kDataHOpenForReadSelect = 8,   /* none */
    kDataHCloseForReadSelect = 9,  /* none */
    kDataHSetDataRefSelect = 10,   /* Handle dataRef */
    kDataHTaskSelect = 13,         /* none */
    kDataHScheduleDataSelect = 14, /* Ptr placement, long fileOffset, long dataSize, long refCon,
                                      DataHScheduleRecord*, completion */
    kDataHFinishDataSelect = 15,   /* Ptr placement, Boolean cancel */
    kDataHFlushCacheSelect = 16,   /* none */
    kDataHGetFileSizeSelect = 18,  /* long* size */
    kDataHGetFileNameSelect = 37,  /* Str255 name */
    kDataHGetAvailableFileSizeSelect = 38, /* long* size */
    kDataHGetMacOSFileTypeSelect = 39,     /* OSType* type */
    kDataHGetMIMETypeSelect = 40,          /* Str255 type */
    kDataHGetInfoFlagsSelect = 45,         /* UInt32* flags */
    kDataHScheduleData64Select = 46,       /* Ptr placement, const wide* fileOffset, long dataSize,
                                              long refCon, DataHScheduleRecord*, completion */
    kDataHGetFileSize64Select = 48,        /* wide* size */
    kDataHReadAsyncSelect = 53,       /* void* buffer, UInt32 size, const wide* offset, completion,
                                         long refCon */
    kDataHPollReadSelect = 54,        /* void* dataPtr, UInt32* dataSizeSoFar */
    kDataHGetFileSizeAsyncSelect = 58 /* wide* size, completion, long refCon */
};

enum { kDataHCanRead = 1 };                       /* a component flag */
enum { kDataHInfoFlagNeedsNetworkBandwidth = 4 }; /* an answer of GetInfoFlags */

typedef struct TimeRecord {
    wide value;
    SInt32 scale;
    void* base;
} TimeRecord;

/* When and how urgently a scheduled read is wanted. Its 28 bytes on the 32-bit platform; larger
 * where pointers are. */
typedef struct DataHScheduleRecord {
    TimeRecord timeNeededBy;
    RefCon extendedID;
    SInt32 extendedVers;
    SInt32 priority; /* 16.16 fixed point; smaller is more urgent */
} DataHScheduleRecord;

/* Told when a read has ended: the request's placement, the caller's refCon, the read's error. */
typedef void (*DataHCompletionProc)(char* request, RefCon refCon, OSErr err);
typedef DataHCompletionProc DataHCompletionUPP;

TOOLBOX_EXPORT void InvokeDataHCompletionUPP(char* request, RefCon refCon, OSErr err,
                                             DataHCompletionUPP routine);

TOOLBOX_END_DECLS

#endif
