// SPDX-License-Identifier: MIT
//
// A page whose objects come and go, at random but the same in every run with the same seed, on a
// clock of its own.
#pragma once

#include "viewer/Admission.h"
#include "viewer/EmbeddedObject.h"
#include "viewer/PageClock.h"

#include <memory>
#include <random>
#include <string>
#include <vector>

// What objects are made of.
struct SoakMaterial {
    std::string fileName;
    std::string mimeType;
    std::shared_ptr<const std::string> bytes;
};

class SoakPage : public viewer::HostTime
{
public:
    SoakPage(const viewer::PluginFolder& plugins, std::vector<SoakMaterial> materials,
             unsigned seed, size_t population);
    // Everything must have gone.
    ~SoakPage() override;
    SoakPage(const SoakPage&) = delete;
    SoakPage& operator=(const SoakPage&) = delete;

    // Moves the clock and does a round of a host's work. With `turnover` some objects begin to go,
    // and for each that has gone another comes.
    void Round(SInt64 microseconds, bool turnover);
    // All objects go, and none comes.
    void RemoveAll();

    SInt64 Now() const { return clock_.Now(); }
    size_t Present() const { return residents_.size(); }
    // Since the beginning.
    int Gone() const { return gone_; }
    int Shown() const { return shown_; }
    int Unknown() const { return unknown_; }

    void LetTimePass() override;

private:
    struct Resident {
        std::unique_ptr<viewer::EmbeddedObject> object;
        bool isDeclined = false; // by every bundle
        bool isLeaving = false;
        bool wasShown = false;
    };

    void Come();
    void SendAway();
    void Idle(Resident& resident);
    void Draw(Resident& resident);
    void Display(viewer::EmbeddedObject& object, const Rect& clip);
    void PlayNew(Resident& resident);
    void Start(Resident& resident);
    void JudgeOpening();
    // False as long as it may not be freed.
    bool HasGone(Resident& resident);

    const viewer::PluginFolder& plugins_;
    std::vector<SoakMaterial> materials_;
    std::mt19937 random_;
    size_t population_;
    viewer::PageClock clock_;
    CGrafPtr port_ = nullptr;
    RgnHandle clip_;
    std::vector<Resident> residents_;
    viewer::Admission admission_; // of the one bundle that plays movies
    const viewer::EmbeddedObject* opening_ = nullptr;
    bool comingHasEnded_ = false;
    int gone_ = 0;
    int shown_ = 0;
    int unknown_ = 0;
};
