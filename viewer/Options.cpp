// SPDX-License-Identifier: MIT
#include "viewer/Options.h"

#include "src/plugin/VornPluginABI.h"
#include "viewer/ObjectLocation.h"
#include "viewer/OptionValues.h"

#include <algorithm>
#include <getopt.h>

namespace viewer
{
namespace
{

constexpr UInt32 kDefaultDisplayFlags = kVornDisplayScale | kVornDisplayShrinkOnly |
                                        kVornDisplayKeepAspect | kVornDisplayCenterH |
                                        kVornDisplayCenterV;
constexpr SInt64 kMostBytesPerSecond = 1'000'000'000'000;

enum OptionCode : int {
    kObject = 1, // getopt's code for what is no option
    kHelp = 'h',
    kVersion = 256,
    kHeadless,
    kSize,
    kType,
    kFlags,
    kArrive,
    kPlay,
    kAt,
    kSnapshot,
    kWav,
    kUntil,
    kClick,
    kKey,
    kReport,
    kDrag,
    kDragImage,
    kPictures,
    kPlugins,
    kListPlugins,
    kInfo
};

const option kOptions[] = {
    {"help", no_argument, nullptr, kHelp},
    {"version", no_argument, nullptr, kVersion},
    {"headless", no_argument, nullptr, kHeadless},
    {"size", required_argument, nullptr, kSize},
    {"type", required_argument, nullptr, kType},
    {"flags", required_argument, nullptr, kFlags},
    {"arrive", required_argument, nullptr, kArrive},
    {"play", no_argument, nullptr, kPlay},
    {"at", required_argument, nullptr, kAt},
    {"snapshot", required_argument, nullptr, kSnapshot},
    {"wav", required_argument, nullptr, kWav},
    {"until", required_argument, nullptr, kUntil},
    {"click", required_argument, nullptr, kClick},
    {"key", required_argument, nullptr, kKey},
    {"report", required_argument, nullptr, kReport},
    {"drag", required_argument, nullptr, kDrag},
    {"drag-image", required_argument, nullptr, kDragImage},
    {"pictures", required_argument, nullptr, kPictures},
    {"plugins", required_argument, nullptr, kPlugins},
    {"list-plugins", no_argument, nullptr, kListPlugins},
    {"info", no_argument, nullptr, kInfo},
    {nullptr, 0, nullptr, 0},
};

// Goes through the command line from left to right: type and flags hold for what follows them.
class Parser
{
public:
    Options Parse(int argc, char* const* argv);

private:
    void TakeOption(int code, const std::string& value);
    void TakePageOption(int code, const std::string& value);
    void TakeOutputOption(int code, const std::string& value);
    void TakeSnapshot(const std::string& path);
    void TakeObject(const std::string& name);
    void CheckClicks() const;
    void CheckTogether() const;

