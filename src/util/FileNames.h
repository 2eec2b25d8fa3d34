/* SPDX-License-Identifier: MIT
 *
 * From any name to a legal, unique file name of at most 31 characters. Names are Mac Roman; an
 * FSSpec's name is a Pascal string. Results are 0 or what the File Manager said.
 */
#ifndef VORN_UTIL_FILENAMES_H
#define VORN_UTIL_FILENAMES_H

#include "src/util/Export.h"
#include "toolbox/files/Files.h"

TOOLBOX_BEGIN_DECLS

/* The first 31 characters of `name`, slash, colon and return made spaces, a leading dot made an
 * underscore so that the file shows; an empty name gives "x". */
VORN_EXPORT void MakeLegalFileName(ConstStr255Param name, Str31 outName);
/* Copies at most `count` characters, slash, colon and return made spaces. No terminator. */
VORN_EXPORT void CopyLegalFilenameChars(const char* src, char* dst, SInt32 count);
/* Splits `name` into its extension (a dot and at most four characters, *outExtension pointing at
 * the dot in `name`; null if there is none) and the rest, which becomes the legal Pascal string
 * `outName`, so cut that both fit 31 characters. A name without an extension is not cut: the
 * caller passes 31 characters at most. */
VORN_EXPORT void MakeLegalFileNameWithExtension(const char* name, const char** outExtension,
                                                StringPtr outName);
/* Makes spec->name, taken as a base, a name that no file or folder has: base and `extension`
 * (null for none), else with ".2", ".3" and so on between them, the base cut to fit. 0, or what
 * the look-up failed with. */
VORN_EXPORT OSErr MakeFileNameUnique(FSSpec* spec, const char* extension);
/* Makes spec->name from `name`, legal and unique in the directory that `spec` names. */
VORN_EXPORT OSErr MakeUniqueFileNameWithExtension(const char* name, FSSpec* spec);
/* Names a file of the temporary folder that does not exist yet; it is not created. */
VORN_EXPORT OSErr GetTempFileSpec(const char* name, FSSpec* outSpec);
/* 0 if `spec` names something, and then whether it is a folder (outIsFolder may be null); fnfErr
 * if it does not. */
VORN_EXPORT OSErr FileOrFolderExists(const FSSpec* spec, Boolean* outIsFolder);

TOOLBOX_END_DECLS

#endif
