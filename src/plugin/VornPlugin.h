// SPDX-License-Identifier: MIT
//
// The base of every object that a host shows through a bundle.
#pragma once

#include "src/plugin/VornPluginABI.h"
#include "toolbox/threads/Threads.h"

#include <cstddef>

class VornDataSource;

// Keeps what every object has and decodes it in fixed steps; a derived class reads, draws and
// answers. Errors are thrown as OSErr, exactly 16 bits wide, and become results at the entry
// points. The order of the virtual operations and of the fields is part of the binary
// interface.
class VornPlugin
{
public:
    // Holds a reference to `ownBundle`, which must not be null.
    explicit VornPlugin(CFBundleRef ownBundle);
    // Destroys the data source and lets go of the bundle.
    virtual ~VornPlugin();
    VornPlugin(const VornPlugin&) = delete;
    VornPlugin& operator=(const VornPlugin&) = delete;

    // Whether an object of that MIME type and file name can be shown. Here: no.
    virtual Boolean CanHandleData(const char* mimeTypeText, const char* name) = 0;
    // Prepares the data source, renders, tells the host the outcome, disposes of what decoding
    // needed, terminates the data source and throws the outcome if it is an error. Runs on the
    // calling thread, which it records. Without a data source it throws paramErr.
    virtual void Decode();
    virtual void Display(const Rect& area, unsigned char flag) = 0;
    virtual void Idle(const Rect& area, unsigned char flag);
    // Whether the object took the event. Here: no.
    virtual Boolean HandleClick(const Rect& area, const EventRecord& event);
    // Whether the object can be dragged goes to `outFlag`. Here: no.
    virtual void PrepareDrag(DragRef drag, UInt32 itemRef, const Rect& area,
                             unsigned char& outFlag) = 0;
    virtual void CleanupDrag() = 0;
    // The type of the object's data, and a new handle for the caller. Here: '????' and none.
    virtual void GetData(UInt32& dataType, Handle* outData) = 0;
    // Where the object draws in `bounds`. Here: everywhere.
    virtual void GetDisplayRect(const Rect& bounds, Rect& outRect) = 0;
    virtual UInt32 GetDisplayFlags();
    virtual void SetDisplayFlags(UInt32 flags);
    // True once SetDisplayRect has been called.
    virtual Boolean GetHaveDimensions();
    // kVornErrStillRendering until rendering has finished, then its outcome.
    virtual OSErr GetRenderingError();
    // At most `bufferSize` characters and a terminator: the buffer holds bufferSize + 1 bytes.
    virtual void GetComment(char* buffer, UInt32 bufferSize);
    // Keeps the rectangle the object wants and tells the host.
    virtual void SetDisplayRect(const Rect& rect);
    // Keeps 256 characters at most. A comment that long takes the first byte of the MIME type for
    // its terminator, and so empties it.
    virtual void SetComment(const char* text);
    // The length the host expects; asked for once, unless the answer is -1.
    virtual SInt32 GetEstimatedDataSize();
    // Keeps all four, 255 characters at most of each text.
    virtual void Initialize(OSType type, OSType creatorCode, const char* name,
                            const char* mimeTypeText);
    // Decodes the object from the data source; throws.
    virtual void Render() = 0;
    // Folds a code into those that a host knows: 0, negative ones and this system's own pass,
    // other positive ones become kVornErrRenderFailed.
    virtual OSErr ConvertError(OSErr err);
    virtual void FinishRendering();
    // Called once rendering has finished; nothing to do here.
    virtual void DisposeDecodingData();

    // Whether the bundle's information dictionary declares that MIME type, or that extension
    // (without a dot), in any of its document types. Case does not count.
    Boolean CanHandleMimeType(const char* mimeTypeText);
    Boolean CanHandleFileExtension(const char* extension);

    // Places the rectangle `natural` in `bounds` by the display flags.
    static void ScaleRectWithFlags(UInt32 flags, const Rect& natural, const Rect& bounds,
                                   Rect& outRect);
    // Resizes `rect` in proportion so that it just fits `bounds`; its top left stays. With
    // `shrinkOnly` it never grows. A rectangle without width or height stays as it is.
    static void ScaleRectToFit(const Rect& bounds, Rect& rect, unsigned char shrinkOnly);
    // Moves `rect` to the centre of `bounds`, an odd pixel going to the left and top margins.
    static void CenterRect(const Rect& bounds, Rect& rect);

    void CallHostGotRect(const Rect& rect);
    void CallHostRenderingDone(OSErr err);
    void CallHostDecodedChunk(SInt16 first, SInt16 end);
    SInt32 CallHostGetEstimatedDataSize();

    // The texts below, Mac Roman, zero-terminated. The comment's terminator may be the first byte
    // of the MIME type, so the comment is addressed through all three.
    const char* Comment() const { return reinterpret_cast<const char*>(&texts); }
    const char* MimeType() const { return texts.mimeType; }
    const char* FileName() const { return texts.fileName; }

    static constexpr UInt32 kTextSize = 256; // bytes, with the terminator

    struct Texts {
        char comment[kTextSize];
        char mimeType[kTextSize];
        char fileName[kTextSize];
    };
    static_assert(offsetof(Texts, comment) == 0 && offsetof(Texts, mimeType) == 256 &&
                      offsetof(Texts, fileName) == 512 && sizeof(Texts) == 768,
                  "the comment runs on into the MIME type and nowhere else");

    VornDataSource* dataSource = nullptr; // owned
    CFBundleRef bundle;                   // a reference of its own
    Texts texts{};
    OSType fileType = FOUR_CHARS('?', '?', '?', '?');
    OSType creator = FOUR_CHARS('?', '?', '?', '?');
    UInt32 displayFlags = 0;
    Rect displayRect{};
    SInt16 reservedRefNum = -1;
    ThreadID decodingThread = kNoThreadID; // the thread that is in Decode
    SInt32 estimatedDataSize = -1;         // -1: not asked for yet
    Boolean reservedFlag = false;
    Boolean haveDimensions = false;
    Boolean renderingFinished = false;
    OSErr renderingError = 0; // as Render threw it
    OSErr finalError = 0;     // as the host was told
};
