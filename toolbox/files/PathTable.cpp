// SPDX-License-Identifier: MIT
#include "toolbox/files/PathTable.h"

#include "toolbox/Errors.h"
#include "toolbox/probe/Announce.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace toolbox
{
namespace
{

// The path of reference number n stands at n - 1; a closed descriptor marks a free place. Never
// destroyed: objects that end with the process may still close their files.
std::vector<Path>& Paths()
{
    static auto& paths = *new std::vector<Path>;
    return paths;
}

} // namespace

SInt16 AddPath(Path path)
{
    std::vector<Path>& paths = Paths();
    const auto isFree = [](const Path& place) { return !place.file.IsOpen(); };
    auto place = std::find_if(paths.begin(), paths.end(), isFree);
    if (place == paths.end()) {
        if (paths.size() >= static_cast<size_t>(std::numeric_limits<SInt16>::max())) {
            throw OSErr{tmfoErr};
        }
        place = paths.emplace(paths.end());
    }
    *place = std::move(path);
    CountInLedger(kLiveOpenFiles, 1);
    return static_cast<SInt16>(place - paths.begin() + 1);
}

Path& PathOf(SInt16 refNum)
{
    std::vector<Path>& paths = Paths();
    const auto index = static_cast<size_t>(refNum) - 1;
    if (refNum <= 0 || index >= paths.size() || !paths[index].file.IsOpen()) {
        throw OSErr{rfNumErr};
    }
    return paths[index];
}

Path RemovePath(SInt16 refNum)
{
    Path path = std::move(PathOf(refNum));
    CountInLedger(kLiveOpenFiles, -1);
    return path;
}

} // namespace toolbox
