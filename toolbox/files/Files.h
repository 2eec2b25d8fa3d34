/* SPDX-License-Identifier: MIT
 *
 * File Manager and Folder Manager, on POSIX.
 *
 * An FSSpec names a file by volume, directory identifier and a name of at most 31 Mac Roman
 * characters. Directory identifiers stand in a table of the process. A name is a name: "..", "."
 * and "/" in it are ordinary characters and never lead out of its directory. Operations return 0
 * or a code of toolbox/Errors.h; none of them yields.
 */
#ifndef VORN_TOOLBOX_FILES_H
#define VORN_TOOLBOX_FILES_H

#include "toolbox/Types.h"

TOOLBOX_BEGIN_DECLS

#pragma pack(push, 2)
typedef struct FSSpec {
    SInt16 vRefNum;
    SInt32 parID;
    Str63 name; /* Pascal string, at most 31 characters */
} FSSpec;
#pragma pack(pop)
TOOLBOX_STATIC_ASSERT(sizeof(FSSpec) == 70, "FSSpec is 70 bytes, packed to two");

/* What PBGetCatInfoSync reads (in: the first four) and answers. */
typedef struct CInfoPBRec {
    StringPtr ioNamePtr;    /* in: Pascal name inside ioDirID; empty names the directory itself */
    SInt16 ioVRefNum;       /* in */
    SInt32 ioDirID;         /* in */
    SInt16 ioFDirIndex;     /* in: must be 0, look up by name */
    UInt8 ioFlAttrib;       /* out: kioFlAttribDirMask for a directory */
    OSType ioFlFndrType;    /* out: file type, 0 for directories */
    OSType ioFlFndrCreator; /* out: creator, 0 for directories */
    SInt32 ioFlLgLen;       /* out: logical length in bytes, 2^31 - 1 at most */
} CInfoPBRec;

enum {
    kOnSystemDisk = -32768,
    kTemporaryFolderType = 0x74656D70, /* 'temp' */
    kDontCreateFolder = 0,
    kCreateFolder = 1,
    kioFlAttribDirMask = 0x10,
    fsRdPerm = 1,
    fsRdWrPerm = 3,
    fsFromStart = 1,
    smSystemScript = -1
};

/* The volume and directory of a special folder; only kTemporaryFolderType is known (else fnfErr).
 * It is a private directory (mode 0700) of this process under $TMPDIR (/tmp without it), made at
 * the first call with kCreateFolder and removed with all it holds when the process ends. The first
 * call also removes what dead processes left behind, and never touches a live one's. */
TOOLBOX_EXPORT OSErr FindFolder(SInt16 vRefNum, OSType folderType, Boolean createFolder,
                                SInt16* foundVRefNum, SInt32* foundDirID);
/* Looks a name up in a directory: 0, fnfErr, or what the system said. */
TOOLBOX_EXPORT OSErr PBGetCatInfoSync(CInfoPBRec* block);
/* Creates an empty file (mode 0600; dupFNErr if the name exists, links are not followed). */
TOOLBOX_EXPORT OSErr FSpCreate(const FSSpec* spec, OSType creator, OSType fileType, SInt16 script);
/* Opens a file for reading (fsRdPerm) or reading and writing (fsRdWrPerm); links are refused. */
TOOLBOX_EXPORT OSErr FSpOpenDF(const FSSpec* spec, SInt8 permission, SInt16* refNum);
/* Deletes a file. */
TOOLBOX_EXPORT OSErr FSpDelete(const FSSpec* spec);
/* Reads up to *count bytes at the mark; *count becomes the number read, eofErr when it is less.
 * A negative count gives paramErr. */
TOOLBOX_EXPORT OSErr FSRead(SInt16 refNum, SInt32* count, void* buffer);
/* Writes *count bytes at the mark; *count becomes the number written. */
TOOLBOX_EXPORT OSErr FSWrite(SInt16 refNum, SInt32* count, const void* buffer);
/* Closes a path. */
TOOLBOX_EXPORT OSErr FSClose(SInt16 refNum);
/* The file's length in bytes. */
TOOLBOX_EXPORT OSErr GetEOF(SInt16 refNum, SInt32* length);
/* Sets the mark, `offset` bytes from the start (mode fsFromStart only). Past the end succeeds,
 * before the start gives posErr. */
TOOLBOX_EXPORT OSErr SetFPos(SInt16 refNum, SInt16 mode, SInt32 offset);

TOOLBOX_END_DECLS

#endif
