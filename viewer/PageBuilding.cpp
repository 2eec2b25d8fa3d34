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
                page_.Add(MakeContent(Describe(request), std::move(*document)));
            } else {
                ObjectDescription description = Describe(request);
                description.mayBeDocument = true;
                AddObject(std::move(description), OpenSource(request.location));
            }
        } catch (const SourceFailure& failure) {
            AddObject(Describe(request), nullptr).GiveUp(failure.error, failure.text);
        } catch (const PartMissing& problem) {
            AddObject(Describe(request), nullptr).GiveUp(ioErr, problem.what());
        }
    }

    std::vector<EmbeddedObject*> Unfold(EmbeddedObject& document)
    {
        try {
            return page_.Replace(document,
                                 MakeContent(document.Description(),
                                             ReadMimeDocument(document.Bytes().KeptFile(),
                                                              document.Bytes().ContentType())));
        } catch (const SourceFailure& failure) {
            document.GiveUp(failure.error, failure.text);
        } catch (const PartMissing& problem) {
            document.GiveUp(ioErr, problem.what());
        }
        return {};
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

    // `document`: how the one was described that the medium is in.
    ObjectDescription Describe(const ObjectDescription& document, const MimeMedium& medium,
                               size_t number) const
    {
        ObjectDescription description;
        description.fileName =
            medium.fileName.empty() ? "object " + std::to_string(number) : medium.fileName;
        description.name = document.name + ": " + description.fileName;
        description.type = plugins_.TypeOf(medium.fileName, "");
        description.displayFlags = document.displayFlags;
        return description;
    }

    std::unique_ptr<EmbeddedObject> MakeObject(ObjectDescription description,
                                               std::unique_ptr<ByteSource> source) const
    {
        std::unique_ptr<ObjectBytes> bytes;
        if (source != nullptr) {
            bytes = std::make_unique<ObjectBytes>(std::move(source),
                                                  ArrivalPace(options_.bytesPerSecond), time_);
        }
        return std::make_unique<EmbeddedObject>(std::move(description), std::move(bytes));
    }

    EmbeddedObject& AddObject(ObjectDescription description, std::unique_ptr<ByteSource> source)
    {
        return page_.Add(MakeObject(std::move(description), std::move(source)));
    }

    PageContent MakeContent(const ObjectDescription& description, MimeDocument document) const
    {
        PageContent content;
        for (MimeItem& item : document.items) {
            if (auto* const medium = std::get_if<MimeMedium>(&item)) {
                content.objects.push_back(
                    MakeObject(Describe(description, *medium, content.objects.size() + 1),
                               std::move(medium->source)));
            } else {
                content.texts.push_back({std::get<std::string>(item), content.objects.size()});
            }
        }
        for (const std::string& message : document.messages) {
            Console::Tell(description.name, message);
        }
        return content;
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

std::vector<EmbeddedObject*> UnfoldDocument(EmbeddedObject& document, Page& page,
                                            const Options& options, const PluginFolder& plugins,
                                            HostTime& time)
{
    return PageBuilder(page, options, plugins, time).Unfold(document);
}

} // namespace viewer