    Options options_;
    std::string mimeType_;
    UInt32 displayFlags_ = kDefaultDisplayFlags;
    std::optional<SInt64> snapshotTime_;
};

Options Parser::Parse(int argc, char* const* argv)
{
    optind = 0; // start anew, also after an earlier command line
    opterr = 0;
    int code = 0;
    while ((code = getopt_long(argc, argv, "-:h", kOptions, nullptr)) != -1) {
        if (code == '?') {
            throw UsageError(std::string("unknown or ambiguous option '") + argv[optind - 1] + "'");
        }
        if (code == ':') {
            throw UsageError(std::string(argv[optind - 1]) + ": a value must follow");
        }
        TakeOption(code, optarg == nullptr ? "" : optarg);
    }
    for (int i = optind; i < argc; ++i) {
        TakeObject(argv[i]);
    }
    CheckTogether();
    return options_;
}

void Parser::TakeOption(int code, const std::string& value)
{
    switch (code) {
    case kObject:
        TakeObject(value);
        break;
    case kHelp:
        options_.help = true;
        break;
    case kVersion:
        options_.version = true;
        break;
    case kListPlugins:
        options_.listPlugins = true;
        break;
    case kInfo:
        options_.info = true;
        break;
    case kHeadless:
        options_.headless = true;
        break;
    case kPlay:
        options_.play = true;
        break;
    case kType:
        mimeType_ = ReadMimeType(value);
        break;
    case kFlags:
        displayFlags_ = ReadFlags("--flags", value);
        break;
    default:
        TakePageOption(code, value);
    }
}

void Parser::TakePageOption(int code, const std::string& value)
{
    switch (code) {
    case kSize:
        ReadSize("--size", value, options_.width, options_.height);
        options_.sizeIsGiven = true;
        break;
    case kArrive:
        options_.bytesPerSecond = ReadWholeNumber("--arrive", value, 1, kMostBytesPerSecond);
        break;
    case kUntil:
        options_.until = ReadSeconds("--until", value);
        break;
    case kClick:
        options_.events.push_back(ReadClick("--click", value));
        break;
    case kKey:
        options_.events.push_back(ReadKey("--key", value));
        break;
    default:
        TakeOutputOption(code, value);
    }
}

void Parser::TakeOutputOption(int code, const std::string& value)
{
    if (value.empty()) {
        throw UsageError("an empty value is no file or folder name");
    }
    switch (code) {
    case kAt:
        if (snapshotTime_) {
            throw UsageError("--at: a --snapshot must follow before the next --at");
        }
        snapshotTime_ = ReadSeconds("--at", value);
        break;
    case kSnapshot:
        TakeSnapshot(value);
        break;
    case kWav:
        options_.wavPath = value;
        break;
    case kReport:
        options_.reportPath = value;
        break;
    case kDrag:
        ReadDrag("--drag", value, options_.drag);
        break;
    case kDragImage:
        options_.drag.imagePath = value;
        break;
    case kPictures:
        options_.picturesFolder = value;
        break;
    case kPlugins:
        options_.pluginsFolder = value;
        break;
    default:
        break;
    }
}

void Parser::TakeSnapshot(const std::string& path)
{
    options_.snapshots.push_back({snapshotTime_, path});
    snapshotTime_.reset();
}

void Parser::TakeObject(const std::string& name)
{
    const std::string location = LocateObject(name);
    const auto isStandardInput = [](const ObjectRequest& object) { return object.location == "-"; };
    if (location == "-" &&
        std::any_of(options_.objects.begin(), options_.objects.end(), isStandardInput)) {
        throw UsageError("standard input can be one object only");
    }
    options_.objects.push_back({location, mimeType_, displayFlags_});
}

void Parser::CheckClicks() const
{
    for (const UserEvent& event : options_.events) {
        if (event.kind == UserEvent::Kind::kClick &&
            (event.where.h >= options_.width || event.where.v >= options_.height)) {
            throw UsageError("--click: " + std::to_string(event.where.h) + "," +
                             std::to_string(event.where.v) + " lies outside the page of " +
                             std::to_string(options_.width) + "x" +
                             std::to_string(options_.height));
        }
    }
}

void Parser::CheckTogether() const
{
    if (options_.help || options_.version || options_.listPlugins) {
        return;
    }
    if (snapshotTime_) {
        throw UsageError("--at: a --snapshot must follow");
    }
    if (options_.objects.empty()) {
        throw UsageError("no object is named");
    }
    if (!options_.drag.imagePath.empty() && options_.drag.path.empty()) {
        throw UsageError("--drag-image: there must be a --drag too");
    }
    if (options_.drag.object.value_or(1) > options_.objects.size()) {
        throw UsageError("--drag: there is no object " + std::to_string(*options_.drag.object));
    }
    if (options_.headless) {
        CheckClicks(); // a window may grow and scroll
    }
    for (const SnapshotRequest& snapshot : options_.snapshots) {
        if (options_.until && snapshot.at && *snapshot.at > *options_.until) {
            throw UsageError("--at: the time for '" + snapshot.path + "' lies after --until");
        }
    }
}

} // namespace

Options ParseOptions(int argc, char* const* argv)
{
    return Parser().Parse(argc, argv);
}

const char* HelpText()
{
    return R"(Usage: vornview [OPTION...] OBJECT...
Shows a page of objects: files, folders, e-mails and web archives (.eml,
.mhtml), http and https URLs, - for standard input. F1 shows a window's keys.
  --info, --list-plugins  tell about the objects; what the plug-ins accept
  --headless              no window; the page is drawn on a clock of its own
  --size WxH              the page's size (800x600; a window fits one object)
  --type MIME, --flags N  type and display flags (0x1F) of objects that follow
  --arrive BYTES          bytes per second at which each object's bytes arrive
  --play                  click the play button of each movie once it is there
  --until SECONDS         end there, else when all is loaded and was played
  --click X,Y@SECONDS     a click on the page, then or once it can be taken
  --key NAME@SECONDS      a key: space, left, shift+right ..., or a character
  --at SECONDS            the time of the --snapshot to follow (else the end)
  --snapshot FILE.png     the page as a picture
  --wav FILE.wav          the page's sound
  --drag [N:]FILE.pict    drag object N, or the first that can be, out of it
  --drag-image FILE.png   with --drag: the image that follows the pointer
  --report FILE.json      what happened (plug-ins write to standard output)
  --pictures DIR          where the window's keys S, P save (~/Pictures)
  --plugins DIR           where the plug-in bundles are
  --version, -h, --help   the viewer's version; this text
Exit status: 0 every object was shown, 1 one was not, 2 usage.
)";
}

} // namespace viewer
