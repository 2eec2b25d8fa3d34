// SPDX-License-Identifier: MIT
#include "viewer/ViewerPart.h"

#include "tests/viewer/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace
{

using testing::AllOf;
using testing::HasSubstr;
using viewer::PartMissing;
using viewer::ViewerPart;

std::string ProblemOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const PartMissing& problem) {
        return problem.what();
    }
    return "";
}

TEST(ViewerPart, TellsWhichFileIsNotThere)
{
    const TestFolder folder;
    EXPECT_THAT(ProblemOf([&] { ViewerPart("VornNone", folder.Path("parts")); }),
                AllOf(HasSubstr("the viewer's part VornNone cannot be used"),
                      HasSubstr(folder.Path("parts/VornNone.so"))));
}

TEST(ViewerPart, TellsOfAFileThatIsNoLibrary)
{
    const TestFolder folder;
    folder.Write("VornNone.so", "not a library");
    EXPECT_THAT(ProblemOf([&] { ViewerPart("VornNone", folder.Path(".")); }),
                HasSubstr("the viewer's part VornNone cannot be used"));
}

TEST(ViewerPart, TellsWhichFunctionIsNotThere)
{
    const ViewerPart part("VornMail");
    EXPECT_THAT(ProblemOf([&] { part.Find<void()>("VornNoSuchThing"); }),
                AllOf(HasSubstr("VornMail"), HasSubstr("VornNoSuchThing")));
}

TEST(ViewerPart, FindsAFunctionByItsName)
{
    EXPECT_NE(ViewerPart("VornMail").Find<void()>("VornReadMail"), nullptr);
}

} // namespace
