// SPDX-License-Identifier: MIT
//
// The dynamic symbols of the bundles that were built, the list that the linker makes them from, and
// the names that hosts and other code rely on, each against the others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

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

std::vector<std::string> Bundles()
{
    std::vector<std::string> paths;
    std::istringstream list(VORN_BUNDLE_BINARIES);
    for (std::string path; std::getline(list, path, ':');)
        paths.push_back(path);
    return paths;
}

// Lines are "address type name".
Names NamesOf(const std::string& bundle)
{
    Names names;
    std::istringstream lines(OutputOf(VORN_NM " -D --defined-only '" + bundle + "'"));
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

// Of every bundle that there is.
class ExportedNames : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(Bundles, ExportedNames, testing::ValuesIn(Bundles()),
                         [](const auto& bundle) {
                             return std::filesystem::path(bundle.param).stem().string();
                         });

} // namespace

TEST_P(ExportedNames, AreAllInTheBundle)
{
    ASSERT_THAT(ListedNames(), Not(IsEmpty()));
    EXPECT_THAT(Without(ListedNames(), NamesOf(GetParam())), IsEmpty());
}

TEST_P(ExportedNames, AreAllThatTheBundleExports)
{
    ASSERT_THAT(NamesOf(GetParam()), Not(IsEmpty()));
    EXPECT_THAT(Without(NamesOf(GetParam()), ListedNames()), IsEmpty());
}

TEST_P(ExportedNames, AreThePromisedOnes)
{
    EXPECT_EQ(kPromisedNames.size(), 90U);
    EXPECT_THAT(Without(kPromisedNames, NamesOf(GetParam())), IsEmpty());
    EXPECT_THAT(Without(NamesOf(GetParam()), kPromisedNames), IsEmpty());
}

TEST_P(ExportedNames, ArePlain)
{
    for (const std::string& name : NamesOf(GetParam()))
        EXPECT_TRUE(std::all_of(name.begin(), name.end(), [](unsigned char character) {
            return std::isalnum(character);
        })) << name;
}

TEST_P(ExportedNames, DoNotHoldTheTwoThatOnlyTheBundleKnows)
{
    EXPECT_THAT(NamesOf(GetParam()), Not(Contains("VornPluginInitialize")));
    EXPECT_THAT(NamesOf(GetParam()), Not(Contains("VornPluginTerminate")));
}

TEST_P(ExportedNames, AreFoundInTheLoadedBundle)
{
    void* bundle = dlopen(GetParam().c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(bundle, nullptr) << dlerror();
    for (const std::string& name : ListedNames())
        EXPECT_NE(dlsym(bundle, name.c_str()), nullptr) << name;
    dlclose(bundle);
}
