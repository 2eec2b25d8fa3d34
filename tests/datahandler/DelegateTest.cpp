// SPDX-License-Identifier: MIT
//
// Which component becomes the delegate. A program of its own: components are found in the order
// of their registration, the system's own are registered at the first look, and none ever leaves.
#include "tests/datahandler/DataHandlerTest.h"

namespace test
{
namespace
{

constexpr OSType kHandlerType = FOUR_CHARS('d', 'h', 'l', 'r');
constexpr OSType kAliasType = FOUR_CHARS('a', 'l', 'i', 's');
constexpr OSType kMaker = FOUR_CHARS('a', 'p', 'p', 'l');
constexpr OSType kOther = FOUR_CHARS('o', 't', 'h', 'r');
constexpr UInt32 kAllButReading = ~UInt32{kDataHCanRead};

class Delegate : public DataHandlerTest
{
protected:
    // Before anybody looks for a component.
    static void SetUpTestSuite()
    {
        Register({kOther, kAliasType, kMaker, kDataHCanRead, 0}, BeWrong);
        Register({kHandlerType, kOther, kMaker, kDataHCanRead, 0}, BeWrong);
        Register({kHandlerType, kAliasType, kOther, kDataHCanRead, 0}, BeWrong);
        Register({kHandlerType, kAliasType, kMaker, kAllButReading, 0}, BeWrong);
        // Flags that nobody asks for do no harm.
        Register({kHandlerType, kAliasType, kMaker, 0xFFFFFFFF, 0}, BeRight);
    }
    void SetUp() override
    {
        wrongCalls = 0;
        rightCalls.clear();
        DataHandlerTest::SetUp();
    }

    static int wrongCalls;
    static std::vector<ComponentParameters> rightCalls;

private:
    static void Register(const ComponentDescription& description, ComponentRoutineProc routine)
    {
        RegisterComponent(&description, routine, 0, nullptr, nullptr, nullptr);
    }
    static ComponentResult BeWrong(ComponentParameters*, void*)
    {
        ++wrongCalls;
        return noErr;
    }
    static ComponentResult BeRight(ComponentParameters* params, void*)
    {
        rightCalls.push_back(*params);
        return noErr;
    }
};

int Delegate::wrongCalls = 0;
std::vector<ComponentParameters> Delegate::rightCalls;

TEST_F(Delegate, IsTheFirstAliasHandlerThatCanRead)
{
    Open();
    EXPECT_EQ(wrongCalls, 0);
    ASSERT_FALSE(rightCalls.empty());
    EXPECT_EQ(rightCalls.front().what, kComponentOpenSelect);
    EXPECT_EQ(rightCalls.front().params[0], reinterpret_cast<ComponentSlot>(handler->delegate));
}

TEST_F(Delegate, IsTargetedAtTheInstanceItself)
{
    Open();
    ASSERT_EQ(rightCalls.size(), 2u); // opened, then targeted
    EXPECT_EQ(rightCalls[1].what, kComponentTargetSelect);
    EXPECT_EQ(rightCalls[1].params[0], reinterpret_cast<ComponentSlot>(instance));
}

} // namespace
} // namespace test
