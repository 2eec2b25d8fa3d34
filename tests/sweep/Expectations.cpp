// SPDX-License-Identifier: MIT
#include "tests/sweep/Expectations.h"

#include "tests/sweep/ImageExpectations.h"
#include "tests/sweep/ImageScenarios.h"
#include "tests/sweep/MovieExpectations.h"
#include "tests/sweep/MovieScenarios.h"

namespace sweep
{

const std::vector<SweptScenario>& SweptScenarios()
{
    static const std::vector<Remainder> kBrokenOff = {
        {"open files", 1, "only the end of spooling closes the path that is written to"},
        {"descriptors", 1, "that path's"}};
    static const std::vector<SweptScenario> scenarios = {
        {"MovieAtOnce", MovieAtOnce, MovieAtOnceExpectations(), {}, MovieAtOnce},
        {"MovieInPieces", MovieInPieces, MovieInPiecesExpectations(), {}, MovieAtOnce},
        {"MovieSought", MovieSought, MovieSoughtExpectations(), {}, MovieAtOnce},
        {"MovieDestroyed", MovieDestroyed, MovieDestroyedExpectations(), kBrokenOff, MovieAtOnce},
        {"MovieCancelled", MovieCancelled, MovieCancelledExpectations(), {}, MovieAtOnce},
        {"NoMovie", NoMovie, NoMovieExpectations(), {}, MovieAtOnce},
        {"StillImage", StillImage, StillImageExpectations(), {}, StillImage},
        {"AnimatedImage", AnimatedImage, AnimatedImageExpectations(), {}, StillImage},
        {"DamagedImage", DamagedImage, DamagedImageExpectations(), {}, StillImage},
        {"DraggedImage", DraggedImage, DraggedImageExpectations(), {}, StillImage},
        {"TypeCheck", TypeCheck, TypeCheckExpectations(), {}, StillImage},
    };
    return scenarios;
}

} // namespace sweep
