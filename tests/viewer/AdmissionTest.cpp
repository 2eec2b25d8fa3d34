// SPDX-License-Identifier: MIT
#include "viewer/Admission.h"

#include <gtest/gtest.h>

namespace
{

using viewer::Admission;
using State = Admission::State;

Admission Begun()
{
    Admission admission;
    admission.Begin(0);
    return admission;
}

TEST(Admission, IsFreeAtFirst)
{
    EXPECT_EQ(Admission().Current(), State::kFree);
}

TEST(Admission, AnObjectThatOpensKeepsTheOthersOut)
{
    Admission admission = Begun();
    admission.Judge({.bytesTaken = 100}, 1000);
    EXPECT_EQ(admission.Current(), State::kOpening);
}

TEST(Admission, DimensionsLetTheNextOneIn)
{
    Admission admission = Begun();
    admission.Judge({.hasDimensions = true}, 0);
    EXPECT_EQ(admission.Current(), State::kFree);
}

TEST(Admission, AFailedIdleLetsTheNextOneIn)
{
    Admission admission = Begun();
    admission.Judge({.idleFailed = true}, 0);
    EXPECT_EQ(admission.Current(), State::kFree);
}

TEST(Admission, AnObjectThatIsSettledLetsTheNextOneIn)
{
    Admission admission = Begun();
    admission.Judge({.isSettled = true}, 0);
    EXPECT_EQ(admission.Current(), State::kFree);
}

TEST(Admission, TwoSecondsWithoutAByteAreAStall)
{
    Admission admission = Begun();
    admission.Judge({.bytesTaken = 10}, 500'000);
    admission.Judge({.bytesTaken = 10}, 2'499'999);
    EXPECT_EQ(admission.Current(), State::kOpening);
    EXPECT_EQ(admission.StallsAt(), 2'500'000);
    admission.Judge({.bytesTaken = 10}, 2'500'000);
    EXPECT_EQ(admission.Current(), State::kStalled);
}

TEST(Admission, AByteEndsAStall)
{
    Admission admission = Begun();
    admission.Judge({}, 3'000'000);
    ASSERT_EQ(admission.Current(), State::kStalled);
    admission.Judge({.bytesTaken = 1}, 3'000'001);
    EXPECT_EQ(admission.Current(), State::kOpening);
}

TEST(Admission, AnObjectThatWasFreedLetsTheNextOneIn)
{
    Admission admission = Begun();
    admission.End();
    EXPECT_EQ(admission.Current(), State::kFree);
    admission.Judge({}, 9'000'000);
    EXPECT_EQ(admission.Current(), State::kFree);
}

TEST(Admission, TheNextObjectHasATimeLimitOfItsOwn)
{
    Admission admission = Begun();
    admission.Judge({.hasDimensions = true, .bytesTaken = 5}, 5'000'000);
    admission.Begin(5'000'000);
    admission.Judge({}, 6'999'999);
    EXPECT_EQ(admission.Current(), State::kOpening);
}

} // namespace
