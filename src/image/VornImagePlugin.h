// SPDX-License-Identifier: MIT
#pragma once

#include "src/image/ImageFunctions.h"
#include "src/plugin/VornPlugin.h"
#include "src/util/CPointerList.h"
#include "toolbox/quickdraw/Pictures.h"
#include "toolbox/quickdraw/QDOffscreen.h"

// Shows a still or animated raster image: the base of every image decoder, which supplies
// CanHandleData and Render and fills the frames that it adds.
//
// While decoding runs only frame 0 is shown, by the rows that have arrived; afterwards an animation
// runs in Idle. Frames of an animation meet in an off-screen composite, which keeps what earlier
// frames left there. All of it runs on the host's thread. Errors are thrown as OSErr; frames are
// known by their index, and one that there is not throws paramErr. The order of the fields is part
// of the binary interface.
class VornImagePlugin : public VornPlugin
{
public:
    using TDisposalMethod = ::TDisposalMethod;

    // One frame with its place in the image and in time. Owns its graphics worlds.
    class TFrame
    {
    public:
        TFrame(GWorldPtr world, UInt16 worldDepth, GWorldPtr mask, UInt16 depthOfMask);
        ~TFrame();
        TFrame(const TFrame&) = delete;
        TFrame& operator=(const TFrame&) = delete;

        // The world passes to the frame, null for none; another one that it had is disposed of.
        // The depths stay as they are.
        void SetGWorld(GWorldPtr world);
        void SetMaskGWorld(GWorldPtr world);
        void SetDisplayPosition(Point position);
        void SetTransparency(unsigned char flag, SInt16 index);
        // In hundredths of a second, rounded down to ticks.
        void SetDelay(UInt16 hundredths);
        void SetUserInput(unsigned char flag);
        void SetDisposalMethod(TDisposalMethod method);
        // Leaves `bounds` alone if the frame has no graphics world.
        void GetBounds(Rect& bounds) const;
        // A new picture of the frame, the caller's; null if there are no pixels to be had.
        void GetFramePictHandle(PicHandle* outPicture) const;

        GWorldPtr gworld;
        GWorldPtr maskGWorld;    // null: opaque
        Point displayPosition{}; // of the top left in the image
        SInt32 delayTicks = 0;
        TDisposalMethod disposalMethod = kDisposalUnspecified;
        unsigned char userInput = 0;  // a click may go on to the next frame
        unsigned char transparent;    // one colour is
        SInt16 transparentIndex = -1; // and this is its index
        UInt16 depth;                 // bits a pixel
        UInt16 maskDepth;             // 0: no mask
    };

    explicit VornImagePlugin(CFBundleRef ownBundle);
    ~VornImagePlugin() override;

    // Draws the current frame; only its new rows if the display flags ask for that.
    void Display(const Rect& area, unsigned char flag) override;
    // Draws the frame that is due. An animation starts once it is decoded and has been displayed.
    void Idle(const Rect& area, unsigned char flag) override;
    // Goes on to the next frame if the current one waits for the user. The event does not matter.
    Boolean HandleClick(const Rect& area, const EventRecord& event) override;
    // Promises a picture and gives the drag an image, shrunk if the frame is large; `outFlag` tells
    // whether there is one. Pair it with CleanupDrag: a second one loses the first one's image.
    void PrepareDrag(DragRef drag, UInt32 itemRef, const Rect& area,
                     unsigned char& outFlag) override;
    void CleanupDrag() override;
    // 'PICT', and a new picture of the current frame if `outData` is not null.
    void GetData(UInt32& dataType, Handle* outData) override;
    void GetDisplayRect(const Rect& bounds, Rect& outRect) override;
    // Tells by other codes than the base class whether an image that failed has a frame to show.
    OSErr ConvertError(OSErr err) override;
    // Disposes of the decoder's buffer.
    void DisposeDecodingData() override;

    // Appends a white frame, and tells its index. What making its graphics worlds failed with, or
    // memFullErr, adds none.
    OSErr AddNewFrame(const Rect& bounds, UInt16 depth, CTabHandle colors, UInt16 maskDepth,
                      SInt16& index);
    // Null for a slot without a frame; the setters below ignore such a slot.
    GWorldPtr GetFrameGWorld(SInt16 index);
    GWorldPtr GetFrameMaskGWorld(SInt16 index);
    void GetFrameBounds(SInt16 index, Rect& bounds);
    void SetFrameGWorld(SInt16 index, GWorldPtr world);
    void SetFrameMaskGWorld(SInt16 index, GWorldPtr world);
    void SetFrameDisplayPos(SInt16 index, Point position);
    void SetFrameTransparency(SInt16 index, unsigned char flag, SInt16 transparentIndex);
    void SetFrameDelay(SInt16 index, UInt16 hundredths);
    void SetFrameUserInput(SInt16 index, unsigned char flag);
    void SetFrameDisposalMethod(SInt16 index, TDisposalMethod method);

    // The table passes to the image; another one that it had is disposed of.
    void SetColorTable(CTabHandle colors);
    void SetBackgroundColor(const RGBColor& color);
    // A count of 0 goes on for ever (65536 loops).
    void SetLooping(unsigned char loop, SInt16 count);
    // Memory for the decoder, from NewPtr; passes to the image until decoding ends.
    Ptr GetTempBuffer() const;
    void SetTempBuffer(Ptr buffer);
    // Tells that `row` of the first frame is decoded; the next partial drawing shows it.
    void InvalidateRow(SInt16 row);
    // A new table of 256 colours, the caller's: black, white and then the source's colours but for
    // its last two; a source of more than 252 entries is taken as it is. Throws memFullErr.
    static void AddWhiteToColorTable(CTabHandle source, CTabHandle* result);

    // Draws frame `curFrame` as the image is placed in `area`; if not `full`, only the rows that
    // were invalidated.
    void DrawImage(const Rect& area, unsigned char full);

    unsigned char looping = 0;       // animated
    unsigned char animationDone = 0; // the last loop has been played
    unsigned char usesTempMem = 1;   // for every graphics world
    unsigned char hasDisplayed = 0;
    SInt16 curFrame = -1;  // in an animation the one to be drawn next; -1: there is none yet
    SInt16 frameCount = 0; // frames added
    SInt16 loopCount = 0;  // loops to play
    SInt16 loopsDone = 0;
    UInt32 nextFrameTime = 0;  // in ticks
    SInt16 invalidTop = -1;    // rows decoded since the last drawing, -1: none
    SInt16 invalidBottom = -1; // one past the last
    RGBColor backgroundColor = {0xFFFF, 0xFFFF, 0xFFFF};
    unsigned char hasBackgroundColor = 0;
    GWorldPtr compositeGWorld = nullptr; // made when the first frame of an animation is drawn
    GWorldPtr dragGWorld = nullptr;
    CTabHandle colorTable = nullptr;
    Ptr tempBuffer = nullptr;
    CPointerList<TFrame*> frames;

private:
    void DisplayStillFrame(const TFrame& frame, const Rect& dest, unsigned char full);
    void DisplayAnimatedFrame(const TFrame& frame, const Rect& dest, unsigned char full);
    Rect RowsToDraw(const TFrame& frame, unsigned char full) const;
    void MakeComposite();
    void ScheduleNextFrame();
    GWorldPtr MakeDragImage(const Rect& bounds, Point& offset);
};
