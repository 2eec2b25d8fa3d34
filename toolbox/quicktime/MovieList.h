// SPDX-License-Identifier: MIT
//
// The movies that are alive. Asked at every call for one, so nothing here but the walk over all
// takes longer when there are more of them.
#pragma once

#include "toolbox/quicktime/Movies.h"

#include <list>
#include <unordered_map>
#include <vector>

namespace toolbox
{

class MovieList
{
public:
    // Throws std::bad_alloc, and has not added it then.
    void Add(Movie movie, void* owner);
    void Remove(Movie movie);
    bool Holds(Movie movie) const { return places_.contains(movie); }
    // In the order of opening.
    const std::list<Movie>& All() const { return all_; }
    const std::vector<Movie>& Of(void* owner) const;

private:
    struct Place {
        std::list<Movie>::iterator inAll;
        void* owner;
    };

    std::list<Movie> all_;
    std::unordered_map<Movie, Place> places_;
    std::unordered_map<void*, std::vector<Movie>> byOwner_;
};

} // namespace toolbox
