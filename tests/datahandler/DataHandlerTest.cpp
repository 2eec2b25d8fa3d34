// SPDX-License-Identifier: MIT
#include "tests/datahandler/DataHandlerTest.h"

namespace test
{

Completions DataHandlerTest::completions;
std::function<void()> DataHandlerTest::onCompletion;

void DataHandlerTest::SetUp()
{
    MovieTest::SetUp();
    completions.clear();
    onCompletion = nullptr;
    if (gDataHandlerComponent == nullptr) {
        ASSERT_EQ(EnsureDataHandlerRegistered(), noErr);
    }
}

void DataHandlerTest::TearDown()
{
    onCompletion = nullptr;
    Close();
    KillPlugin();
    MovieTest::TearDown();
}

void DataHandlerTest::Open(const char* mimeType, OSType fileType, SInt32 spooled)
{
    plugin = MakePlugin(mimeType, "clip.mov", fileType);
    Spool(*plugin, spooled);
    ASSERT_EQ(OpenAComponent(gDataHandlerComponent, &instance), noErr);
    VornMovieLoadListener* const last = plugin->loadListeners[plugin->loadListeners.count - 1];
    handler = dynamic_cast<VornPluginDataHandlerComponent*>(last);
    ASSERT_NE(handler, nullptr);
    probe.Forget();
}

void DataHandlerTest::OpenForMpeg(SInt32 spooled)
{
    Open("video/mpeg", FOUR_CHARS('M', 'P', 'E', 'G'), spooled);
}

void DataHandlerTest::Close()
{
    if (instance != nullptr) {
        EXPECT_EQ(CloseComponent(instance), noErr);
        instance = nullptr;
        handler = nullptr;
    }
}

void DataHandlerTest::KillPlugin()
{
    if (plugin != nullptr) {
        plugin->CloseMovieFile();
        plugin.reset();
    }
}

void DataHandlerTest::Arrive(SInt32 bytes)
{
    Spool(*plugin, bytes);
    plugin->NotifyListenersProgress(plugin->bytesSpooled);
}

void DataHandlerTest::ArriveCompletely()
{
    SpoolTheEnd(*plugin);
    plugin->NotifyListenersComplete(plugin->bytesSpooled);
}

ComponentResult DataHandlerTest::Schedule(char* place, SInt32 offset, SInt32 size, RefCon refCon)
{
    return Call(kDataHScheduleDataSelect, place, offset, size, refCon, &schedule, Complete);
}

ComponentResult DataHandlerTest::ReadAsync(char* place, UInt32 offset, UInt32 size, RefCon refCon)
{
    const wide where = {0, offset};
    return Call(kDataHReadAsyncSelect, place, size, &where, Complete, refCon);
}

bool DataHandlerTest::Holds(const char* place, SInt32 offset, SInt32 size) const
{
    return std::equal(place, place + size, host.object.begin() + offset,
                      [](char a, UInt8 b) { return static_cast<UInt8>(a) == b; });
}

void DataHandlerTest::Complete(char* request, RefCon refCon, OSErr err)
{
    completions.push_back({request, refCon, err});
    if (onCompletion) {
        onCompletion();
    }
}

} // namespace test
