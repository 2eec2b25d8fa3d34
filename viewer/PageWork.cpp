// SPDX-License-Identifier: MIT
#include "viewer/PageWork.h"

#include "viewer/Console.h"
#include "viewer/PageBuilding.h"

#include <algorithm>

namespace viewer
{
namespace
{

const Page& WithObjects(Page& page, const Options& options, const PluginFolder& plugins,
                        HostTime& time)
{
    AddObjects(page, options, plugins, time);
    return page;
}

} // namespace

PageWork::PageWork(const Options& options, const PluginFolder& plugins, HostTime& time)
    : page_(options.width, options.height),
      starter_(WithObjects(page_, options, plugins, time), plugins,
               [&](EmbeddedObject& document) {
                   return UnfoldDocument(document, page_, options, plugins, time);
               }),
      user_(page_, options.events, options.play)
{
}

PageWork::~PageWork()
{
    EndObjects();
}

void PageWork::DoRound()
{
    YieldToAnyThread();
    page_.IdleObjects();
    page_.DrawChanges();
    page_.ObserveObjects();
    user_.PlayNewMovies();
    starter_.Step();
}

PageWork::Mark PageWork::Look() const
{
    Mark mark;
    mark.steps = starter_.CountSteps();
    for (const auto& object : page_.Objects()) {
        // An image has no movies, and there may be a thousand.
        const MovieStatistics statistics =
            object->IsImage() ? MovieStatistics{} : object->Statistics();
        mark.bytes += object->HasBytes() ? object->Bytes().HandedOut() : 0;
        mark.pictures += object->ImagePicturesShown();
        mark.pictures += statistics.picturesShown + statistics.picturesDropped;
        mark.soundFrames += statistics.soundFrames;
        mark.duration += statistics.durationSeconds;
        mark.states += statistics.loadState + statistics.movies + statistics.playing +
                       static_cast<SInt64>(object->CurrentState()) + object->HasDimensions() +
                       object->IsSettled();
    }
    return mark;
}

bool PageWork::IsLoaded() const
{
    const auto& objects = page_.Objects();
    return starter_.IsDone() && std::all_of(objects.begin(), objects.end(),
                                            [](const auto& each) { return each->IsSettled(); });
}

// A movie that plays but has nothing pending will never go on.
bool PageWork::IsAnyPlaying() const
{
    const auto& objects = page_.Objects();
    return NextToolboxDeadline() >= 0 &&
           std::any_of(objects.begin(), objects.end(), [](const auto& each) {
               return !each->IsImage() && each->Statistics().playing != 0;
           });
}

bool PageWork::IsToolboxBusy()
{
    const SInt64 deadline = NextToolboxDeadline();
    return deadline >= 0 && deadline <= ToolboxMicroseconds();
}

std::vector<pollfd> PageWork::AwaitedStreams() const
{
    std::vector<pollfd> streams;
    for (const auto& object : page_.Objects()) {
        if (const int stream = object->DescriptorToWaitOn(); stream >= 0) {
            streams.push_back({stream, POLLIN, 0});
        }
    }
    return streams;
}

std::string PageWork::DescribeProgress() const
{
    SInt64 bytes = 0;
    size_t loaded = 0;
    for (const auto& object : page_.Objects()) {
        bytes += object->HasBytes() ? object->Bytes().HandedOut() : 0;
        loaded += object->IsSettled() ? 1 : 0;
    }
    return "loaded " + std::to_string(loaded) + " of " + std::to_string(page_.Objects().size()) +
           " objects, " + std::to_string(bytes / 1024) + " KiB";
}

PageReport PageWork::MakeReport() const
{
    PageReport report;
    for (const auto& object : page_.Objects()) {
        report.objects.push_back(object->Report());
    }
    for (const TextBlock& block : page_.Texts().Blocks()) {
        report.text.push_back(block.text);
    }
    report.seconds = static_cast<double>(ToolboxMicroseconds()) / 1e6;
    return report;
}

void PageWork::TellOutcome() const
{
    for (const auto& object : page_.Objects()) {
        object->TellOutcome();
    }
    if (const size_t left = user_.CountLeft(); left > 0) {
        Console::Tell("", "the end came before " + std::to_string(left) +
                              (left == 1 ? " click or key" : " clicks and keys") +
                              " could be delivered");
    }
}

void PageWork::EndObjects()
{
    const auto isDecoding = [](const auto& object) {
        return object->CurrentState() == EmbeddedObject::State::kDecoding;
    };
    for (const auto& object : page_.Objects()) {
        object->Cancel();
    }
    while (std::any_of(page_.Objects().begin(), page_.Objects().end(), isDecoding)) {
        YieldToAnyThread();
    }
    page_.FreeObjects();
    Console::ClearProgress();
}

} // namespace viewer
