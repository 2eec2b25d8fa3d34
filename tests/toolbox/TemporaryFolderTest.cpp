// SPDX-License-Identifier: MIT
#include "toolbox/files/TemporaryFolder.h"

#include "toolbox/Errors.h"
#include "toolbox/Types.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;
constexpr int kCannotMount = 255;

// Another process that holds a temporary folder (FolderHolder.cpp).
class Holder
{
public:
    explicit Holder(const fs::path& parent, mode_t mask = 022)
    {
        int requests[2];
        int answers[2];
        if (pipe2(requests, O_CLOEXEC) != 0 || pipe2(answers, O_CLOEXEC) != 0) {
            return;
        }
        process_ = fork();
        if (process_ == 0) {
            dup2(requests[0], STDIN_FILENO);
            dup2(answers[1], STDOUT_FILENO);
            setenv("TMPDIR", parent.c_str(), 1);
            umask(mask);
            execl(FOLDER_HOLDER, FOLDER_HOLDER, nullptr);
            _exit(127);
        }
        close(requests[0]);
        close(answers[1]);
        requests_ = requests[1];
        answers_ = fdopen(answers[0], "r");
    }
    ~Holder() { Finish(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    // Waits until it has its folder, or has not got it.
    int Started()
    {
        if (!started_) {
            started_ = ReadAnswer();
        }
        return *started_;
    }

    int Ask(const std::string& request)
    {
        Started();
        const std::string line = request + "\n";
        return write(requests_, line.data(), line.size()) > 0 ? ReadAnswer() : -9999;
    }

    // Goes on as the same program from its beginning, and so with the same process number.
    int StartAnew()
    {
        Ask("exec");
        return ReadAnswer();
    }

    void Kill()
    {
        Started();
        kill(process_, SIGKILL);
        Finish();
    }

    // Lets it end in the ordinary way, if it has not ended.
    void Finish()
    {
        if (process_ > 0) {
            Started();
            close(requests_);
            waitpid(process_, nullptr, 0);
            fclose(answers_);
            process_ = -1;
        }
    }

private:
    int ReadAnswer()
    {
        int answer = -9999;
        return fscanf(answers_, "%d", &answer) == 1 ? answer : -9999;
    }

    pid_t process_ = -1;
    int requests_ = -1;
    FILE* answers_ = nullptr;
    std::optional<int> started_;
};

class TemporaryFolder : public testing::Test
{
protected:
    TemporaryFolder()
    {
        std::string path = (fs::temp_directory_path() / "folders-XXXXXX").string();
        parent_ = mkdtemp(path.data());
    }
    ~TemporaryFolder() override { fs::remove_all(parent_); }

    std::vector<fs::path> Folders() const
    {
        std::vector<fs::path> folders;
        for (const auto& entry : fs::directory_iterator(parent_)) {
            folders.push_back(entry.path());
        }
        return folders;
    }

    static mode_t ModeOf(const fs::path& path)
    {
        struct stat status {
        };
        return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
    }

    // What `steps` answer in a forked process.
    template <class Steps>
    static int ErrorInAnotherProcess(Steps steps)
    {
        const pid_t child = fork();
        if (child == 0) {
            _exit(steps());
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    static int ErrorOfMaking(const std::string& parent)
    {
        try {
            toolbox::TemporaryFolder(parent).Remove();
            return noErr;
        } catch (OSErr err) {
            return err;
        }
    }

    // A small volume at the parent, for this process alone.
    bool Mount(unsigned long flags, const char* options) const
    {
        const bool mayMount =
            unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
        return mayMount && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               mount("tmpfs", parent_.c_str(), "tmpfs", flags, options) == 0;
    }

    // What a process left that had no chance to clean up.
    fs::path LeaveAbandonedFolder(const std::string& name = "vorn-spool-dead")
    {
        fs::create_directory(parent_ / name);
        std::ofstream(parent_ / name / "movie.mpg") << "bytes";
        return parent_ / name;
    }

    fs::path parent_;
};

TEST_F(TemporaryFolder, StandsUnderTmpdirWithARecognizableName)
{
    Holder holder(parent_);
    ASSERT_EQ(noErr, holder.Started());
    ASSERT_EQ(1U, Folders().size());
    EXPECT_EQ(0U, Folders().front().filename().string().find("vorn-spool-"));
    EXPECT_TRUE(fs::exists(Folders().front() / "held"));
}

TEST_F(TemporaryFolder, IsRemovedWithItsFilesWhenTheProcessEnds)
{
    Holder holder(parent_);
    holder.Finish();
    EXPECT_TRUE(Folders().empty());
}

TEST_F(TemporaryFolder, RemovesWhatADeadProcessLeft)
{
    Holder dead(parent_);
    dead.Kill();
    ASSERT_EQ(1U, Folders().size());
    const fs::path left = Folders().front();
    Holder next(parent_);
    ASSERT_EQ(noErr, next.Started());
    EXPECT_FALSE(fs::exists(left));
    EXPECT_EQ(1U, Folders().size());
}

TEST_F(TemporaryFolder, LeavesLiveProcessesTheirs)
{
    Holder first(parent_);
    ASSERT_EQ(noErr, first.Started());
    Holder second(parent_);
    ASSERT_EQ(noErr, second.Started());
    EXPECT_EQ(2U, Folders().size());
    EXPECT_EQ(noErr, first.Ask("lookup"));
    second.Finish();
    EXPECT_EQ(noErr, first.Ask("open"));
    EXPECT_EQ(1U, Folders().size());
}

TEST_F(TemporaryFolder, EveryProcessOfManyThatStartAtOnceGetsOneOfItsOwn)
{
    LeaveAbandonedFolder();
    std::vector<std::unique_ptr<Holder>> holders;
    for (int number = 0; number < 16; ++number) {
        holders.push_back(std::make_unique<Holder>(parent_));
    }
    for (const auto& holder : holders) {
        EXPECT_EQ(noErr, holder->Started());
        EXPECT_EQ(noErr, holder->Ask("open"));
    }
    EXPECT_EQ(16U, Folders().size());
}

TEST_F(TemporaryFolder, IsForItsUserOnlyWithItsFilesWhateverTheUmask)
{
    for (const mode_t mask : {mode_t{0}, mode_t{0777}}) {
        Holder holder(parent_, mask);
        ASSERT_EQ(noErr, holder.Started());
        ASSERT_EQ(1U, Folders().size());
        EXPECT_EQ(0700U, ModeOf(Folders().front()));
        EXPECT_EQ(0600U, ModeOf(Folders().front() / "held"));
        EXPECT_EQ(noErr, holder.Ask("open"));
    }
}

TEST_F(TemporaryFolder, IsShutToOtherUsers)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become somebody else";
    }
    Holder holder(parent_, 0);
    ASSERT_EQ(noErr, holder.Started());
    const int folder = open(parent_.c_str(), O_RDONLY | O_DIRECTORY);
    const std::string held = Folders().front().filename() / "held";
    EXPECT_EQ(EACCES, ErrorInAnotherProcess([&] {
                  return seteuid(kNobody) == 0 && openat(folder, held.c_str(), O_RDONLY) < 0 ? errno
                                                                                             : 0;
              }));
    close(folder);
}

// What tells the dead from the living is a lock, not the number of a process, which comes again.
TEST_F(TemporaryFolder, IsKnownForAbandonedThoughItsProcessNumberIsInUse)
{
#ifdef VORN_EMULATED
    GTEST_SKIP() << "under the emulator a program cannot become itself anew";
#endif
    Holder holder(parent_);
    ASSERT_EQ(noErr, holder.Started());
    ASSERT_EQ(1U, Folders().size());
    const fs::path before = Folders().front();
    EXPECT_EQ(noErr, holder.StartAnew());
    EXPECT_FALSE(fs::exists(before));
    EXPECT_EQ(1U, Folders().size());
}

TEST_F(TemporaryFolder, IsMadeOncePerProcess)
{
    Holder holder(parent_);
    EXPECT_EQ(noErr, holder.Ask("find"));
    EXPECT_EQ(1U, Folders().size());
}

TEST_F(TemporaryFolder, IsNotRemovedByAForkedChild)
{
    Holder holder(parent_);
    EXPECT_EQ(0, holder.Ask("fork"));
    EXPECT_EQ(noErr, holder.Ask("lookup"));
    EXPECT_EQ(noErr, holder.Ask("open"));
}

TEST_F(TemporaryFolder, TouchesNothingButItsOwnKindOfFolder)
{
    const fs::path other = LeaveAbandonedFolder("someone-elses");
    const fs::path file = parent_ / "vorn-spool-file";
    std::ofstream(file) << "not a folder";
    Holder holder(parent_);
    EXPECT_EQ(noErr, holder.Started());
    EXPECT_TRUE(fs::exists(other / "movie.mpg"));
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(TemporaryFolder, FollowsNoLinkThatBearsItsName)
{
    const fs::path other = LeaveAbandonedFolder("someone-elses");
    fs::create_directory_symlink(other, parent_ / "vorn-spool-link");
    Holder holder(parent_);
    EXPECT_EQ(noErr, holder.Started());
    EXPECT_TRUE(fs::exists(other / "movie.mpg"));
    EXPECT_TRUE(fs::is_symlink(parent_ / "vorn-spool-link"));
}

TEST_F(TemporaryFolder, RemovesOnlyPlainFiles)
{
    const fs::path left = LeaveAbandonedFolder();
    const fs::path target = parent_ / "target";
    std::ofstream(target) << "kept";
    fs::create_symlink(target, left / "link");
    fs::create_directory(left / "inner");
    Holder holder(parent_);
    EXPECT_EQ(noErr, holder.Started());
    EXPECT_FALSE(fs::exists(left / "movie.mpg"));
    EXPECT_TRUE(fs::is_symlink(left / "link"));
    EXPECT_TRUE(fs::exists(left / "inner"));
    EXPECT_TRUE(fs::exists(target));
}

TEST_F(TemporaryFolder, LeavesAnotherUsersFolderAlone)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    const fs::path left = LeaveAbandonedFolder();
    ASSERT_EQ(0, chown(left.c_str(), 12345, 12345));
    Holder holder(parent_);
    EXPECT_EQ(noErr, holder.Started());
    EXPECT_TRUE(fs::exists(left / "movie.mpg"));
}

TEST_F(TemporaryFolder, GivesDirNFErrOnceSomebodyHasRemovedIt)
{
    Holder holder(parent_);
    ASSERT_EQ(noErr, holder.Started());
    ASSERT_EQ(1U, Folders().size());
    fs::remove_all(Folders().front());
    EXPECT_EQ(dirNFErr, holder.Ask("create"));
    EXPECT_EQ(dirNFErr, holder.Ask("lookup"));
    EXPECT_EQ(dirNFErr, holder.Ask("open"));
}

TEST_F(TemporaryFolder, IsNotThereIfItsParentIsNot)
{
    Holder holder(parent_ / "nowhere");
    EXPECT_EQ(fnfErr, holder.Started());
}

TEST_F(TemporaryFolder, IsNotThereIfItsParentMayNotBeWritten)
{
    ASSERT_EQ(0, chmod(parent_.c_str(), 0555));
    EXPECT_EQ(-permErr, ErrorInAnotherProcess([&] {
        const bool ready = chdir(parent_.c_str()) == 0 && // its way may be shut to nobody
                           (geteuid() != 0 || seteuid(kNobody) == 0);
        return ready ? -ErrorOfMaking(".") : 0;
    }));
}

TEST_F(TemporaryFolder, IsNotThereOnAVolumeForReadingOnly)
{
    const int error = ErrorInAnotherProcess([&] {
        return Mount(MS_RDONLY, "size=1m") ? -ErrorOfMaking(parent_.string()) : kCannotMount;
    });
    if (error == kCannotMount) {
        GTEST_SKIP() << "this process may not mount anything";
    }
    EXPECT_EQ(-wPrErr, error);
}

TEST_F(TemporaryFolder, IsNotThereOnAFullVolume)
{
    const int error = ErrorInAnotherProcess(
        [&] { return Mount(0, "nr_inodes=1") ? -ErrorOfMaking(parent_.string()) : kCannotMount; });
    if (error == kCannotMount) {
        GTEST_SKIP() << "this process may not mount anything";
    }
    EXPECT_EQ(-dskFulErr, error);
}

} // namespace
