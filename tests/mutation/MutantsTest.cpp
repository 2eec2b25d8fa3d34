// SPDX-License-Identifier: MIT
#include "tests/mutation/Mutants.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

// The source with each of its mutants in turn.
std::vector<std::string> MutantsOf(const std::string& source)
{
    std::vector<std::string> changed;
    for (const Mutant& mutant : FindMutants(source))
        changed.push_back(WithMutant(source, mutant));
    return changed;
}

} // namespace

TEST(Mutants, TurnAComparisonIntoItsNeighbours)
{
    EXPECT_THAT(MutantsOf("return a < b;"), ElementsAre("return a <= b;", "return a >= b;"));
    EXPECT_THAT(MutantsOf("return a >= b;"), ElementsAre("return a > b;", "return a < b;"));
    EXPECT_THAT(MutantsOf("return a == b;"), ElementsAre("return a != b;"));
}

TEST(Mutants, ExchangeSumsStepsLogicAndTruth)
{
    EXPECT_THAT(MutantsOf("return a + b;"), ElementsAre("return a - b;"));
    EXPECT_THAT(MutantsOf("return ++a;"), ElementsAre("return --a;"));
    EXPECT_THAT(MutantsOf("return a && b;"), ElementsAre("return a || b;"));
    EXPECT_THAT(MutantsOf("return false;"), ElementsAre("return true;"));
}

TEST(Mutants, MoveWholeNumbersByOne)
{
    EXPECT_THAT(MutantsOf("return 9;"), ElementsAre("return 10;", "return 8;"));
    EXPECT_THAT(MutantsOf("return 0x1FU;"), ElementsAre("return 0x20U;", "return 0x1EU;"));
    EXPECT_THAT(MutantsOf("return 1.0F;"), IsEmpty());
}

TEST(Mutants, ChangeOneNumberOfATablesRow)
{
    EXPECT_THAT(MutantsOf("    1, 2, 3,\n"), ElementsAre("    2, 2, 3,\n", "    0, 2, 3,\n"));
}

TEST(Mutants, LeaveTemplatesReferencesPointersAndSignsAlone)
{
    EXPECT_THAT(MutantsOf("std::vector<std::vector<T>> f(T&& a, const T& b, T* c);"), IsEmpty());
    EXPECT_THAT(MutantsOf("return -a;"), IsEmpty());
}

TEST(Mutants, LeaveCommentsTextsDirectivesAndStaticAssertionsAlone)
{
    EXPECT_THAT(MutantsOf("// a < b\n/* f(); */\n#if A == 1\nstatic_assert(a == b);\n"), IsEmpty());
    EXPECT_THAT(MutantsOf("return \"1 \\\" < 2\";"), IsEmpty());
    EXPECT_THAT(MutantsOf("return '1';"), IsEmpty());
}

TEST(Mutants, NegateAConditionUnlessItDeclares)
{
    EXPECT_THAT(MutantsOf("if (f(\"x\"))\n    return;"),
                ElementsAre("if (!(f(\"x\")))\n    return;"));
    EXPECT_THAT(MutantsOf("if (const auto err = f())\n    return;"), IsEmpty());
}

TEST(Mutants, LeaveOutCallsAssignmentsDeletionsAndGuards)
{
    EXPECT_THAT(MutantsOf("{ a->f(b, c); }"), ElementsAre("{ ; }"));
    EXPECT_THAT(MutantsOf("{ a[b] = c; }"), ElementsAre("{ ; }"));
    EXPECT_THAT(MutantsOf("{ delete a; }"), ElementsAre("{ ; }"));
    EXPECT_THAT(MutantsOf("{ const Lock lock(a); }"), ElementsAre("{ ; }"));
    EXPECT_THAT(MutantsOf("{ f([&] { g(); }); }"), ElementsAre("{ ; }", "{ f([&] { ; }); }"));
}

TEST(Mutants, LeaveOutWhatStandsBehindAConditionOrALabel)
{
    EXPECT_THAT(MutantsOf("{ if (a)\n    f();\nelse\n    g(); }"),
                Contains("{ if (a)\n    f();\nelse\n    ; }"));
    EXPECT_THAT(MutantsOf("{ case kOne: f(); }"), ElementsAre("{ case kOne: ; }"));
}

TEST(Mutants, KeepDeclarationsAndReturns)
{
    EXPECT_THAT(MutantsOf("{ int a = b; void f(int c); return f(a); A(const A&) = delete; }"),
                IsEmpty());
}

TEST(Mutants, ExchangeACallAndItsNeighbour)
{
    EXPECT_THAT(MutantsOf("{ f(); a = b; }"), Contains("{ a = b; f(); }"));
    EXPECT_THAT(MutantsOf("{ a = b; c = d; }"), Not(Contains("{ c = d; a = b; }")));
    EXPECT_THAT(MutantsOf("{ f(); { g(); } h(); }"), Not(Contains("{ h(); { g(); } f(); }")));
    EXPECT_THAT(MutantsOf("{ f(); if (a) g(); }"), Not(Contains("{ if (a) g(); f(); }")));
}

TEST(Mutants, AreToldByTheirLineBeforeAndAfter)
{
    const std::string source = "int F()\n{\n    return a\n           < b;\n}\n";
    const Mutant mutant = FindMutants(source).front();
    EXPECT_EQ(LineOf(source, mutant.offset), 4U);
    EXPECT_EQ(Description(source, mutant), "< b;  =>  <= b;");
}
