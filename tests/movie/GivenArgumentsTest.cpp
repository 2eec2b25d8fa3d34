// SPDX-License-Identifier: MIT
//
// What operations are asked for that this toolbox makes nothing of. This program's own definitions
// of them come before the library's: they keep that and pass all of it on.
#include "src/datahandler/DataHandlerRegistration.h"
#include "tests/movie/SpoolingTest.h"
#include "toolbox/Errors.h"

#include <dlfcn.h>
#include <tuple>

namespace
{

using ThreadArguments = std::tuple<ThreadStyle, Size, ThreadOptions, void**>;

ThreadArguments gNewThread;
std::tuple<void*, Boolean> gDisposeThread;
SInt16 gScript = 0;
std::tuple<SInt16, OSType, Boolean> gFolder;
std::tuple<SInt16, Handle, Handle, Handle> gRegistration;

// The library's own.
template <class Operation>
Operation* InToolbox(const char* name)
{
    return reinterpret_cast<Operation*>(dlsym(RTLD_NEXT, name));
}

} // namespace

OSErr NewThread(ThreadStyle style, ThreadEntryUPP entry, void* param, Size stackSize,
                ThreadOptions options, void** result, ThreadID* thread)
{
    gNewThread = {style, stackSize, options, result};
    return InToolbox<decltype(NewThread)>("NewThread")(style, entry, param, stackSize, options,
                                                       result, thread);
}

OSErr DisposeThread(ThreadID thread, void* result, Boolean recycle)
{
    gDisposeThread = {result, recycle};
    return InToolbox<decltype(DisposeThread)>("DisposeThread")(thread, result, recycle);
}

OSErr FSpCreate(const FSSpec* spec, OSType creator, OSType fileType, SInt16 script)
{
    gScript = script;
    return InToolbox<decltype(FSpCreate)>("FSpCreate")(spec, creator, fileType, script);
}

OSErr FindFolder(SInt16 volume, OSType folderType, Boolean createFolder, SInt16* foundVolume,
                 SInt32* foundDirectory)
{
    gFolder = {volume, folderType, createFolder};
    return InToolbox<decltype(FindFolder)>("FindFolder")(volume, folderType, createFolder,
                                                         foundVolume, foundDirectory);
}

Component RegisterComponent(const ComponentDescription* description, ComponentRoutineUPP routine,
                            SInt16 global, Handle name, Handle info, Handle icon)
{
    gRegistration = {global, name, info, icon};
    return InToolbox<decltype(RegisterComponent)>("RegisterComponent")(description, routine, global,
                                                                       name, info, icon);
}

namespace test
{
namespace
{

class GivenArguments : public SpoolingTest
{
};

TEST_F(GivenArguments, TheTaskingThreadHas64KilobytesOfStackAndNoOptions)
{
    auto plugin = MakePlugin();
    host.object.clear();
    plugin->Render();
    EXPECT_EQ(gNewThread, (ThreadArguments{kCooperativeThread, 65536, 0, nullptr}));
    EndTasking(*plugin);
}

TEST_F(GivenArguments, TheTaskingThreadIsDisposedOfWithoutAResultAndNotRecycled)
{
    auto plugin = MakePlugin();
    host.object.clear();
    plugin->Render();
    gDisposeThread = {this, true};
    plugin.reset();
    EXPECT_EQ(gDisposeThread, (std::tuple{static_cast<void*>(nullptr), Boolean{false}}));
}

TEST_F(GivenArguments, TheSpoolFileIsNamedInTheSystemScript)
{
    MakePlugin()->CreateMovieFile();
    EXPECT_EQ(gScript, -1);
}

TEST_F(GivenArguments, TheTemporaryFolderIsThatOfTheSystemDiskAndMadeIfNeedBe)
{
    MakePlugin()->CreateMovieFile();
    EXPECT_EQ(gFolder, (std::tuple{SInt16{kOnSystemDisk}, FOUR_CHARS('t', 'e', 'm', 'p'), true}));
}

TEST_F(GivenArguments, TheDataHandlerIsRegisteredForThisProcessWithoutNameTextOrIcon)
{
    gRegistration = {1, nullptr, nullptr, nullptr};
    gDataHandlerComponent = nullptr;
    ASSERT_EQ(EnsureDataHandlerRegistered(), noErr);
    const Handle none = nullptr;
    EXPECT_EQ(gRegistration, (std::tuple{SInt16{0}, none, none, none}));
}

} // namespace
} // namespace test
