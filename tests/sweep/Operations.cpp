// SPDX-License-Identifier: MIT
#include "tests/sweep/Operations.h"

#include "toolbox/Errors.h"

namespace sweep
{
namespace
{

constexpr auto kBadInstance = static_cast<OSErr>(badComponentInstance);
constexpr auto kBadSelector = static_cast<OSErr>(badComponentSelector);

constexpr const char* kTellsNothing = "changes or answers what is there and has no way to fail";
constexpr const char* kDisposes = "gives back what there is; there is nobody to tell of a failure";

} // namespace

const std::map<std::string, std::vector<OSErr>>& FailableOperations()
{
    static const std::map<std::string, std::vector<OSErr>> operations = {
        // Memory. MemError tells of them.
        {"NewHandle", {memFullErr, paramErr}},
        {"NewHandleClear", {memFullErr, paramErr}},
        {"SetHandleSize", {memFullErr, nilHandleErr, paramErr}},
        // Files: what the arguments can have wrong, and what the system says.
        {"FindFolder",
         {paramErr, fnfErr, dirNFErr, dskFulErr, wPrErr, permErr, tmfoErr, memFullErr, ioErr}},
        {"PBGetCatInfoSync", {paramErr, bdNamErr, fnfErr, dirNFErr, permErr, memFullErr, ioErr}},
        {"FSpCreate",
         {paramErr, bdNamErr, dupFNErr, dirNFErr, dskFulErr, wPrErr, permErr, tmfoErr, memFullErr,
          ioErr}},
        {"FSpOpenDF",
         {paramErr, bdNamErr, fnfErr, dirNFErr, wPrErr, permErr, tmfoErr, memFullErr, ioErr}},
        {"FSpDelete", {paramErr, bdNamErr, fnfErr, dirNFErr, wPrErr, permErr, memFullErr, ioErr}},
        {"FSRead", {paramErr, rfNumErr, eofErr, memFullErr, ioErr}},
        {"FSWrite", {paramErr, rfNumErr, wrPermErr, dskFulErr, eofErr, memFullErr, ioErr}},
        {"FSClose", {rfNumErr, dskFulErr, ioErr}},
        {"GetEOF", {paramErr, rfNumErr, memFullErr, ioErr}},
        {"SetFPos", {paramErr, rfNumErr, posErr}},
        {"NewAliasMinimal", {paramErr, memFullErr}},
        // Threads.
        {"NewThread", {paramErr, memFullErr}},
        {"GetCurrentThread", {paramErr}},
        {"GetThreadState", {threadNotFoundErr, paramErr}}, // asked where the one above fails
        // Components. A component's own results are failures of what it calls.
        {"RegisterComponent", {kUntold}},
        {"FindNextComponent", {kUntold}},
        {"OpenAComponent", {paramErr, memFullErr, kBadInstance}},
        {"CloseComponent", {kBadInstance}},
        {"CallComponent", {paramErr, kBadInstance, kBadSelector}},
        {"CallComponentTarget", {kBadInstance, kBadSelector}},
        {"CallComponentFunctionWithStorageProcInfo", {kBadSelector}},
        {"DelegateComponentCall", {paramErr, kBadInstance, kBadSelector}},
        // Movies. Where the code is not looked at, one stands for all.
        {"Gestalt", {gestaltUndefSelectorErr, paramErr}},
        {"QuickTimePresent", {kUntold}},
        {"EnterMovies", {memFullErr}},
        {"NewMovieFromDataRef",
         {couldNotResolveDataRef, cantOpenHandler, noMovieFound, paramErr, fnfErr, tmfoErr,
          memFullErr, kBadInstance}},
        {"MoviesTask", {invalidMovie}},
        {"GetMovieLoadState", {invalidMovie}},
        {"GetMovieStatus", {noMovieFound, invalidMovie}},
        {"GetMovieDuration", {invalidMovie}},
        {"GetMaxLoadedTimeInMovie", {invalidMovie}},
        {"DeleteMovieSegment", {paramErr, invalidMovie}},
        {"SetMovieGWorld", {invalidMovie}},
        {"SetMovieActive", {invalidMovie}},
        {"NewMovieController", {memFullErr}},
        {"MCDoAction", {paramErr}},
        {"MCGetVisible", {kUntold}},
        {"MCSetControllerBoundsRect", {paramErr}},
        {"MCSetClip", {memFullErr}},
        {"MCMovieChanged", {paramErr}},
        {"MCIsPlayerEvent", {kUntold}},
        // Drawing.
        {"NewRgn", {kUntold}},
        {"GetClip", {kUntold}},
        {"NewGWorld", {paramErr, memFullErr}},
        {"LockPixels", {kUntold}},
        {"OpenPicture", {kUntold}},
        {"GetWindowFromPort", {kUntold}},
        // Drags.
        {"AddDragItemFlavor", {paramErr, duplicateFlavorErr, memFullErr}},
        {"SetDragImage", {paramErr, memFullErr}},
        // Property lists.
        {"CFStringCreateWithCString", {kUntold}},
        {"CFBundleGetValueForInfoDictionaryKey", {kUntold}},
        {"CFDictionaryGetValue", {kUntold}},
    };
    return operations;
}

const std::map<std::string, std::string>& InfallibleOperations()
{
    static const std::map<std::string, std::string> operations = {
        {"DisposeHandle", kDisposes},
        {"DisposePtr", kDisposes},
        {"DisposeRgn", kDisposes},
        {"DisposeGWorld", kDisposes},
        {"DisposeMovie", kDisposes},
        {"DisposeMovieController", kDisposes},
        {"CFRelease", kDisposes},
        {"DisposeThread", "fails only for a thread that is not there: one that is always ends"},
        {"YieldToAnyThread", "lets others run if there are any, and has nothing else to say"},
        {"StopMovie", kTellsNothing},
        {"GetMoviesError", "is itself what tells of errors"},
        {"MemError", "is itself what tells of errors"},
        {"GetMovieBox", kTellsNothing},
        {"GetMovieStatistics", kTellsNothing},
        {"MCGetControllerBoundsRect", kTellsNothing},
        {"NewThreadEntryUPP", "answers the routine that it is given"},
        {"NewComponentRoutineUPP", "answers the routine that it is given"},
        {"SetComponentInstanceStorage", kTellsNothing},
        {"InvokeDataHCompletionUPP", "calls the routine that it is given"},
        {"TickCount", kTellsNothing},
        {"GetHandleSize", "fails only for a null handle"},
        {"HGetState", kTellsNothing},
        {"HSetState", kTellsNothing},
        {"HLock", kTellsNothing},
        {"HLockHi", kTellsNothing},
        {"GetPort", kTellsNothing},
        {"SetPort", kTellsNothing},
        {"GetGWorld", kTellsNothing},
        {"SetGWorld", kTellsNothing},
        {"GetPortBounds", kTellsNothing},
        {"GetPortPixels", kTellsNothing},
        {"LocalToGlobal", kTellsNothing},
        {"GetGWorldPixMap", kTellsNothing},
        {"UnlockPixels", kTellsNothing},
        {"GetPixelsState", kTellsNothing},
        {"SetPixelsState", kTellsNothing},
        {"GetPixBaseAddr", kTellsNothing},
        {"GetPixRowBytes", kTellsNothing},
        {"ForeColor", kTellsNothing},
        {"BackColor", kTellsNothing},
        {"RGBForeColor", kTellsNothing},
        {"RGBBackColor", kTellsNothing},
        {"GetCTSeed", kTellsNothing},
        {"EraseRect", "draws as far as it can"},
        {"CopyBits", "draws as far as it can"},
        {"CopyMask", "draws as far as it can"},
        {"CopyDeepMask", "draws as far as it can"},
        {"ClosePicture", "leaves a picture for which memory ran out empty"},
        {"OffsetRect", kTellsNothing},
        {"EqualRect", kTellsNothing},
        {"MapRect", kTellsNothing},
        {"CFRetain", kTellsNothing},
        {"CFGetTypeID", kTellsNothing},
        {"CFStringGetTypeID", kTellsNothing},
        {"CFArrayGetTypeID", kTellsNothing},
        {"CFDictionaryGetTypeID", kTellsNothing},
        {"CFStringCompare", kTellsNothing},
        {"CFArrayGetCount", kTellsNothing},
        {"CFArrayGetValueAtIndex", kTellsNothing},
    };
    return operations;
}

} // namespace sweep
