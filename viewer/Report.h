// SPDX-License-Identifier: MIT
//
// What happened to a page and its objects.
#pragma once

#include "toolbox/Types.h"

#include <optional>
#include <string>
#include <vector>

namespace viewer
{

// When an object's first picture was in the port, and how many of its bytes that took.
struct FirstPicture {
    double seconds = 0;
    SInt32 bytes = 0;
};

struct ObjectReport {
    std::string name;
    std::string type;   // MIME type, empty if unknown
    std::string plugin; // the bundle's name, empty if none took the object
    SInt32 bytes = 0;   // handed out
    bool complete = false;
    OSErr error = 0;
    Rect rect{}; // on the page; empty if the object never had a size
    // These are not written.
    SInt32 wholeBytes = -1; // as many as there are, -1 if that is not known
    SInt16 width = 0;       // of its picture, without a movie's controller
    SInt16 height = 0;
    std::string comment;
    std::optional<FirstPicture> firstPicture;
    SInt32 picturesShown = 0;
    SInt32 picturesDropped = 0;
    SInt64 soundSamples = 0;
    double durationSeconds = 0;
    bool shown = false; // it had a size and no error; not written
};

struct PageReport {
    std::vector<ObjectReport> objects;
    double seconds = 0; // of the page's clock
    double cpuSeconds = 0;
    SInt64 peakRssBytes = 0;
    std::vector<std::string> text = {}; // the page's paragraphs; written if there are any
};

// As JSON, one line per member; text that is no UTF-8 is repaired.
std::string WriteReport(const PageReport& report);
// The program's exit status: 0 if every object was shown, else 1.
int ExitStatusOf(const PageReport& report);
// Fills in what the operating system knows of this process.
void MeasureProcess(PageReport& report);

} // namespace viewer
