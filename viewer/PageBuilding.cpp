// SPDX-License-Identifier: MIT
#include "viewer/PageBuilding.h"

#include "viewer/Console.h"
#include "viewer/DocumentOpening.h"
#include "viewer/HttpUrl.h"
#include "viewer/ViewerPart.h"

#include <filesystem>
#include <utility>

namespace viewer
{
namespace
{

std::string FileNameOf(const std::string& location)
{
    return IsHttpUrl(location) ? FileNameInUrl(location)
                               : std::filesystem::path(location).filename().string();
}

class PageBuilder
{
public:
    PageBuilder(Page& page, const Options& options, const PluginFolder& plugins, HostTime& time)
        : page_(page), options_(options), plugins_(plugins), time_(time)
    {
    }

    void Add(const ObjectRequest& request)
    {
        try {
            if (std::optional<MimeDocument> document = OpenDocument(request)) {
                AddDocument(request, *document);
            } else {
                AddObject(Describe(request), OpenSource(request.location));
            }
        } catch (const SourceFailure& failure) {
            AddObject(Describe(request), nullptr).GiveUp(failure.error, failure.text);
        } catch (const PartMissing& problem) {
            AddObject(Describe(request), nullptr).GiveUp(ioErr, problem.what());
        }
    }

private:
    ObjectDescription Describe(const ObjectRequest& request) const
    {
        ObjectDescription description;
        description.name = request.location;
        description.fileName = FileNameOf(request.location);
        description.type = plugins_.TypeOf(description.fileName, request.mimeType);
        description.typeIsKnown = !request.mimeType.empty();
        description.displayFlags = request.displayFlags;
        return description;
    }

    ObjectDescription Describe(const ObjectRequest& request, const MimeMedium& medium,
                               size_t number) const
    {
        ObjectDescription description;
        description.fileName =
            medium.fileName.empty() ? "object " + std::to_string(number) : medium.fileName;
        description.name = request.location + ": " + description.fileName;
        description.type = plugins_.TypeOf(medium.fileName, "");
        description.displayFlags = request.displayFlags;
        return description;
    }

    EmbeddedObject& AddObject(ObjectDescription description, std::unique_ptr<ByteSource> source)
    {
        std::unique_ptr<ObjectBytes> bytes;
        if (source != nullptr) {
            bytes = std::make_unique<ObjectBytes>(std::move(source),
                                                  ArrivalPace(options_.bytesPerSecond), time_);
        }
        return page_.Add(
            std::make_unique<EmbeddedObject>(std::move(description), std::move(bytes)));
    }

    void AddDocument(const ObjectRequest& request, MimeDocument& document)
    {
        size_t number = 0;
        for (MimeItem& item : document.items) {
            if (auto* const medium = std::get_if<MimeMedium>(&item)) {
                AddObject(Describe(request, *medium, ++number), std::move(medium->source));
            } else {
                page_.Texts().Add({std::get<std::string>(item), page_.Objects().size()});
            }
        }
        for (const std::string& message : document.messages) {
            Console::Tell(request.location, message);
        }
    }

    Page& page_;
    const Options& options_;
    const PluginFolder& plugins_;
    HostTime& time_;
};

} // namespace

void AddObjects(Page& page, const Options& options, const PluginFolder& plugins, HostTime& time)
{
    PageBuilder builder(page, options, plugins, time);
    for (const ObjectRequest& request : options.objects) {
        builder.Add(request);
    }
}

} // namespace viewer
