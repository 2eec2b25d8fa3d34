// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MovieList.h"

namespace toolbox
{

void MovieList::Add(Movie movie, void* owner)
{
    std::vector<Movie>& owned = byOwner_[owner];
    owned.reserve(owned.size() + 1);
    std::list<Movie> added = {movie};
    places_.emplace(movie, Place{added.begin(), owner});
    // From here on nothing fails.
    all_.splice(all_.end(), added);
    owned.push_back(movie);
}

void MovieList::Remove(Movie movie)
{
    const auto found = places_.find(movie);
    if (found == places_.end()) {
        return;
    }
    const auto owned = byOwner_.find(found->second.owner);
    std::erase(owned->second, movie);
    if (owned->second.empty()) {
        byOwner_.erase(owned);
    }
    all_.erase(found->second.inAll);
    places_.erase(found);
}

const std::vector<Movie>& MovieList::Of(void* owner) const
{
    static const std::vector<Movie> none;
    const auto found = byOwner_.find(owner);
    return found == byOwner_.end() ? none : found->second;
}

} // namespace toolbox
