// SPDX-License-Identifier: MIT
#include "viewer/PluginFolder.h"

#include "tests/viewer/SanitizerNote.h"
#include "tests/viewer/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace
{

namespace fs = std::filesystem;
using viewer::PluginFolder;

TEST(PluginFolder, LoadsTheBundlesOfAFolder)
{
    const PluginFolder folder(FAKE_PLUGINS);
    ASSERT_EQ(folder.Bundles().size(), 1u);
    const viewer::PluginBundle& bundle = *folder.Bundles()[0];
    EXPECT_EQ(bundle.Name(), "Fake");
    EXPECT_NE(bundle.Calls().decodeObject, nullptr);
    EXPECT_TRUE(bundle.PlaysMovies());
}

TEST(PluginFolder, ReadsDocumentTypesAndSkipsWhatIsNone)
{
    const PluginFolder folder(FAKE_PLUGINS);
    const auto& types = folder.Bundles()[0]->DocumentTypes();
    ASSERT_EQ(types.size(), 2u);
    EXPECT_EQ(types[0].name, "Fake movie");
    EXPECT_EQ(types[0].mimeTypes, (std::vector<std::string>{"video/x-fake", "video/fake"}));
    EXPECT_EQ(types[0].extensions, std::vector<std::string>{"fake"});
    EXPECT_EQ(types[0].fileTypes, std::vector<std::string>{"FAKE"});
    EXPECT_TRUE(types[1].mimeTypes.empty());
}

TEST(PluginFolder, AnExtensionTellsTheFirstMimeTypeAndFileType)
{
    const PluginFolder folder(FAKE_PLUGINS);
    const viewer::ObjectType type = folder.TypeOf("some.clip.FAKE", "");
    EXPECT_EQ(type.mimeType, "video/x-fake");
    EXPECT_EQ(type.fileType, FOUR_CHARS('F', 'A', 'K', 'E'));
}

TEST(PluginFolder, AGivenMimeTypeStandsAndTellsTheFileType)
{
    const PluginFolder folder(FAKE_PLUGINS);
    const viewer::ObjectType type = folder.TypeOf("clip", "VIDEO/fake");
    EXPECT_EQ(type.mimeType, "VIDEO/fake");
    EXPECT_EQ(type.fileType, FOUR_CHARS('F', 'A', 'K', 'E'));
}

TEST(PluginFolder, WhatIsUnknownHasNoType)
{
    const PluginFolder folder(FAKE_PLUGINS);
    for (const char* name : {"clip.txt", "clip", "fake", "-", "", "clip.bare"}) {
        const viewer::ObjectType type = folder.TypeOf(name, "");
        EXPECT_EQ(type.mimeType, "") << name;
        EXPECT_EQ(type.fileType, FOUR_CHARS('?', '?', '?', '?')) << name;
    }
}

TEST(PluginFolder, AFolderWithoutCodeIsPassedOverInSilence)
{
    const TestFolder folder;
    fs::create_directories(folder.Path("Empty.plugin"));
    fs::copy(std::string(FAKE_PLUGINS) + "/Fake.plugin", folder.Path("NotBuilt.plugin"),
             fs::copy_options::recursive);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(PluginFolder(folder.Path(".")).Bundles().empty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PluginFolder, ABundleThatCannotBeUsedIsLeftOutAndTold)
{
    const TestFolder folder;
    for (const char* name : {"NoPlist", "NoCode"}) {
        fs::create_directories(folder.Path(name + std::string(".plugin/Contents/Linux")));
        folder.Write(name + std::string(".plugin/Contents/Linux/") + name + ".so", "no code");
    }
    fs::copy(std::string(FAKE_PLUGINS) + "/Fake.plugin/Contents/Info.plist",
             folder.Path("NoCode.plugin/Contents/Info.plist"));
    fs::copy(std::string(FAKE_PLUGINS) + "/Fake.plugin", folder.Path("Fake.plugin"),
             fs::copy_options::recursive);
    testing::internal::CaptureStderr();
    const PluginFolder plugins(folder.Path("."));
    const std::string told = WithoutSanitizerNote(testing::internal::GetCapturedStderr());
    EXPECT_EQ(plugins.Bundles().size(), 1u);
    EXPECT_NE(told.find("NoPlist.plugin"), std::string::npos);
    EXPECT_NE(told.find("NoCode.plugin"), std::string::npos);
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 2);
}

TEST(PluginFolder, AMissingFolderIsAnError)
{
    EXPECT_THROW(PluginFolder("/no/such/folder"), std::runtime_error);
}

TEST(PluginFolder, DescribesWhatItAccepts)
{
    const std::string text = DescribePlugins(PluginFolder(FAKE_PLUGINS));
    EXPECT_NE(text.find("Fake"), std::string::npos);
    EXPECT_NE(text.find("video/x-fake"), std::string::npos);
    EXPECT_NE(text.find("extensions: fake"), std::string::npos);
}

} // namespace
