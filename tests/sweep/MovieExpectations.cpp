// SPDX-License-Identifier: MIT
#include "tests/sweep/MovieExpectations.h"

namespace sweep
{
namespace
{

const std::string kNothing;
// The movie does not get as far as having a size.
const std::string kUnseen = "click=none shown=none";
// Nor is all of it spooled, and that is what the host hears.
const std::string kUnspooled = "click=none decode=E shown=none";
const std::string kUnreadable = "click=none idle=-2048 shown=none";
// Or it was read up to there.
const std::string kReadInPart = "click=none idle=-2048 shown=none,some";
// Without a controller in the right place the click misses the button.
const std::string kNotStarted = "click=none shown=some";

// What is meant to stay, or stays because what would have taken it away is what failed.
const std::vector<Remainder> kWritingPath = {
    {"open files", 1, "only the end of spooling closes the path that is written to"},
    {"descriptors", 1, "that path's"}};
const std::vector<Remainder> kUnclosedPath = {{"open files", 1, "its closing is what failed"},
                                              {"descriptors", 1, "that path's"}};
const std::vector<Remainder> kUndeletedFile = {
    {"spool files", 1, "its deletion is what failed; it goes with the process"}};
const std::vector<Remainder> kUnclosedInstances = {
    {"component instances", 2,
     "its closing is what failed: it stays, and with it the one that it delegates to"}};
const std::vector<Remainder> kUnclosedDelegate = {
    {"component instances", 1,
     "where the call that fails is the closing of the instance, what it delegates to stays"},
    {"memory", 1, "and so does the instance's own record, which nobody knows any more"}};

// The same wherever a movie is shown.
const std::vector<Expectation> kOfEveryMovie = {
    {"CallComponentTarget", kNothing, kNothing},
    {"CloseComponent", kNothing, kNothing, kUnclosedInstances},
    {"EnterMovies", kNothing, kNothing},
    {"FSpCreate", kUnspooled, kUnspooled},
    {"FSpDelete", kNothing, kNothing, kUndeletedFile},
    {"FindFolder", kUnspooled, kUnspooled},
    {"Gestalt", "make=E", "make=E"},
    {"GetClip", kNothing, kNothing},
    {"GetCurrentThread", kNothing, kNothing},
    {"GetMovieLoadState", kNothing, kUnseen},
    {"GetWindowFromPort", kNothing, kNothing},
    {"MCSetClip", kNothing, kNothing},
    {"NewMovieController", kNothing, kUnseen},
    {"NewRgn", kNothing, kNothing},
    {"NewThread", kUnspooled, kUnspooled},
    {"PBGetCatInfoSync", kUnspooled, kUnspooled},
    {"QuickTimePresent", "make=-50", "make=-50"},
    {"RegisterComponent", "make=-50", "make=-50"},
    {"SetMovieActive", "shown=none", "shown=none"},
    {"SetMovieGWorld", "shown=none", "shown=none"}};

std::vector<Expectation> WithThoseOfEveryMovie(std::vector<Expectation> own)
{
    own.insert(own.end(), kOfEveryMovie.begin(), kOfEveryMovie.end());
    return own;
}

} // namespace

// All is there before the movie is opened: it is opened once, and that is its only chance.
std::vector<Expectation> MovieAtOnceExpectations()
{
    return WithThoseOfEveryMovie(
        {{"CallComponent", kUnseen, kUnseen},
         {"CallComponentFunctionWithStorageProcInfo", kUnseen, kUnseen, kUnclosedDelegate},
         {"DelegateComponentCall", kUnseen, kUnseen},
         {"FSClose", "decode=E", "decode=E", kUnclosedPath},
         {"FSRead", kUnseen, kUnseen},
         {"FSWrite", kUnspooled, kUnspooled, kWritingPath},
         {"FSpOpenDF", kUnspooled, kUnspooled},
         {"FindNextComponent", kUnseen, kUnseen},
         {"GetEOF", kUnseen, kUnseen},
         {"MCDoAction", "shown=some", "shown=none"},
         {"MCGetVisible", kNothing, kNotStarted},
         {"MCIsPlayerEvent", kNothing, kNotStarted},
         {"MCSetControllerBoundsRect", kNothing, kNotStarted},
         {"NewAliasMinimal", kUnseen, kUnseen},
         {"NewHandle", "click=none decode=-108,E shown=none", "click=none decode=-108,E shown=none",
          kWritingPath},
         {"NewMovieFromDataRef", kUnseen, kUnseen},
         {"OpenAComponent", kUnseen, kUnseen},
         {"SetFPos", kUnseen, kUnseen}});
}

// What fails at opening is tried again when more has come.
std::vector<Expectation> MovieInPiecesExpectations()
{
    return WithThoseOfEveryMovie(
        {{"CallComponent", kReadInPart, kReadInPart},
         {"CallComponentFunctionWithStorageProcInfo", kReadInPart, kReadInPart, kUnclosedDelegate},
         {"DelegateComponentCall", kNothing, kUnseen},
         {"DeleteMovieSegment", kNothing, kNothing},
         {"FSClose", "decode=E shown=some", "decode=E shown=some", kUnclosedPath},
         {"FSRead", kReadInPart, kReadInPart},
         {"FSWrite", "click=none decode=E shown=none,some", "click=none decode=E shown=none,some",
          kWritingPath},
         {"FSpOpenDF", kUnspooled, "click=none decode=E idle=-2048 shown=none"},
         {"FindNextComponent", kNothing, kUnseen},
         {"GetEOF", kReadInPart, kReadInPart},
         {"GetMaxLoadedTimeInMovie", kNothing, kNothing},
         {"GetMovieDuration", kNothing, kNothing},
         {"MCDoAction", "shown=some", "shown=none"},
         {"MCGetVisible", kNothing, kNotStarted},
         {"MCIsPlayerEvent", kNothing, kNotStarted},
         {"MCMovieChanged", kNothing, kNothing},
         {"MCSetControllerBoundsRect", kNothing, kNotStarted},
         {"MoviesTask", kNothing, kNothing},
         {"NewAliasMinimal", kNothing, kUnseen},
         {"NewHandle", "click=none decode=-108,E shown=none", "click=none decode=-108,E shown=none",
          kWritingPath},
         {"NewMovieFromDataRef", kNothing, kUnseen},
         {"OpenAComponent", kNothing, kUnseen},
         {"SetFPos", kReadInPart, kReadInPart}});
}

// Pictures that are gone back to are shown again, and count again.
std::vector<Expectation> MovieSoughtExpectations()
{
    return WithThoseOfEveryMovie(
        {{"CallComponent", kUnreadable, "click=none,1 idle=-2048 shown=none,some"},
         {"CallComponentFunctionWithStorageProcInfo", kUnreadable,
          "click=none,1 idle=-2048 shown=none,some", kUnclosedDelegate},
         {"DelegateComponentCall", kNothing, kUnseen},
         {"DeleteMovieSegment", kNothing, kNothing},
         {"FSClose", "decode=E", "decode=E", kUnclosedPath},
         {"FSRead", kUnreadable, "click=none,1 idle=-2048 shown=none,some"},
         {"FSWrite", kUnspooled, kUnspooled, kWritingPath},
         {"FSpOpenDF", kUnspooled, "click=none decode=E idle=-2048 shown=none"},
         {"FindNextComponent", kNothing, kUnseen},
         {"GetEOF", kUnreadable, "click=none,1 idle=-2048 shown=none,some"},
         {"GetMaxLoadedTimeInMovie", kNothing, kNothing},
         {"GetMovieDuration", kNothing, kNothing},
         {"MCDoAction", kNothing, "shown=none"},
         {"MCGetVisible", kNothing, kNotStarted},
         {"MCIsPlayerEvent", "click=6 shown=some", "click=none,1,2,3,4,5,6 shown=some"},
         {"MCMovieChanged", kNothing, kNothing},
         {"MCSetControllerBoundsRect", kNothing, kNotStarted},
         {"MoviesTask", kNothing, kNothing},
         {"NewAliasMinimal", kNothing, kUnseen},
         {"NewHandle", "click=none decode=-108,E shown=none", "click=none decode=-108,E shown=none",
          kWritingPath},
         {"NewMovieFromDataRef", kNothing, kUnseen},
         {"OpenAComponent", kNothing, kUnseen},
         {"SetFPos", kUnreadable, "click=none,1 idle=-2048 shown=none,some"}});
}

std::vector<Expectation> MovieDestroyedExpectations()
{
    return WithThoseOfEveryMovie(
        {{"CallComponent", kUnreadable, kUnreadable},
         {"CallComponentFunctionWithStorageProcInfo", kUnreadable, kUnreadable, kUnclosedDelegate},
         {"DelegateComponentCall", kUnseen, kUnseen},
         {"FSClose", kNothing, kNothing, kUnclosedPath},
         {"FSRead", kUnreadable, kUnreadable},
         {"FSWrite", kUnspooled, kUnspooled},
         {"FSpOpenDF", kUnspooled, "click=none decode=E idle=-2048 shown=none"},
         {"FindNextComponent", kUnseen, kUnseen},
         {"GetEOF", kUnreadable, kUnreadable},
         {"MCDoAction", "shown=none", "shown=none"},
         {"MCGetVisible", kNothing, "click=none"},
         {"MCIsPlayerEvent", kNothing, "click=none"},
         {"MCSetControllerBoundsRect", kNothing, "click=none"},
         {"MoviesTask", kNothing, kNothing},
         {"NewAliasMinimal", kUnseen, kUnseen},
         {"NewHandle", "click=none decode=-108,E shown=none",
          "click=none decode=-108,E shown=none"},
         {"NewMovieFromDataRef", kUnseen, kUnseen},
         {"OpenAComponent", kUnseen, kUnseen},
         {"SetFPos", kUnreadable, kUnreadable}});
}

std::vector<Expectation> MovieCancelledExpectations()
{
    return WithThoseOfEveryMovie(
        {{"CallComponent", kUnreadable, kUnreadable},
         {"CallComponentFunctionWithStorageProcInfo", kUnreadable, kUnreadable, kUnclosedDelegate},
         {"DelegateComponentCall", kUnseen, kUnseen},
         {"DeleteMovieSegment", kNothing, kNothing},
         {"FSClose", "decode=E", "decode=E", kUnclosedPath},
         {"FSRead", kUnreadable, kUnreadable},
         {"FSWrite", kUnspooled, kUnspooled, kWritingPath},
         {"FSpOpenDF", kUnspooled, "click=none decode=E idle=-2048 shown=none"},
         {"FindNextComponent", kUnseen, kUnseen},
         {"GetEOF", kUnreadable, kUnreadable},
         {"GetMaxLoadedTimeInMovie", kNothing, kNothing},
         {"GetMovieDuration", kNothing, kNothing},
         {"MCDoAction", "shown=none", "shown=none"},
         {"MCGetVisible", kNothing, "click=none"},
         {"MCIsPlayerEvent", kNothing, "click=none"},
         {"MCMovieChanged", kNothing, kNothing},
         {"MCSetControllerBoundsRect", kNothing, "click=none"},
         {"MoviesTask", kNothing, kNothing},
         {"NewAliasMinimal", kUnseen, kUnseen},
         {"NewHandle", "click=none decode=-108,E shown=none", "click=none decode=-108,E shown=none",
          kWritingPath},
         {"NewMovieFromDataRef", kUnseen, kUnseen},
         {"OpenAComponent", kUnseen, kUnseen},
         {"SetFPos", kUnreadable, kUnreadable}});
}

// Where it is not even opened, nobody finds out that it is none.
std::vector<Expectation> NoMovieExpectations()
{
    return {{"CallComponent", "idle=0", "idle=0"},
            {"CallComponentFunctionWithStorageProcInfo", "idle=0", "idle=0", kUnclosedDelegate},
            {"CallComponentTarget", kNothing, kNothing},
            {"CloseComponent", kNothing, kNothing, kUnclosedInstances},
            {"DelegateComponentCall", "idle=0", "idle=0"},
            {"DeleteMovieSegment", kNothing, kNothing},
            {"EnterMovies", kNothing, kNothing},
            {"FSClose", "decode=E idle=0", "decode=E idle=0", kUnclosedPath},
            {"FSRead", kNothing, kNothing},
            {"FSWrite", "decode=E idle=0", "decode=E idle=0", kWritingPath},
            {"FSpCreate", "decode=E idle=0", "decode=E idle=0"},
            {"FSpDelete", kNothing, kNothing, kUndeletedFile},
            {"FSpOpenDF", "decode=E idle=0", "decode=E idle=0"},
            {"FindFolder", "decode=E idle=0", "decode=E idle=0"},
            {"FindNextComponent", "idle=0", "idle=0"},
            {"Gestalt", "make=E", "make=E"},
            {"GetCurrentThread", kNothing, kNothing},
            {"GetEOF", kNothing, kNothing},
            {"GetMaxLoadedTimeInMovie", kNothing, kNothing},
            {"GetMovieDuration", kNothing, kNothing},
            {"GetMovieLoadState", kNothing, "idle=0"},
            {"GetMovieStatus", "idle=E", "idle=E"},
            {"MoviesTask", kNothing, kNothing},
            {"NewAliasMinimal", "idle=0", "idle=0"},
            {"NewHandle", "decode=-108,E idle=0", "decode=-108,E idle=0", kWritingPath},
            {"NewMovieFromDataRef", "idle=0", "idle=0"},
            {"NewThread", "decode=E idle=0", "decode=E idle=0"},
            {"OpenAComponent", "idle=0", "idle=0"},
            {"PBGetCatInfoSync", "decode=E idle=0", "decode=E idle=0"},
            {"QuickTimePresent", "make=-50", "make=-50"},
            {"RegisterComponent", "make=-50", "make=-50"},
            {"SetFPos", kNothing, kNothing}};
}

} // namespace sweep
