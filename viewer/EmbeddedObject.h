// SPDX-License-Identifier: MIT
//
// One object of the page, from its first byte to its release.
#pragma once

#include "toolbox/quicktime/Movies.h"
#include "toolbox/threads/Threads.h"
#include "viewer/Layout.h"
#include "viewer/NewRows.h"
#include "viewer/ObjectBytes.h"
#include "viewer/PluginObject.h"
#include "viewer/Report.h"

#include <memory>
#include <optional>
#include <string>

namespace viewer
{

class EmbeddedObject
{
public:
    // `bytes` is null for an object whose source could not be opened: give it up.
    EmbeddedObject(ObjectDescription description, std::unique_ptr<ObjectBytes> bytes);
    EmbeddedObject(const EmbeddedObject&) = delete;
    EmbeddedObject& operator=(const EmbeddedObject&) = delete;

    // An object's life, on the application thread ------------------------------------------

    enum class State { kWaiting, kDecoding, kDecoded, kGivenUp };
    State CurrentState() const { return state_; }
    // Takes the type that its first bytes tell of, unless the user gave one or they tell of none.
    // To be called when they are there; asks them once.
    void LearnType(const PluginFolder& plugins);
    // Asks a bundle whether it can show the object, by its first bytes.
    bool IsAcceptedBy(const PluginBundle& bundle);
    // Makes the plug-in object and a thread that decodes it.
    void Start(const PluginBundle& bundle);
    // How often it was made: anew after a stall.
    int TimesStarted() const { return timesStarted_; }
    // Tells the user why the object cannot be shown.
    void GiveUp(OSErr error, const std::string& why);
    // The same for one that no bundle accepts.
    void GiveUpUnknownType();
    // Ends its data, so that its decoding ends soon.
    void Cancel();
    // After its decoding has ended: frees the plug-in object.
    void Free();
    // After a Cancel and a Free: it waits as if it had never been started.
    void WaitAgain();
    // To be called after each round of yields, Idle and drawing: notes what came of it.
    void Observe();
    // Decoding has ended and a round of yields and an Idle have passed since, or it never will.
    bool IsSettled() const;
    // The descriptor of its stream while somebody waits for what comes there, else -1.
    int DescriptorToWaitOn() const;

    // Drawing, on the application thread with the port and clip set ------------------------

    void Display();
    void Idle();
    bool Click(const EventRecord& event);

    const Rect& Area() const { return area_; }
    void SetArea(const Rect& area) { area_ = area; }
    // The size of the area it wants on a page of that width, without dimensions a placeholder's.
    AreaSize WantedArea(SInt16 pageWidth) const;
    // Where in its area it draws.
    Rect DrawnRect() const;
    bool HasDimensions() const { return hasDimensions_; }
    bool NeedsDisplay() const { return needsDisplay_ && hasDimensions_; }
    void NeedDisplay() { needsDisplay_ = true; }
    bool WasDisplayed() const { return wasDisplayed_; }
    // It has not been displayed yet, but that may come.
    bool MayAppear() const { return !wasDisplayed_ && !IsSettled(); }
    // Whether it reported a size since the last call.
    bool TakeSizeChange();
    // The new rows since the last call as a part of DrawnRect, if there are any.
    std::optional<Rect> TakeNewRows();

    // What the plug-in tells and asks, on any of its threads -------------------------------

    void TakeDisplayRect(const Rect& rect);
    void TakeDecodedRows(SInt16 first, SInt16 end);
    void TakeRenderingDone();
    ObjectBytes& Bytes() { return *bytes_; }

    // For the page -------------------------------------------------------------------------

    const std::string& Name() const { return description_.name; }
    const PluginBundle* Bundle() const { return plugin_.Bundle(); }
    bool HasBytes() const { return bytes_ != nullptr; }
    // Of its movies.
    MovieStatistics Statistics();
    bool IdleFailed() const { return idleError_ != noErr; }
    ObjectReport Report();
    // Tells the user why the object was not shown, if it was not and GiveUp did not.
    void TellOutcome();

private:
    static void* DecodeOnThread(void* object);
    void Decode();
    void GiveUpSilently(OSErr error);
    OSErr Error() const;
    bool IsSoundOnly() const;

    ObjectDescription description_;
    std::unique_ptr<ObjectBytes> bytes_;
    State state_ = State::kWaiting;
    PluginObject plugin_;
    int timesStarted_ = 0;

    OSErr startError_ = noErr;
    OSErr decodeError_ = noErr;
    OSErr idleError_ = noErr;
    int roundsSinceDecoded_ = 0;

    Rect area_{};
    AreaSize natural_;
    bool hasDimensions_ = false;
    bool sizeChanged_ = false;
    bool needsDisplay_ = false;
    bool wasDisplayed_ = false;
    NewRows newRows_;
    std::optional<FirstPicture> firstPicture_;
};

} // namespace viewer
