// SPDX-License-Identifier: MIT
//
// The program in a window on an X server of its own, with a user who has a mouse and a keyboard.
#pragma once

#include "tests/viewer/TestFiles.h"
#include "tests/viewer/window/Screenshot.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/types.h>
#include <vector>

// An X server without a screen that anybody sees.
class HiddenScreen
{
public:
    static constexpr int kWidth = 1000;
    static constexpr int kHeight = 700;

    // Whether the programs that this takes are there.
    static bool IsPossible();
    HiddenScreen();
    virtual ~HiddenScreen();
    HiddenScreen(const HiddenScreen&) = delete;
    HiddenScreen& operator=(const HiddenScreen&) = delete;

    const std::string& Name() const { return name_; }
    // Starts openbox, which ends with the server; true once it manages windows. Those that are
    // opened before that keep a place that it would not have given them.
    bool StartManager() const;
    // Lets the calling process show its windows here, and nowhere else.
    virtual void Offer() const;

private:
    pid_t server_ = -1;
    std::string name_;
};

class RunningWindow
{
public:
    // The window takes the whole screen, so that places in it are places on the screen, or has the
    // size that the program gives it. `sound` is SDL's name of the way to the sound device.
    enum class Size { kScreen, kOwn };
    RunningWindow(const HiddenScreen& screen, const std::vector<std::string>& arguments,
                  const std::string& sound = "dummy", Size size = Size::kScreen);
    // Kills what still runs.
    ~RunningWindow();
    RunningWindow(const RunningWindow&) = delete;
    RunningWindow& operator=(const RunningWindow&) = delete;

    Screenshot Look() const;
    // Looks until it is as expected; false, and a line about what is there instead, if that takes
    // too long.
    bool WaitUntil(const std::function<bool(const Screenshot&)>& isAsExpected) const;
    // What it shows when that has not changed for a while: the first picture comes before the rest
    // of a clip has been taken in.
    Screenshot LookAtRest() const;
    // Commands for xdotool.
    void Do(const std::string& commands) const;
    void Signal(int number) const;
    // How often its threads have slept so far.
    long CountSleeps() const;

    struct Result {
        int status = -1; // exit status; -1 if it had to be killed or died of a signal
        std::string err;
        nlohmann::json report;
    };
    Result WaitForEnd();
    // What it has left in its TMPDIR.
    std::vector<std::string> LeftBehind() const;
    const TestFolder& Folder() const { return folder_; }

private:
    std::string State() const;

    const HiddenScreen& screen_;
    TestFolder folder_;
    pid_t program_ = -1;
};
