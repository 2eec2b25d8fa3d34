// SPDX-License-Identifier: MIT
//
// The string and file-name functions, beside a model of them. The catalogue that they look names
// up in is this file's.
#include "src/util/FileNames.h"
#include "src/util/Strings.h"
#include "tests/fuzz/Decisions.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/NameModel.h"
#include "tests/fuzz/Require.h"
#include "toolbox/Errors.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace
{

std::string TextOf(ConstStringPtr pascal)
{
    return {reinterpret_cast<const char*>(pascal + 1), pascal[0]};
}

// A Pascal string with exactly the room that it is promised, so that one byte more is noticed.
class PascalText
{
public:
    explicit PascalText(size_t characters) : bytes_(characters + 1) {}
    explicit PascalText(const std::string& text) : bytes_(1, static_cast<UInt8>(text.size()))
    {
        bytes_.insert(bytes_.end(), text.begin(), text.end());
    }
    StringPtr Get() { return bytes_.data(); }
    std::string Text() const { return TextOf(bytes_.data()); }

private:
    std::vector<UInt8> bytes_;
};

// What is in the one folder there is; another answer than that if `failure` is not 0.
struct Catalogue {
    std::set<std::string> names;
    std::set<std::string> folders;
    OSErr failure = 0;
    int lookups = 0;

    bool Has(const std::string& name) const { return names.contains(name); }
} gCatalogue;

constexpr SInt16 kVolume = -7;
constexpr SInt32 kFolder = 4711;

void CompareTexts(Decisions& decisions)
{
    const std::string a = decisions.Text(40);
    const std::string b = decisions.Chance() ? decisions.Text(40) : a + decisions.Text(3);
    Require(StrCaseCmp(a.c_str(), b.c_str()) == model::Compare(a, b), "texts sort by their keys");
    Require((MyStrEqual(a.c_str(), b.c_str()) != 0) == (model::Compare(a, b) == 0),
            "texts with the same keys are equal");
}

void CopyTexts(Decisions& decisions)
{
    const std::string text = decisions.Text(255);
    const auto most = static_cast<SInt32>(decisions.Below(256));
    const std::string wanted = text.substr(0, static_cast<size_t>(most));
    std::vector<char> c(static_cast<size_t>(most) + 1, '#');
    StrCopySafe(c.data(), text.c_str(), static_cast<UInt32>(most));
    Require(c.data() == wanted, "a bounded copy is the beginning");
    PascalText pascal(static_cast<size_t>(most));
    CopyCToPascalString(text.c_str(), pascal.Get(), most);
    Require(pascal.Text() == wanted, "so is a Pascal string of it");
    std::fill(c.begin(), c.end(), '#');
    CopyPascalToCString(PascalText(text).Get(), c.data(), most);
    Require(c.data() == wanted, "and a copy of a Pascal string");
    PascalText whole(text.size());
    CopyPascalString(whole.Get(), PascalText(text).Get());
    Require(whole.Text() == text, "a Pascal string is copied whole");
}

void MakeLegal(Decisions& decisions)
{
    const std::string name = decisions.Text(255);
    Str31 legal;
    MakeLegalFileName(PascalText(name).Get(), legal);
    Require(TextOf(legal) == model::LegalName(name), "a name is made legal");

    const auto count = static_cast<SInt32>(decisions.Below(260)) - 4;
    const size_t copied = std::min(name.size(), static_cast<size_t>(std::max(count, 0)));
    std::string characters(copied, '#');
    CopyLegalFilenameChars(name.c_str(), characters.data(), count);
    Require(characters == model::LegalCharacters(name.substr(0, copied)),
            "as many characters as asked for are made legal");
}

void SplitOffExtension(Decisions& decisions)
{
    const std::string name = decisions.Text(255);
    const model::SplitName wanted = model::Split(name);
    PascalText base(wanted.base.size());
    const char* extension = nullptr;
    MakeLegalFileNameWithExtension(name.c_str(), &extension, base.Get());
    Require(base.Text() == wanted.base, "the base is what stands before the extension");
    Require((extension != nullptr) == wanted.extension.has_value(), "an extension is found");
    Require(extension == nullptr || extension == *wanted.extension, "it is the last one");
}

// Has some of the names that would be tried.
void FillCatalogue(Decisions& decisions, const std::string& base, const std::string& extension)
{
    gCatalogue = {};
    for (UInt32 taken = decisions.Below(12); taken > 0; --taken) {
        gCatalogue.names.insert(model::UniqueName(
            base, extension, [](const auto& name) { return gCatalogue.Has(name); }));
    }
    if (!gCatalogue.names.empty() && decisions.Chance())
        gCatalogue.names.erase(gCatalogue.names.begin());
    for (const std::string& name : gCatalogue.names) {
        if (decisions.Chance())
            gCatalogue.folders.insert(name);
    }
    if (decisions.Below(8) == 0)
        gCatalogue.failure = static_cast<OSErr>(decisions.Between(INT16_MIN, INT16_MAX));
}

void RequireUnique(OSErr result, const FSSpec& spec, const std::string& base,
                   const std::string& extension)
{
    if (gCatalogue.failure == 0) {
        Require(result == noErr, "a free name is found");
        Require(TextOf(spec.name) ==
                    model::UniqueName(base, extension,
                                      [](const auto& name) { return gCatalogue.Has(name); }),
                "it is the first of the row");
        Require(FileOrFolderExists(&spec, nullptr) == fnfErr, "it is free");
    } else if (gCatalogue.failure == fnfErr) {
        Require(result == noErr, "nothing of that name is no error");
    } else {
        Require(result == gCatalogue.failure, "what a lookup says is passed on");
        Require(gCatalogue.lookups == 1, "and ends the search");
    }
}

void MakeUnique(Decisions& decisions)
{
    const std::string base = decisions.Text(40);
    const std::string extension = decisions.Text(40);
    FillCatalogue(decisions, base.substr(0, 31), extension);
    FSSpec spec{kVolume, kFolder, {}};
    CopyCToPascalString(base.c_str(), spec.name, sizeof spec.name - 1);
    const bool isNull = extension.empty() && decisions.Chance();
    const OSErr result = MakeFileNameUnique(&spec, isNull ? nullptr : extension.c_str());
    RequireUnique(result, spec, base.substr(0, 31), extension);
}

void NameTemporaryFile(Decisions& decisions)
{
    const std::string name = decisions.Text(255);
    const model::SplitName split = model::Split(name);
    const std::string base = split.base.substr(0, 31);
    const std::string extension = split.extension.value_or("");
    FillCatalogue(decisions, base, extension);
    FSSpec spec{};
    RequireUnique(GetTempFileSpec(name.c_str(), &spec), spec, base, extension);
    Require(spec.vRefNum == kVolume && spec.parID == kFolder, "it lies in the temporary folder");
}

void LookUp(Decisions& decisions)
{
    const std::string name = decisions.Text(31);
    FillCatalogue(decisions, name, "");
    FSSpec spec{kVolume, kFolder, {}};
    CopyCToPascalString(name.c_str(), spec.name, 31);
    Boolean isFolder = 7;
    const OSErr result = FileOrFolderExists(&spec, &isFolder);
    const bool exists = gCatalogue.failure == 0 && gCatalogue.Has(name);
    Require(exists == (result == noErr), "what the catalogue has exists");
    Require(isFolder == (exists ? gCatalogue.folders.contains(name) : 7),
            "whether it is a folder is told of what exists");
}

} // namespace

