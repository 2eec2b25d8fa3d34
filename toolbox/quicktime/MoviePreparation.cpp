// SPDX-License-Identifier: MIT
#include "toolbox/quicktime/MoviePreparation.h"

#include "toolbox/probe/Announce.h"
#include "toolbox/quicktime/LibAVLoader.h"
#include "toolbox/quicktime/Movies.h"

using namespace toolbox;

namespace
{

bool gMoviesAreHeld = false;

} // namespace

namespace toolbox
{
bool AreMoviesHeld()
{
    return gMoviesAreHeld;
}
} // namespace toolbox

void PrepareMovies(void)
{
    Announce("PrepareMovies");
    LibAVLoader::Shared().Begin();
}

Boolean MoviesArePrepared(void)
{
    Announce("MoviesArePrepared");
    return !LibAVLoader::Shared().IsLoading();
}

void HoldMovies(Boolean held)
{
    Announce("HoldMovies");
    gMoviesAreHeld = held != 0;
}
