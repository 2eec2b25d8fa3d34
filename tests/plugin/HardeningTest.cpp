// SPDX-License-Identifier: MIT
//
// What was built resists those who found a fault in it: everything that documents from anywhere go
// through.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace
{

std::string OutputOf(const std::string& command)
{
    std::string output;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return output;
    }
    char buffer[4096];
    while (const size_t count = fread(buffer, 1, sizeof buffer, pipe)) {
        output.append(buffer, count);
    }
    pclose(pipe);
    return output;
}

std::vector<std::string> BuiltFiles()
{
    std::istringstream list(VORN_BUILT_FILES);
    std::vector<std::string> files;
    for (std::string file; std::getline(list, file, ':');) {
        files.push_back(file);
    }
    return files;
}

// A program, a library or a bundle, as readelf shows it.
class BuiltFile : public testing::TestWithParam<std::string>
{
protected:
    static std::string Show(const char* options)
    {
        return OutputOf(VORN_READELF " -W " + std::string(options) + " '" + GetParam() + "'");
    }
};

// The program itself keeps nothing on the stack that could be overwritten: all it does is in them.
class BuiltLibrary : public BuiltFile
{
};

std::vector<std::string> BuiltLibraries()
{
    std::vector<std::string> files = BuiltFiles();
    std::erase_if(files, [](const std::string& file) { return !file.ends_with(".so"); });
    return files;
}

std::string NameOf(const testing::TestParamInfo<std::string>& info)
{
    std::string name = std::filesystem::path(info.param).stem().string();
    std::erase_if(name, [](unsigned char character) { return std::isalnum(character) == 0; });
    return name;
}

} // namespace

TEST_P(BuiltFile, IsLoadedAnywhere)
{
    EXPECT_THAT(Show("-h"), ContainsRegex("Type: +DYN"));
}

TEST_P(BuiltFile, ResolvesEverythingBeforeItRuns)
{
    EXPECT_THAT(Show("-d"), HasSubstr("BIND_NOW"));
}

TEST_P(BuiltFile, KeepsItsTablesFromBeingWritten)
{
    EXPECT_THAT(Show("-l"), HasSubstr("GNU_RELRO"));
}

// An empty place would be the folder that the user happens to be in.
TEST_P(BuiltFile, LooksForLibrariesOnlyWhereItLiesItself)
{
    const std::string shown = Show("-d");
    const std::string label = "Library runpath: [";
    const size_t begin = shown.find(label);
    if (begin == std::string::npos) {
        return; // it needs none of ours
    }
    const size_t end = shown.find(']', begin);
    const std::string places = shown.substr(begin + label.size(), end - begin - label.size()) + ':';
    for (size_t at = 0; at < places.size(); at = places.find(':', at) + 1) {
        EXPECT_TRUE(places.substr(at).starts_with("$ORIGIN/") ||
                    places.substr(at).starts_with("$ORIGIN:"))
            << places;
    }
}

TEST_P(BuiltFile, HasNoStackThatRuns)
{
    EXPECT_THAT(Show("-l"), ContainsRegex("GNU_STACK.* RW "));
    EXPECT_THAT(Show("-l"), Not(ContainsRegex("GNU_STACK.* RWE ")));
}

TEST_P(BuiltLibrary, NoticesAnOverwrittenStack)
{
    EXPECT_THAT(Show("--dyn-syms"), HasSubstr("__stack_chk_fail"));
}

// Another copy of the codecs in the process, such as a host's own, is neither used nor disturbed.
TEST(Hardening, KeepsTheNamesOfCodecsToItself)
{
    EXPECT_THAT(OutputOf(VORN_NM " -D --defined-only '" VORN_TOOLBOX "'"),
                AllOf(HasSubstr(" NewHandle\n"), Not(ContainsRegex(" (av|sws|swr|ff)[a-z]*_"))));
}

// Its checked calls are there where the compiler optimises.
TEST(Hardening, ChecksTheLengthsOfBuffersThatTheCompilerKnows)
{
#ifdef NDEBUG
    EXPECT_THAT(OutputOf(VORN_READELF " -W --dyn-syms '" VORN_TOOLBOX "'"),
                ContainsRegex("__[a-z]+_chk@"));
#else
    GTEST_SKIP() << "this is no optimised build";
#endif
}

INSTANTIATE_TEST_SUITE_P(Hardening, BuiltFile, testing::ValuesIn(BuiltFiles()), NameOf);
INSTANTIATE_TEST_SUITE_P(Hardening, BuiltLibrary, testing::ValuesIn(BuiltLibraries()), NameOf);
