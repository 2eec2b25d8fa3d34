// SPDX-License-Identifier: MIT
#include "viewer/FolderObjects.h"
#include "tests/viewer/FakePlugins.h"
#include "tests/viewer/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;

class FolderObjects : public testing::Test
{
protected:
    std::vector<std::string> Expand(const std::string& location)
    {
        viewer::Options options;
        options.objects = {{location, "x/y", 5}};
        viewer::ExpandFolders(options, plugins.Folder());
        std::vector<std::string> locations;
        for (const viewer::ObjectRequest& request : options.objects) {
            EXPECT_EQ(request.mimeType, "x/y");
            EXPECT_EQ(request.displayFlags, 5u);
            locations.push_back(request.location);
        }
        return locations;
    }

    FakePlugins plugins;
    TestFolder folder;
};

TEST_F(FolderObjects, AreTheFilesThatMayBeShownInTheOrderOfTheirNames)
{
    const std::string c = folder.Write("c.fake", "x");
    const std::string a = folder.Write("a.FAKE", "x");
    const std::string b = folder.Write("b.bare", "x");
    folder.Write("letter.txt", "text");
    folder.Write("clip.fake", std::string("\0\0\1\xBA", 4));
    folder.Write(".hidden.fake", "x");
    std::filesystem::create_directory(folder.Path("inner.fake"));
    EXPECT_THAT(Expand(folder.Path("")), ElementsAre(a, b, c));
}

TEST_F(FolderObjects, AFolderWithoutSuchFilesStays)
{
    folder.Write("letter.txt", "text");
    EXPECT_THAT(Expand(folder.Path("")), ElementsAre(folder.Path("")));
}

TEST_F(FolderObjects, WhatIsNoFolderStays)
{
    for (const std::string location : {"-", "http://host/", "/no/such/folder"}) {
        EXPECT_THAT(Expand(location), ElementsAre(location));
    }
}

} // namespace
