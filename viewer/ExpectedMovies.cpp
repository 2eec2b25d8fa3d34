// SPDX-License-Identifier: MIT
#include "viewer/ExpectedMovies.h"

#include "toolbox/quicktime/Movies.h"
#include "viewer/HttpUrl.h"

#include <algorithm>

namespace viewer
{

void PrepareExpectedMovies(const Options& options, const PluginFolder& plugins)
{
    const auto isMovie = [&](const ObjectRequest& object) {
        const std::string& location = object.location;
        const std::string name = IsHttpUrl(location) ? FileNameInUrl(location) : location;
        return IsMovieType(plugins.TypeOf(name, object.mimeType).mimeType);
    };
    if (std::any_of(options.objects.begin(), options.objects.end(), isMovie)) {
        PrepareMovies();
    }
}

} // namespace viewer
