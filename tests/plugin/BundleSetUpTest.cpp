// SPDX-License-Identifier: MIT
//
// The two functions that no other file can see. This program's entry points are therefore those of
// this file, not the library's.
#include "src/plugin/EntryPoints.cpp"

#include <gtest/gtest.h>

TEST(BundleSetUp, KeepsTheCurrentResourceFile)
{
    const SInt16 current = CurResFile();
    gPluginResForkRefNum = static_cast<SInt16>(current + 1);
    EXPECT_EQ(VornPluginInitialize(), noErr);
    EXPECT_EQ(gPluginResForkRefNum, current);
}

TEST(BundleSetUp, TerminatingLeavesItAlone)
{
    gPluginResForkRefNum = 7;
    VornPluginTerminate();
    EXPECT_EQ(gPluginResForkRefNum, 7);
}
