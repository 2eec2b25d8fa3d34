// SPDX-License-Identifier: MIT
#include "tests/sweep/MovieScenarios.h"

#include "src/datahandler/DataHandlerRegistration.h"
#include "tests/support/ArrivalHost.h"
#include "tests/support/ArrivingData.h"
#include "tests/support/CooperativeThread.h"
#include "tests/support/ManualClock.h"
#include "tests/support/TestBundle.h"
#include "toolbox/Errors.h"
#include "toolbox/quicktime/Movies.h"

#include <map>
#include <optional>

namespace sweep
{
namespace
{

constexpr int kTicksPerStep = 2; // the clips' pictures come slower
constexpr int kMostSteps = 400;
constexpr int kStepsBetweenDisplays = 8;
constexpr UInt32 kFitInside =
    kVornDisplayScale | kVornDisplayKeepAspect | kVornDisplayCenterH | kVornDisplayCenterV;
constexpr int kStepOfSeeking = 20;
constexpr int kQuietSteps = 4; // after so many without anything to do, nothing more happens

std::vector<UInt8> Clip(const std::string& name)
{
    static std::map<std::string, std::string> read;
    std::string& bytes = read[name];
    if (bytes.empty()) {
        bytes = ReadWholeFile(VORN_CLIPS "/" + name);
    }
    return {bytes.begin(), bytes.end()};
}

int PicturesOf(const std::string& clip)
{
    return std::stoi(ReadWholeFile(VORN_CLIPS "/" + clip + ".pictures"));
}

CFBundleRef DeclaringBundle()
{
    static const CFBundleRef bundle = test::OpenBundle(VORN_PLUGINS "/VornMovie.plugin");
    return bundle;
}

enum class End { kPlayed, kDisposed, kCancelled };

struct MoviePlan {
    std::vector<UInt8> bytes;
    int pictures = 0;
    SInt32 arrival = 0; // bytes at each call of the host, 0: all at once
    End end = End::kPlayed;
    int mostSteps = kMostSteps;
    bool seeks = false;
};

class MovieScenario : public Scenario
{
public:
    explicit MovieScenario(MoviePlan plan) : plan_(std::move(plan))
    {
        gDataHandlerComponent = nullptr; // every run registers its own
        Tell("display", noErr);
        CreateWindowPort(&kPage, &port_);
        SetPort(port_);
        PlanArrivals();
        SetStatisticsOwner(this);
        decoding_.emplace([this] { Decode(); });
        SetStatisticsOwner(nullptr);
    }
    ~MovieScenario() override
    {
        decoding_.reset();
        VornPluginFreeObject(object_);
        SetPort(nullptr);
        DisposeWindowPort(port_);
    }

