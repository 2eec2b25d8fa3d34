// SPDX-License-Identifier: MIT
#include "viewer/Console.h"

#include <gtest/gtest.h>

namespace
{

std::string Told(const std::string& name)
{
    testing::internal::CaptureStderr();
    viewer::Console::Tell(name, "it is empty");
    return testing::internal::GetCapturedStderr();
}

TEST(Console, NamesTheObjectThatIsSpokenOf)
{
    EXPECT_EQ(Told("a.mpg"), "vornview: a.mpg: it is empty\n");
    EXPECT_EQ(Told(""), "vornview: it is empty\n");
}

TEST(Console, CallsStandardInputByItsName)
{
    EXPECT_EQ(Told("-"), "vornview: standard input: it is empty\n");
}

} // namespace