OSErr FindFolder(SInt16, OSType, Boolean, SInt16* foundVRefNum, SInt32* foundDirID)
{
    *foundVRefNum = kVolume;
    *foundDirID = kFolder;
    return noErr;
}

OSErr PBGetCatInfoSync(CInfoPBRec* block)
{
    ++gCatalogue.lookups;
    const std::string name = TextOf(block->ioNamePtr);
    Require(name.size() <= 31, "no name is longer than 31 characters");
    Require(block->ioVRefNum == kVolume && block->ioDirID == kFolder, "one folder is looked in");
    if (gCatalogue.failure != 0)
        return gCatalogue.failure;
    block->ioFlAttrib = gCatalogue.folders.contains(name) ? kioFlAttribDirMask : 0;
    return gCatalogue.Has(name) ? OSErr{noErr} : OSErr{fnfErr};
}

extern "C" int LLVMFuzzerTestOneInput(const UInt8* bytes, size_t size)
{
    constexpr void (*kSteps[])(Decisions&) = {
        CompareTexts, CopyTexts,         MakeLegal, SplitOffExtension,
        MakeUnique,   NameTemporaryFile, LookUp};
    Decisions decisions({bytes, size});
    while (!decisions.HaveEnded())
        kSteps[decisions.Below(std::size(kSteps))](decisions);
    return 0;
}

std::vector<FuzzInput> FuzzSeeds()
{
    std::vector<FuzzInput> seeds;
    for (const std::string text : {"movie.mpg", ".profile", "a/b:c\r.mpeg", "\x83lan \xCEuvre",
                                   "archive.backup", "a name that is much too long for it.mp3"}) {
        for (UInt8 step = 0; step < 7; ++step) {
            FuzzInput seed = {step, static_cast<UInt8>(text.size())};
            seed.insert(seed.end(), text.begin(), text.end());
            seed.insert(seed.end(), {4, '.', 'm', 'p', 'g', 5, 1, 1, 0, 1});
            seeds.push_back(seed);
        }
    }
    return seeds;
}
