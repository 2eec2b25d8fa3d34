// SPDX-License-Identifier: MIT
#include "tests/support/MovieTest.h"

#include "src/datasource/VornPluginDataSource.h"
#include "toolbox/gestalt/Gestalt.h"
#include "toolbox/memory/Memory.h"

namespace test
{
namespace
{

std::string StringArray(const char* key, const std::vector<std::string>& values)
{
    std::string text = "<key>" + std::string(key) + "</key><array>";
    for (const std::string& value : values) {
        text += "<string>" + value + "</string>";
    }
    return text + "</array>";
}

} // namespace

std::string DocumentType(const std::vector<std::string>& mimeTypes,
                         const std::vector<std::string>& extensions)
{
    return "<key>CFBundleDocumentTypes</key><array><dict>" +
           StringArray("CFBundleTypeMIMETypes", mimeTypes) +
           StringArray("CFBundleTypeExtensions", extensions) + "</dict></array>";
}

MovieTest::MovieTest() : bundle(DocumentType({"video/mpeg"}, {"mpg"}))
{
    ResetMovies();
    SetGestaltValue(gestaltQuickTime, kVersion7);
    SetHandleScramble(true);
    const Rect bounds{0, 0, 200, 300};
    CreateWindowPort(&bounds, &port);
    SetPort(port);
    host.FillObject(200000);
}

MovieTest::~MovieTest()
{
    SetPort(nullptr);
    DisposeWindowPort(port);
    SetHandleScramble(false);
}

void MovieTest::SetUp()
{
    for (SInt32 kind = 0; kind < kLiveObjectKinds; ++kind) {
        alive_.at(static_cast<size_t>(kind)) = CountLiveObjects(kind);
    }
}

void MovieTest::TearDown()
{
    for (SInt32 kind = 0; kind < kLiveObjectKinds; ++kind) {
        EXPECT_EQ(CountLiveObjects(kind), alive_.at(static_cast<size_t>(kind))) << "kind " << kind;
    }
    EXPECT_EQ(Movies().moviesAlive, 0);
    EXPECT_EQ(Movies().controllersAlive, 0);
}

std::unique_ptr<VornMoviePlugin> MovieTest::MakePlugin(const char* mimeType, const char* fileName,
                                                       OSType fileType)
{
    auto plugin = std::make_unique<VornMoviePlugin>(bundle.Get());
    plugin->dataSource = new VornPluginDataSource(*plugin);
    plugin->Initialize(fileType, FOUR_CHARS('h', 'o', 's', 't'), fileName, mimeType);
    return plugin;
}

void MovieTest::Spool(VornMoviePlugin& plugin, SInt32 bytes)
{
    if (!plugin.spoolFileCreated) {
        plugin.CreateMovieFile();
    }
    host.ends = false;
    const SInt32 target = plugin.bytesSpooled + bytes;
    host.arrivals = {bytes};
    while (plugin.bytesSpooled < target) {
        plugin.SpoolMovieToFile();
    }
}

void MovieTest::SpoolTheEnd(VornMoviePlugin& plugin)
{
    if (!plugin.spoolFileCreated) {
        plugin.CreateMovieFile();
    }
    host.ends = true;
    host.arrivals.clear();
    plugin.SpoolMovieToFile();
    plugin.CloseMovieFile();
}

std::unique_ptr<VornMoviePlugin> MovieTest::MakePlayingPlugin()
{
    auto plugin = MakePlugin();
    plugin->moviePort = port;
    plugin->OpenMovie(true, true);
    plugin->Idle(area, 0);
    probe.Forget();
    host.told.clear();
    return plugin;
}

std::vector<UInt8> MovieTest::FileBytes(const FSSpec& spec)
{
    SInt16 path = -1;
    if (FSpOpenDF(&spec, fsRdPerm, &path) != 0) {
        return {};
    }
    SInt32 length = 0;
    GetEOF(path, &length);
    std::vector<UInt8> bytes(static_cast<size_t>(length));
    FSRead(path, &length, bytes.data());
    FSClose(path);
    return bytes;
}

bool MovieTest::FileExists(const FSSpec& spec)
{
    SInt16 path = -1;
    const OSErr err = FSpOpenDF(&spec, fsRdPerm, &path);
    if (err == 0) {
        FSClose(path);
    }
    return err == 0;
}

} // namespace test
