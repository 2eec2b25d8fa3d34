// SPDX-License-Identifier: MIT
#include "tests/sweep/MovieExpectations.h"

#include <algorithm>

namespace sweep
{
namespace
{

using Expectations = std::vector<Expectation>;

const std::string kNothing;
// The movie does not get as far as having a size.
const std::string kUnseen = "click=none shown=none";
// Nor is all of it spooled, and that is what the host hears.
const std::string kUnspooled = "click=none decode=E shown=none";
const std::string kUnreadable = "click=none idle=-2048 shown=none";
// Or it was read up to there.
const std::string kReadInPart = "click=none idle=-2048 shown=none,some";
const std::string kNoHandle = "click=none decode=-108,E shown=none";
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

// What comes of most failures wherever a movie is shown.
const Expectations kOfEveryMovie = {
    {"CallComponentTarget", kNothing, kNothing},
    {"CloseComponent", kNothing, kNothing, kUnclosedInstances},
    {"DelegateComponentCall", kUnseen, kUnseen},
    {"EnterMovies", kNothing, kNothing},
    {"FSClose", "decode=E", "decode=E", kUnclosedPath},
    {"FSWrite", kUnspooled, kUnspooled, kWritingPath},
    {"FSpCreate", kUnspooled, kUnspooled},
    {"FSpDelete", kNothing, kNothing, kUndeletedFile},
    {"FSpOpenDF", kUnspooled, "click=none decode=E idle=-2048 shown=none"},
    {"FindFolder", kUnspooled, kUnspooled},
    {"FindNextComponent", kUnseen, kUnseen},
    {"Gestalt", "make=E", "make=E"},
    {"GetClip", kNothing, kNothing},
    {"GetCurrentThread", kNothing, kNothing},
    {"GetMovieLoadState", kNothing, kUnseen},
    {"GetWindowFromPort", kNothing, kNothing},
    {"MCDoAction", "shown=none", "shown=none"},
    {"MCGetVisible", kNothing, kNotStarted},
    {"MCIsPlayerEvent", kNothing, kNotStarted},
    {"MCSetClip", kNothing, kNothing},
    {"MCSetControllerBoundsRect", kNothing, kNotStarted},
    {"NewAliasMinimal", kUnseen, kUnseen},
    {"NewHandle", kNoHandle, kNoHandle, kWritingPath},
    {"NewMovieController", kNothing, kUnseen},
    {"NewMovieFromDataRef", kUnseen, kUnseen},
    {"NewRgn", kNothing, kNothing},
    {"NewThread", kUnspooled, kUnspooled},
    {"OpenAComponent", kUnseen, kUnseen},
    {"PBGetCatInfoSync", kUnspooled, kUnspooled},
    {"QuickTimePresent", "make=-50", "make=-50"},
    {"RegisterComponent", "make=-50", "make=-50"},
    {"SetMovieActive", "shown=none", "shown=none"},
    {"SetMovieGWorld", "shown=none", "shown=none"}};

// A movie that is open before its last byte comes is given time until then, and is trimmed then.
const Expectations kWhileItArrives = {{"MoviesTask", kNothing, kNothing}};
const Expectations kOfTrimming = {{"DeleteMovieSegment", kNothing, kNothing},
                                  {"GetMaxLoadedTimeInMovie", kNothing, kNothing},
                                  {"GetMovieDuration", kNothing, kNothing},
                                  {"MCMovieChanged", kNothing, kNothing}};

// Each of the calls by which the movie reads its bytes.
Expectations OfReading(const std::string& onceOutcomes, const std::string& lastingOutcomes)
{
    return {{"CallComponent", onceOutcomes, lastingOutcomes},
            {"CallComponentFunctionWithStorageProcInfo", onceOutcomes, lastingOutcomes,
             kUnclosedDelegate},
            {"FSRead", onceOutcomes, lastingOutcomes},
            {"GetEOF", onceOutcomes, lastingOutcomes},
            {"SetFPos", onceOutcomes, lastingOutcomes}};
}

// `usual`, but for the operations that are stated otherwise; the last statement holds.
template <typename... Others>
Expectations Except(Expectations usual, const Others&... others)
{
    const auto state = [&usual](const Expectation& other) {
        std::erase_if(
            usual, [&other](const Expectation& one) { return one.operation == other.operation; });
        usual.push_back(other);
    };
    (std::for_each(others.begin(), others.end(), state), ...);
    return usual;
}

// The host gives the movie up while it plays: even without a failure only some pictures are shown.
Expectations OfGivingUp()
{
    return Except(kOfEveryMovie, kWhileItArrives, OfReading(kUnreadable, kUnreadable),
                  Expectations{{"MCGetVisible", kNothing, "click=none"},
                               {"MCIsPlayerEvent", kNothing, "click=none"},
                               {"MCSetControllerBoundsRect", kNothing, "click=none"}});
}

} // namespace

// All is there before the movie is opened: it is opened once, and that is its only chance.
Expectations MovieAtOnceExpectations()
{
    return Except(kOfEveryMovie, OfReading(kUnseen, kUnseen),
                  Expectations{{"FSpOpenDF", kUnspooled, kUnspooled},
                               {"MCDoAction", "shown=some", "shown=none"}});
}

// What fails at opening is tried again when more has come.
Expectations MovieInPiecesExpectations()
{
    return Except(
        kOfEveryMovie, kWhileItArrives, kOfTrimming, OfReading(kReadInPart, kReadInPart),
        Expectations{{"DelegateComponentCall", kNothing, kUnseen},
                     {"FSClose", "decode=E shown=some", "decode=E shown=some", kUnclosedPath},
                     {"FSWrite", "click=none decode=E shown=none,some",
                      "click=none decode=E shown=none,some", kWritingPath},
                     {"FindNextComponent", kNothing, kUnseen},
                     {"MCDoAction", "shown=some", "shown=none"},
                     {"NewAliasMinimal", kNothing, kUnseen},
                     {"NewMovieFromDataRef", kNothing, kUnseen},
                     {"OpenAComponent", kNothing, kUnseen}});
}

// Pictures that are gone back to are shown again, and count again.
Expectations MovieSoughtExpectations()
{
    return Except(MovieInPiecesExpectations(),
                  OfReading(kUnreadable, "click=none,1 idle=-2048 shown=none,some"),
                  Expectations{{"FSClose", "decode=E", "decode=E", kUnclosedPath},
                               {"FSWrite", kUnspooled, kUnspooled, kWritingPath},
                               {"MCDoAction", kNothing, "shown=none"},
                               {"MCIsPlayerEvent", "click=6 shown=some",
                                "click=none,1,2,3,4,5,6 shown=some"}});
}

// The end of the data comes early, and is an end like any other.
Expectations MovieCancelledExpectations()
{
    return Except(OfGivingUp(), kOfTrimming);
}

// Spooling does not end: nothing is trimmed, and the path is left open without a failure, too.
Expectations MovieDestroyedExpectations()
{
    return Except(OfGivingUp(), Expectations{{"FSClose", kNothing, kNothing, kUnclosedPath},
                                             {"FSWrite", kUnspooled, kUnspooled},
                                             {"NewHandle", kNoHandle, kNoHandle}});
}

// Where it is not even opened, nobody finds out that it is none.
Expectations NoMovieExpectations()
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
