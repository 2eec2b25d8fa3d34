// SPDX-License-Identifier: MIT
//
// One object of the page, from its first byte to its release.
#pragma once

#include "toolbox/quicktime/Movies.h"
#include "toolbox/threads/Threads.h"
#include "viewer/IdleRhythm.h"
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
    // Takes the type that its first bytes tell of, else the one that came along with them, unless
    // the user gave one. To be called when they are there; asks them once.
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
    // To be called when the port has changed in one of these.
    enum class Drawing { kAsDisplayed, kByItself };
    void NoteDrawing(Drawing drawing);
    // Dragging, the page's port being current.
    PluginObject& Plugin() { return plugin_; }

    // It is shown by a bundle that plays no movies.
    bool IsImage() const { return Bundle() != nullptr && !Bundle()->PlaysMovies(); }
    // Whether it is to be given time. An image only moves where it can be seen, and not before it
    // was displayed as a whole: that would show its second frame at once. A movie that has settled
    // gets some when it needs it and in every tick, not in every round.
    bool IsIdleDue(SInt64 now, bool isInView) const;
    // It has been given time.
    void NoteIdle(SInt64 now, IdleRhythm::Kind kind);
    // When an image in view is to be given time next; none while others decide that.
    std::optional<SInt64> NextIdle() const;

    const Rect& Area() const { return area_; }
    void SetArea(const Rect& area) { area_ = area; }
    // Where on the page something may be written about it.
    const Rect& CaptionArea() const { return captionArea_; }
    void SetCaptionArea(const Rect& area) { captionArea_ = area; }
    // The size of the area it wants on a page of that width, without dimensions a placeholder's.
    AreaSize WantedArea(SInt16 pageWidth, double zoom = 1) const;
    // Whether its picture may become larger than it is in a larger area, whatever its flags say.
    void SetEnlarged(bool enlarged) { enlarged_ = enlarged; }
    // The size of its own that it told.
    AreaSize NaturalSize() const { return natural_; }
    bool IsSoundOnly() const;
    // In proportion, to any size, but for the rows of a movie's controller.
    bool MayScale() const;
    SInt16 RowsOfController() const;
    AreaSize PictureSize() const;
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
    bool HasNewRows() const { return hasDimensions_ && !newRows_.IsEmpty(); }

    // What the plug-in tells and asks, on any of its threads -------------------------------

    void TakeDisplayRect(const Rect& rect);
    void TakeDecodedRows(SInt16 first, SInt16 end);
    void TakeRenderingDone(OSErr error);
    ObjectBytes& Bytes() { return *bytes_; }

    // For the page -------------------------------------------------------------------------

    const ObjectDescription& Description() const { return description_; }
    const std::string& Name() const { return description_.name; }
    const PluginBundle* Bundle() const { return plugin_.Bundle(); }
    bool HasBytes() const { return bytes_ != nullptr; }
    // What an image has drawn by itself, but 1 for one that was only displayed.
    SInt32 ImagePicturesShown() const;
    // Of its movies.
    MovieStatistics Statistics() const;
    bool IdleFailed() const { return idleError_ != noErr; }
    ObjectReport Report();
    const std::string& FileName() const { return description_.fileName; }
    const std::string& MimeType() const { return description_.type.mimeType; }
    // Why it cannot be shown as a whole, with the error's number; empty while nothing is wrong.
    std::string Problem() const;
    // Tells the user why the object was not shown, if it was not and GiveUp did not.
    void TellOutcome();

private:
    static void* DecodeOnThread(void* object);
    void Decode();
    OSErr Error() const;
    OSErr NothingInIt() const;
    bool IsShown() const;
    UInt32 FlagsForArea() const;
    bool MayMove() const;
    void LookAtMovies();
    FirstPicture Now() const;

    ObjectDescription description_;
    bool bytesTellType_ = false;
    std::unique_ptr<ObjectBytes> bytes_;
    State state_ = State::kWaiting;
    PluginObject plugin_;
    int timesStarted_ = 0;

    OSErr startError_ = noErr;
    std::string startProblem_;
    OSErr renderingError_ = noErr; // as it was told
    OSErr decodeError_ = noErr;
    OSErr idleError_ = noErr;
    int roundsSinceDecoded_ = 0;

    Rect area_{};
    Rect captionArea_{};
    AreaSize natural_;
    bool hasDimensions_ = false;
    bool sizeChanged_ = false;
    bool needsDisplay_ = false;
    bool wasDisplayed_ = false;
    bool enlarged_ = false;
    NewRows newRows_;
    bool hasPixels_ = false; // of an image: rows were told of, or all is there
    bool renderingDone_ = false;
    IdleRhythm rhythm_;
    MovieStatistics statistics_{};
    SInt64 moviesDeadline_ = -1;
    SInt32 framesDrawn_ = 0;
    std::optional<FirstPicture> firstPicture_;
};

} // namespace viewer