    void Run() override
    {
        Tell("make", VornPluginMakeNewObject(DeclaringBundle(), &host_.Calls(),
                                             FOUR_CHARS('M', 'P', 'E', 'G'), 0, "clip.mpg",
                                             "video/mpeg", &object_));
        if (object_ == nullptr) {
            return;
        }
        VornPluginSetObjectDisplayFlags(object_, kFitInside);
        int quiet = 0;
        for (int step = 0; step < plan_.mostSteps && quiet < kQuietSteps; ++step) {
            Step(step);
            quiet = hasDecoded_ && !statistics_.playing ? quiet + 1 : 0;
        }
        Tell("click", handled_ == 0 ? "none" : plan_.seeks ? std::to_string(handled_) : "handled");
        Tell("shown", statistics_.picturesShown >= plan_.pictures ? "all"
                      : statistics_.picturesShown > 0             ? "some"
                                                                  : "none");
        EndDecoding();
        Tell("decoding", hasDecoded_ ? "ends" : "hangs");
        VornPluginFreeObject(object_);
        object_ = nullptr;
    }

private:
    void PlanArrivals()
    {
        const auto size = static_cast<SInt32>(plan_.bytes.size());
        const SInt32 arrival = plan_.arrival == 0 ? size : plan_.arrival;
        host_.arrivals.assign(static_cast<size_t>((size + arrival - 1) / arrival), arrival);
        host_.estimate = size;
        host_.yields = true;
        host_.object = std::move(plan_.bytes);
    }
    // One turn of every thread, then the host's own. It draws anew now and then, as when a window
    // is uncovered.
    void Step(int step)
    {
        YieldToAnyThread();
        SetPort(port_);
        TellFirstError("idle", VornPluginIdleObject(object_, &kPage, 0));
        const bool hasSize = VornPluginHaveObjectDimensions(object_) != 0;
        if (hasSize && (!hasPlayed_ || step % kStepsBetweenDisplays == 0)) {
            TellFirstError("display", VornPluginDisplayObject(object_, &kPage, 0));
        }
        if (hasSize && !hasPlayed_) {
            hasPlayed_ = ClickPlay();
        }
        if (plan_.seeks && hasPlayed_ && step == kStepOfSeeking) {
            Seek();
        }
        GetMovieStatistics(this, &statistics_);
        tick_ += kTicksPerStep;
        clock_.GoToTick(tick_);
    }
    // The play button is the bar's second; the object ends one row below the bar.
    bool ClickPlay() { return Press(24); }
    // To the end and back again on the slider, one picture back, and on.
    void Seek()
    {
        for (const int place : {75, 40}) {
            Press(place);
            Send(mouseUp, place, 0);
        }
        Send(keyDown, 0, kLeftArrowCharCode);
        hasPlayed_ = ClickPlay();
    }
    bool Press(int place) { return Send(mouseDown, place, 0); }
    bool Send(UInt16 what, int place, UInt32 message)
    {
        Rect area = kPage;
        VornPluginGetObjectDisplayRect(object_, &kPage, &area);
        EventRecord event{};
        event.what = what;
        event.message = message;
        event.where = {static_cast<SInt16>(area.bottom - 9),
                       static_cast<SInt16>(area.left + place)};
        const bool isHandled = VornPluginHandleObjectClick(object_, &kPage, &event) != 0;
        handled_ += isHandled ? 1 : 0;
        return isHandled;
    }
    void EndDecoding()
    {
        if (plan_.end == End::kDisposed) {
            decoding_.reset();
        }
        if (plan_.end == End::kCancelled) {
            host_.arrivals.clear();
        }
        for (int step = 0; step < kQuietSteps && !hasDecoded_; ++step) {
            YieldToAnyThread();
        }
    }
    void Decode()
    {
        if (object_ == nullptr) {
            return;
        }
        Tell("decode", VornPluginDecodeObject(object_));
        for (const std::string& told : host_.told) {
            if (told.starts_with("renderingDone ")) {
                Tell("told", told.substr(told.find(' ') + 1));
            }
        }
        hasDecoded_ = true;
    }

    static constexpr Rect kPage = {0, 0, 90, 100};
    MoviePlan plan_;
    test::ArrivalHost host_;
    test::ManualClock clock_;
    UInt32 tick_ = 1;
    CGrafPtr port_ = nullptr;
    VornPlugin* object_ = nullptr;
    MovieStatistics statistics_{};
    bool hasPlayed_ = false;
    int handled_ = 0; // events
    bool hasDecoded_ = false;
    std::optional<test::CooperativeThread> decoding_;
};

} // namespace

std::unique_ptr<Scenario> MovieAtOnce()
{
    return std::make_unique<MovieScenario>(MoviePlan{Clip("tiny.mpg"), PicturesOf("tiny.mpg")});
}

std::unique_ptr<Scenario> MovieInPieces()
{
    return std::make_unique<MovieScenario>(
        MoviePlan{Clip("noise.mpg"), PicturesOf("noise.mpg"), 6000});
}

std::unique_ptr<Scenario> MovieSought()
{
    MoviePlan plan{Clip("noise.mpg"), PicturesOf("noise.mpg")};
    plan.seeks = true;
    return std::make_unique<MovieScenario>(std::move(plan));
}

std::unique_ptr<Scenario> MovieDestroyed()
{
    return std::make_unique<MovieScenario>(
        MoviePlan{Clip("noise.mpg"), PicturesOf("noise.mpg"), 6000, End::kDisposed, 14});
}

std::unique_ptr<Scenario> MovieCancelled()
{
    return std::make_unique<MovieScenario>(
        MoviePlan{Clip("noise.mpg"), PicturesOf("noise.mpg"), 6000, End::kCancelled, 14});
}

std::unique_ptr<Scenario> NoMovie()
{
    return std::make_unique<MovieScenario>(MoviePlan{std::vector<UInt8>(100'000, 'x'), 0, 6000});
}

} // namespace sweep
