// SPDX-License-Identifier: MIT
#include "viewer/PageBuilding.h"

#include <filesystem>

namespace viewer
{
namespace
{

std::string FileNameOf(const std::string& location)
{
    return std::filesystem::path(location).filename().string();
}

ObjectDescription Describe(const ObjectRequest& request, const PluginFolder& plugins)
{
    ObjectDescription description;
    description.name = request.location;
    description.fileName = FileNameOf(request.location);
    description.type = plugins.TypeOf(description.fileName, request.mimeType);
    description.typeIsKnown = !request.mimeType.empty();
    description.displayFlags = request.displayFlags;
    return description;
}

} // namespace

void AddObjects(Page& page, const Options& options, const PluginFolder& plugins, HostTime& time)
{
    for (const ObjectRequest& request : options.objects) {
        std::unique_ptr<ObjectBytes> bytes;
        SourceFailure failure;
        try {
            bytes = std::make_unique<ObjectBytes>(OpenSource(request.location),
                                                  ArrivalPace(options.bytesPerSecond), time);
        } catch (const SourceFailure& caught) {
            failure = caught;
        }
        EmbeddedObject& object = page.Add(
            std::make_unique<EmbeddedObject>(Describe(request, plugins), std::move(bytes)));
        if (failure.error != noErr) {
            object.GiveUp(failure.error, failure.text);
        }
    }
}

} // namespace viewer
