// SPDX-License-Identifier: MIT
//
// The dynamic symbols of the bundle that was built, the list that the linker makes them from, and
// the names that hosts and other code rely on, each against the others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <dlfcn.h>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace
{

using Names = std::set<std::string>;

// What must be found, whatever the linker's list says.
const Names kPromisedNames = {
    "VornPluginCanHandleData",
    "VornPluginCleanupDrag",
    "VornPluginDecodeObject",
    "VornPluginDisplayObject",
    "VornPluginFreeObject",
    "VornPluginGetObjectComment",
    "VornPluginGetObjectData",
    "VornPluginGetObjectDisplayFlags",
    "VornPluginGetObjectDisplayRect",
    "VornPluginGetObjectRenderingError",
    "VornPluginHandleObjectClick",
    "VornPluginHaveObjectDimensions",
    "VornPluginIdleObject",
    "VornPluginMakeNewObject",
    "VornPluginPrepareDrag",
    "VornPluginSetObjectDisplayFlags",
    "MakeNewPlugin",
    "SetObjectComment",
    "SetObjectDisplayRect",
    "SetupPluginHostCalls",
    "ThrowWithError",
    "CallPluginHostDecodedChunk",
    "CallPluginHostGetData",
    "CallPluginHostGetEstimatedObjectBytes",
    "CallPluginHostGotRect",
    "CallPluginHostRenderingDone",
    "GetReadOffset",
    "ReadAvailableBytes",
    "ReadByteStream",
    "ReadBytes",
    "ReadChar",
    "ReadLong",
    "ReadShort",
    "ReadUChar",
    "ReadULong",
    "ReadULongNative",
    "ReadUShort",
    "SkipBytes",
    "SkipTo",
    "SkipToOffset",
    "SkipToOffsetFromBufferEnd",
    "AddNewFrame",
    "GetFrameGWorld",
    "GetFrameMaskGWorld",
    "GetImageCurFrame",
    "GetImageTempBuffer",
    "GetImageUsesTempMem",
    "InvalImageRow",
    "SetFrameDelay",
    "SetFrameDisplayPos",
    "SetFrameDisposalMethod",
    "SetFrameGWorld",
    "SetFrameMaskGWorld",
    "SetFrameTransparency",
    "SetFrameUserInput",
    "SetImageBackgroundColor",
    "SetImageColorTable",
    "SetImageCurFrame",
    "SetImageLooping",
    "SetImageTempBuffer",
    "BlankGWorld",
    "GetPixMapPixel",
    "GrayscaleSampleTo16bitGWorld",
    "InterlacedRGBAlphaTo16bitGWorld",
    "InterlacedRGBTo16bitGWorld",
    "MakeGWorld",
    "PrepareSetPixel",
    "RGBAlphaTo16bitGWorld",
    "RGBSampleTo16bitGWorld",
    "RGBSampleTo32bitGWorld",
    "RGBToDirectPixel",
    "SetMaskPixMapRowPixels",
    "SetPixMapByteIndex",
    "SetPixMapPixel",
    "SetPixMapRowIndices",
    "SetPixMapRowPixels",
    "SetPixMapRowValues",
    "CopyCToPascalString",
    "CopyLegalFilenameChars",
    "CopyPascalString",
    "CopyPascalToCString",
    "FileOrFolderExists",
    "GetTempFileSpec",
    "MakeFileNameUnique",
    "MakeLegalFileName",
    "MakeLegalFileNameWithExtension",
    "MakeUniqueFileNameWithExtension",
    "MyStrEqual",
    "StrCaseCmp",
    "StrCopySafe",
};

Names ListedNames()
{
    Names names;
    std::ifstream file(VORN_EXPORTED_NAMES);
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line[0] != '#')
            names.insert(line);
    return names;
}

std::string OutputOf(const std::string& command)
{
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return output;
    char buffer[4096];
    while (std::size_t count = fread(buffer, 1, sizeof buffer, pipe))
        output.append(buffer, count);
    pclose(pipe);
    return output;
}

// Lines are "address type name".
Names BundleNames()
{
    Names names;
    std::istringstream lines(OutputOf(VORN_NM " -D --defined-only '" VORN_BUNDLE_BINARY "'"));
    for (std::string address, type, name; lines >> address >> type >> name;)
        names.insert(name);
    return names;
}

Names Without(const Names& all, const Names& taken)
{
    Names rest;
    std::set_difference(all.begin(), all.end(), taken.begin(), taken.end(),
                        std::inserter(rest, rest.end()));
    return rest;
}

} // namespace

TEST(ExportedNames, AreAllInTheBundle)
{
    ASSERT_THAT(ListedNames(), Not(IsEmpty()));
    EXPECT_THAT(Without(ListedNames(), BundleNames()), IsEmpty());
}

TEST(ExportedNames, AreAllThatTheBundleExports)
{
    ASSERT_THAT(BundleNames(), Not(IsEmpty()));
    EXPECT_THAT(Without(BundleNames(), ListedNames()), IsEmpty());
}

TEST(ExportedNames, AreThePromisedOnes)
{
    EXPECT_EQ(kPromisedNames.size(), 90U);
    EXPECT_THAT(Without(kPromisedNames, BundleNames()), IsEmpty());
    EXPECT_THAT(Without(BundleNames(), kPromisedNames), IsEmpty());
}

TEST(ExportedNames, ArePlain)
{
    for (const std::string& name : ListedNames())
        EXPECT_TRUE(std::all_of(name.begin(), name.end(), [](unsigned char character) {
            return std::isalnum(character);
        })) << name;
}

TEST(ExportedNames, DoNotHoldTheTwoThatOnlyTheBundleKnows)
{
    EXPECT_THAT(BundleNames(), Not(Contains("VornPluginInitialize")));
    EXPECT_THAT(BundleNames(), Not(Contains("VornPluginTerminate")));
}

TEST(ExportedNames, AreFoundInTheLoadedBundle)
{
    void* bundle = dlopen(VORN_BUNDLE_BINARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(bundle, nullptr) << dlerror();
    for (const std::string& name : ListedNames())
        EXPECT_NE(dlsym(bundle, name.c_str()), nullptr) << name;
    dlclose(bundle);
}
