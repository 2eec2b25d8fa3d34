// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/LibAVLoader.h"

#include "toolbox/quicktime/Movies.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace
{

namespace fs = std::filesystem;
using toolbox::LibAVFiles;
using toolbox::LibAVLoader;

constexpr const char* kNowhere = "/nonexistent";

TEST(LibAVLoader, LoadsWhatTheHeadersBelongTo)
{
    LibAVLoader loader(LibAVFiles::OfBuild());
    ASSERT_TRUE(loader.Await());
    EXPECT_EQ(loader.Calls().av_rescale(7, 3, 2), 11);
    EXPECT_FALSE(loader.IsLoading());
}

TEST(LibAVLoader, BelievesWhatItSeesUntilItIsLoaded)
{
    const fs::path folder = fs::path(testing::TempDir()) / "libav-loader";
    fs::create_directories(folder);
    LibAVFiles files = LibAVFiles::OfBuild();
    files.folder = folder;
    for (std::string& name : files.names) {
        name = "libvorn-" + name; // nowhere else
        std::ofstream(folder / name) << "no library";
    }
    LibAVLoader loader(files);
    EXPECT_TRUE(loader.ArePresent());
    EXPECT_FALSE(loader.Await());
    EXPECT_FALSE(loader.ArePresent());
    fs::remove_all(folder);
}

TEST(LibAVLoader, LoadsToFindOutWhereNothingIsSeen)
{
    LibAVFiles files = LibAVFiles::OfBuild();
    files.folder = kNowhere;
    EXPECT_TRUE(LibAVLoader(files).ArePresent());
    files.names[toolbox::kAVFormat] = "libvorn-none.so.1";
    EXPECT_FALSE(LibAVLoader(files).ArePresent());
}

TEST(LibAVLoader, ALibraryWithoutTheCallsIsNone)
{
    LibAVFiles files = LibAVFiles::OfBuild();
    files.names[toolbox::kSWScale] = files.names[toolbox::kAVUtil];
    EXPECT_FALSE(LibAVLoader(files).Await());
}

TEST(LibAVLoader, SeveralMayWait)
{
    LibAVLoader loader(LibAVFiles::OfBuild());
    std::array<bool, 4> answers{};
    std::array<std::thread, 4> threads;
    for (size_t i = 0; i < threads.size(); ++i) {
        threads[i] = std::thread([&, i] { answers[i] = loader.Await(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(answers, (std::array<bool, 4>{true, true, true, true}));
}

TEST(LibAVLoader, MayEndBeforeItHasLoaded)
{
    for (int i = 0; i < 3; ++i) {
        LibAVLoader loader(LibAVFiles::OfBuild());
        loader.Begin();
    }
    EXPECT_TRUE(LibAVLoader(LibAVFiles::OfBuild()).Await());
}

TEST(LibAVLoader, TheProcessMayEndWhileItLoads)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto prepareAndEnd = [] {
        PrepareMovies();
        std::exit(MoviesArePrepared() ? 1 : 7);
    };
    EXPECT_EXIT(prepareAndEnd(), testing::ExitedWithCode(7), "");
}

} // namespace
