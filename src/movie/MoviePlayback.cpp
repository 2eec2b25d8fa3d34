// SPDX-License-Identifier: MIT
//
// Opening, showing and driving the movie.
#include "src/movie/PortSwitch.h"
#include "src/movie/VornMoviePlugin.h"
#include "src/util/RaisedFlag.h"
#include "toolbox/Errors.h"
#include "toolbox/files/Aliases.h"
#include "toolbox/memory/Memory.h"

#include <memory>

namespace
{

// The subtype of the plug-in's data handler: with it as reference type QuickTime opens that
// component on the spool file, not its own file data handler.
constexpr OSType kDataRefType = FOUR_CHARS('K', 'W', 'O', 'B');
constexpr SInt16 kAsyncOpenFlags = newMovieAsyncOK | newMovieIdleImportOK;
constexpr SInt32 kControllerFlags = mcTopLeftMovie | mcScaleMovieToFit;

} // namespace

OSErr VornMoviePlugin::OpenMovie(unsigned char, unsigned char asyncLoad)
{
    const PortSwitch port(moviePort);
    Handle alias = nullptr;
    const OSErr err = NewAliasMinimal(&spoolFileSpec, &alias);
    if (err != noErr) {
        return err;
    }
    const std::unique_ptr<Ptr, void (*)(Handle)> aliasOwner(alias, DisposeHandle);
    return NewMovieFromDataRef(&movie, asyncLoad ? kAsyncOpenFlags : SInt16{0}, nullptr, alias,
                               kDataRefType);
}

void VornMoviePlugin::AdjustMovieLength()
{
    if (movie == nullptr) {
        return;
    }
    const TimeValue duration = GetMovieDuration(movie);
    TimeValue loaded = 0;
    GetMaxLoadedTimeInMovie(movie, &loaded);
    // Reaches past the end on purpose: nothing behind the loaded part survives.
    DeleteMovieSegment(movie, loaded, duration);
    if (movieController != nullptr) {
        MCMovieChanged(movieController, movie);
    }
}

void VornMoviePlugin::SetupMovieController()
{
    if (movie != nullptr) {
        Rect box{};
        GetMovieBox(movie, &box);
        movieController = NewMovieController(movie, &box, kControllerFlags);
    }
}

void VornMoviePlugin::SetMovieControllerClip()
{
    if (movieController == nullptr) {
        return;
    }
    const std::unique_ptr<MacRegion*, void (*)(RgnHandle)> clip(NewRgn(), DisposeRgn);
    if (clip != nullptr) {
        GetClip(clip.get());
        MCSetClip(movieController, clip.get(), nullptr);
    }
}

void VornMoviePlugin::Display(const Rect& bounds, unsigned char)
{
    GetPort(&moviePort);
    if (movie == nullptr || movieController == nullptr) {
        return;
    }
    Rect wanted{};
    GetDisplayRect(bounds, wanted);
    // The reported rectangle is one pixel taller than the controller.
    wanted.bottom = static_cast<SInt16>(wanted.bottom - 1);
    if (MCGetVisible(movieController)) {
        Rect present{};
        MCGetControllerBoundsRect(movieController, &present);
        if (!EqualRect(&present, &wanted)) {
            MCSetControllerBoundsRect(movieController, &wanted);
        }
    }
    SetMovieControllerClip();
    {
        const RaisedFlag inCall(inControllerCall);
        MCDoAction(movieController, mcActionDraw, GetWindowFromPort(moviePort));
    }
    // Asking forgets the error; a drawing error helps nobody here.
    GetMoviesError();
}

void VornMoviePlugin::Idle(const Rect&, unsigned char)
{
    GetPort(&moviePort);
    if (movie == nullptr) {
        return;
    }
    if (IsMoviePlayable() && movieController == nullptr) {
        ShowMovieInController();
    }
    SetMovieControllerClip();
    if (movieController != nullptr) {
        // While data arrive the movie grows under the controller.
        MCDoAction(movieController, allDataSpooled ? mcActionIdle : mcActionMovieChanged, nullptr);
    }
}

bool VornMoviePlugin::IsMoviePlayable()
{
    if (!hasLoadStateCalls) {
        return allDataSpooled;
    }
    const SInt32 state = GetMovieLoadState(movie);
    if (state == kMovieLoadStateError) {
        const OSErr err = GetMovieStatus(movie, nullptr);
        if (err != noErr) {
            throw err;
        }
    }
    return state >= kMovieLoadStatePlayable;
}

void VornMoviePlugin::ShowMovieInController()
{
    CGrafPtr port = nullptr;
    GDHandle device = nullptr;
    GetGWorld(&port, &device);
    SetMovieGWorld(movie, port, device);
    SetupMovieController();
    Rect size{};
    if (movieController != nullptr && MCGetVisible(movieController)) {
        MCGetControllerBoundsRect(movieController, &size);
    } else {
        GetMovieBox(movie, &size);
    }
    OffsetRect(&size, static_cast<SInt16>(-size.left), static_cast<SInt16>(-size.top));
    size.bottom = static_cast<SInt16>(size.bottom + 1); // taken off again by Display
    SetDisplayRect(size);
    SetMovieActive(movie, true);
}

Boolean VornMoviePlugin::HandleClick(const Rect&, const EventRecord& event)
{
    if (movieController == nullptr) {
        return false;
    }
    const RaisedFlag inCall(inControllerCall);
    SetMovieControllerClip();
    return MCIsPlayerEvent(movieController, &event) == 1;
}

void VornMoviePlugin::GetDisplayRect(const Rect& bounds, Rect& outRect)
{
    ScaleRectWithFlags(GetDisplayFlags(), displayRect, bounds, outRect);
}

void VornMoviePlugin::GetData(UInt32&, Handle* outHandle)
{
    if (outHandle != nullptr) {
        *outHandle = nullptr;
    }
}

void VornMoviePlugin::PrepareDrag(DragReference, UInt32, const Rect&, unsigned char& allowed)
{
    allowed = false;
}

void VornMoviePlugin::CleanupDrag() {}
