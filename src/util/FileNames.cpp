// SPDX-License-Identifier: MIT
#include "src/util/FileNames.h"

#include "src/util/Strings.h"
#include "toolbox/Errors.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace
{

constexpr std::size_t kMaxNameLength = 31;
constexpr std::size_t kMaxExtensionLength = 5; // with its dot

char LegalChar(char character)
{
    return character == '/' || character == ':' || character == '\r' ? ' ' : character;
}

// The dot of the name's extension, null if it has none. The first character of a short name is
// never that dot.
const char* FindExtension(const char* name)
{
    const std::size_t length = std::strlen(name);
    const std::size_t lowest = length > kMaxExtensionLength ? length - kMaxExtensionLength : 1;
    for (std::size_t position = length; position >= lowest; --position)
        if (name[position] == '.')
            return name + position;
    return nullptr;
}

// Writes the legal base of `name`, of at most `maxBase` characters, and returns its extension.
const char* SplitLegalName(const char* name, std::size_t maxBase, StringPtr outName)
{
    const char* extension = FindExtension(name);
    std::size_t length = std::strlen(name);
    if (extension) {
        length = static_cast<std::size_t>(extension - name);
        maxBase = kMaxNameLength - std::strlen(extension);
    }
    length = std::min(length, maxBase);
    CopyLegalFilenameChars(name, reinterpret_cast<char*>(outName + 1), static_cast<SInt32>(length));
    outName[0] = static_cast<UInt8>(length);
    return extension;
}

// A file name put together from a base that shrinks as the rest needs room.
class NameCandidate
{
public:
    NameCandidate(ConstStringPtr base, const char* extensionText) : extension(extensionText)
    {
        CopyPascalToCString(base, baseText, kMaxNameLength);
    }

    void WriteTo(StringPtr name, const char* suffix)
    {
        const std::size_t rest = std::strlen(suffix) + std::strlen(extension);
        const std::size_t room = kMaxNameLength - std::min(rest, kMaxNameLength);
        baseText[std::min(std::strlen(baseText), room)] = 0;
        name[0] = 0;
        Append(name, baseText);
        Append(name, suffix);
        Append(name, extension);
    }

private:
    static void Append(StringPtr name, const char* text)
    {
        const std::size_t length = std::min(std::strlen(text), kMaxNameLength - name[0]);
        std::copy_n(text, length, name + 1 + name[0]);
        name[0] = static_cast<UInt8>(name[0] + length);
    }

    char baseText[kMaxNameLength + 1];
    const char* extension;
};

} // namespace

void MakeLegalFileName(ConstStr255Param name, Str31 outName)
{
    if (name[0] == 0) {
        CopyCToPascalString("x", outName, 1);
        return;
    }
    const std::size_t length = std::min<std::size_t>(name[0], kMaxNameLength);
    for (std::size_t position = 1; position <= length; ++position)
        outName[position] = static_cast<UInt8>(LegalChar(static_cast<char>(name[position])));
    if (outName[1] == '.')
        outName[1] = '_';
    outName[0] = static_cast<UInt8>(length);
}

void CopyLegalFilenameChars(const char* src, char* dst, SInt32 count)
{
    for (SInt32 position = 0; position < count && src[position]; ++position)
        dst[position] = LegalChar(src[position]);
}

void MakeLegalFileNameWithExtension(const char* name, const char** outExtension, StringPtr outName)
{
    *outExtension = SplitLegalName(name, INT32_MAX, outName);
}

OSErr MakeFileNameUnique(FSSpec* spec, const char* extension)
{
    NameCandidate candidate(spec->name, extension ? extension : "");
    candidate.WriteTo(spec->name, "");
    SInt16 counter = 1;
    OSErr err = FileOrFolderExists(spec, nullptr);
    while (err == noErr) {
        char suffix[8];
        counter = static_cast<SInt16>(counter + 1);
        std::snprintf(suffix, sizeof suffix, ".%d", counter);
        candidate.WriteTo(spec->name, suffix);
        err = FileOrFolderExists(spec, nullptr);
    }
    return err == fnfErr ? OSErr{noErr} : err;
}

OSErr MakeUniqueFileNameWithExtension(const char* name, FSSpec* spec)
{
    // A longer base would be cut by the next step anyway, but must not run over spec->name first.
    const char* extension = SplitLegalName(name, kMaxNameLength, spec->name);
    return MakeFileNameUnique(spec, extension);
}

OSErr GetTempFileSpec(const char* name, FSSpec* outSpec)
{
    // An FSSpec is packed, so its directory identifier cannot be written through a pointer.
    SInt16 volume = 0;
    SInt32 directory = 0;
    const OSErr err =
        FindFolder(kOnSystemDisk, kTemporaryFolderType, kCreateFolder, &volume, &directory);
    if (err != noErr)
        return err;
    outSpec->vRefNum = volume;
    outSpec->parID = directory;
    return MakeUniqueFileNameWithExtension(name, outSpec);
}

OSErr FileOrFolderExists(const FSSpec* spec, Boolean* outIsFolder)
{
    Str63 name;
    std::memcpy(name, spec->name, sizeof name);
    CInfoPBRec block{};
    block.ioNamePtr = name;
    block.ioVRefNum = spec->vRefNum;
    block.ioDirID = spec->parID;
    const OSErr err = PBGetCatInfoSync(&block);
    if (err == noErr && outIsFolder)
        *outIsFolder = (block.ioFlAttrib & kioFlAttribDirMask) != 0;
    return err;
}
