// SPDX-License-Identifier: MIT
#include "src/datahandler/DataHandlerRegistration.h"

#include "tests/support/ToolboxProbe.h"
#include "toolbox/Errors.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace test
{
namespace
{

class Registration : public testing::Test
{
protected:
    void SetUp() override { gDataHandlerComponent = nullptr; }

    // What a call prints.
    std::string Printed(OSErr expectedResult)
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(EnsureDataHandlerRegistered(), expectedResult);
        return testing::internal::GetCapturedStdout();
    }
    static std::string Line(const char* text, const void* component)
    {
        char address[64];
        std::snprintf(address, sizeof address, "%p", component);
        return text + std::string(address) + "\n";
    }
    static std::string Asked(const void* component)
    {
        return Line("EnsureDataHandlerRegistered(): gDataHandlerComponent ", component);
    }
    static std::string Returned(const void* component)
    {
        return Line("RegisterComponent returned ", component);
    }

    ToolboxProbe probe;
};

TEST_F(Registration, IsFoundByItsDescription)
{
    ASSERT_EQ(EnsureDataHandlerRegistered(), noErr);
    const ComponentDescription exactly = {FOUR_CHARS('d', 'h', 'l', 'r'),
                                          FOUR_CHARS('K', 'W', 'O', 'B'),
                                          FOUR_CHARS('K', 'w', 'o', 'b'), 0, 0xFFFFFFFF};
    Component found = nullptr;
    do {
        found = FindNextComponent(found, &exactly);
    } while (found != nullptr && found != gDataHandlerComponent);
    EXPECT_EQ(found, gDataHandlerComponent);
}

TEST_F(Registration, HandsOverItsRoutineAsTheComponentManagerWantsIt)
{
    Printed(noErr);
    const std::vector<std::string> inOrder = {"NewComponentRoutineUPP", "RegisterComponent"};
    EXPECT_EQ(probe.Calls(inOrder), inOrder);
}

TEST_F(Registration, SaysWhatItFindsAndWhatItGets)
{
    const std::string printed = Printed(noErr);
    EXPECT_NE(gDataHandlerComponent, nullptr);
    EXPECT_EQ(printed, Asked(nullptr) + Returned(gDataHandlerComponent));
}

TEST_F(Registration, HappensOnce)
{
    Printed(noErr);
    const Component component = gDataHandlerComponent;
    EXPECT_EQ(Printed(noErr), Asked(component));
    EXPECT_EQ(gDataHandlerComponent, component);
    EXPECT_EQ(probe.Count("RegisterComponent"), 1);
}

TEST_F(Registration, IsTriedAgainAfterAFailure)
{
    probe.Fail("RegisterComponent", memFullErr);
    EXPECT_EQ(Printed(paramErr), Asked(nullptr) + Returned(nullptr));
    EXPECT_EQ(gDataHandlerComponent, nullptr);
    Printed(noErr);
    EXPECT_NE(gDataHandlerComponent, nullptr);
}

} // namespace
} // namespace test
