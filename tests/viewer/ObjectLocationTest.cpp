// SPDX-License-Identifier: MIT
#include "viewer/ObjectLocation.h"

#include "tests/viewer/TestFiles.h"
#include "viewer/Options.h"

#include <gtest/gtest.h>

namespace
{

using viewer::LocateObject;

std::string Complaint(const std::string& name)
{
    try {
        LocateObject(name);
    } catch (const viewer::UsageError& error) {
        return error.what();
    }
    return "";
}

TEST(ObjectLocation, PathsAndWebAddressesStayAsTheyAre)
{
    for (const char* name : {"clip.mpg", "-", "../a b/100%25.gif", "c:/clip.mpg", "://clip",
                             "http://host", "HTTPS://host/clip.mpg?size=2"}) {
        EXPECT_EQ(LocateObject(name), name);
    }
}

TEST(ObjectLocation, AFileUrlIsItsPath)
{
    EXPECT_EQ(LocateObject("file:///tmp/clip.mpg"), "/tmp/clip.mpg");
    EXPECT_EQ(LocateObject("FILE://localhost/tmp/clip.mpg"), "/tmp/clip.mpg");
}

TEST(ObjectLocation, PercentCodesOfAFileUrlAreDecoded)
{
    EXPECT_EQ(LocateObject("file:///a%20b%c3%A9"), "/a b\xC3\xA9");
    EXPECT_EQ(LocateObject("file:///100%/%4"), "/100%/%4");
}

TEST(ObjectLocation, AFileOfAnotherMachineIsRefused)
{
    EXPECT_EQ(Complaint("file://host/clip.mpg"),
              "'file://host/clip.mpg' names no file of this machine");
    EXPECT_EQ(Complaint("file://"), "'file://' names no file of this machine");
}

TEST(ObjectLocation, AWebAddressNeedsAServer)
{
    EXPECT_EQ(Complaint("http://"), "'http://' names no server");
    EXPECT_EQ(Complaint("https:///clip.mpg"), "'https:///clip.mpg' names no server");
}

TEST(ObjectLocation, OtherUrlsAreRefusedUnlessThereIsSuchAFile)
{
    EXPECT_EQ(Complaint("ftp://host/clip.mpg"),
              "'ftp://host/clip.mpg': only http, https and file URLs can be opened");
    const TestFolder folder;
    std::filesystem::create_directories(folder.Path("ftp:"));
    folder.Write("ftp:/clip.mpg", "a movie");
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path("."));
    const std::string complaint = Complaint("ftp://clip.mpg");
    std::filesystem::current_path(former);
    EXPECT_EQ(complaint, "");
}

TEST(ObjectLocation, AnEmptyNameIsRefused)
{
    EXPECT_EQ(Complaint(""), "an empty name is no object");
}

} // namespace
