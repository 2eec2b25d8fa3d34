// SPDX-License-Identifier: MIT
//
// What the command line asks for.
#pragma once

#include "toolbox/Types.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace viewer
{

// An object to embed in the page, as it was named.
struct ObjectRequest {
    std::string location; // a path, an http or https URL, or "-" for standard input
    std::string mimeType; // empty: by the first bytes or the name's extension
    UInt32 displayFlags = 0;
};

// A user's action at a time of the page's clock (microseconds from its start).
struct UserEvent {
    enum class Kind { kClick, kKey };
    Kind kind = Kind::kClick;
    SInt64 at = 0;
    Point where{};        // kClick: page coordinates
    UInt8 character = 0;  // kKey: the character that the key gives …
    UInt16 modifiers = 0; // … and the modifier keys that are held down
};

struct SnapshotRequest {
    std::optional<SInt64> at; // microseconds of the page's clock; none: at the end
    std::string path;
};

// An object to be dragged out of the page when it ends.
struct DragRequest {
    std::optional<size_t> object; // counted from 1; none: the first that can be dragged
    std::string path;             // of the picture; empty: no drag
    std::string imagePath;        // of the image that follows the pointer, empty: not wanted
};

struct Options {
    bool help = false;
    bool version = false;
    bool listPlugins = false;
    bool info = false;
    bool headless = false;
    bool play = false;
    SInt16 width = 800;
    SInt16 height = 600;
    bool sizeIsGiven = false;
    std::optional<SInt64> bytesPerSecond;
    std::optional<SInt64> until; // microseconds
    std::vector<SnapshotRequest> snapshots;
    std::vector<UserEvent> events;
    DragRequest drag;
    std::string wavPath;        // empty: none
    std::string reportPath;     // empty: none
    std::string picturesFolder; // empty: the user's own
    std::string pluginsFolder;  // empty: where the program was built or installed
    std::vector<ObjectRequest> objects;
};

// A command line that makes no sense; the text names the option.
class UsageError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// Throws UsageError.
Options ParseOptions(int argc, char* const* argv);
const char* HelpText();

} // namespace viewer
