// SPDX-License-Identifier: MIT
#include "tests/sweep/ImageExpectations.h"

namespace sweep
{
namespace
{

const std::string kNothing;

// What is meant to stay. The worlds of indices have colour tables in handles.
const std::vector<Remainder> kUnblankedDirectWorlds = {
    {"graphics worlds", 2,
     "a world that cannot be made white stays; if it is a mask's, the frame's does too"}};
const std::vector<Remainder> kDirectFrameWithoutMask = {
    {"graphics worlds", 1, "the world of a frame whose mask cannot be made stays"}};
const std::vector<Remainder> kUnblankedWorlds = {
    {"graphics worlds", 2,
     "a world that cannot be made white stays; if it is a mask's, the frame's does too"},
    {"handles", 2, "their colour tables"}};
const std::vector<Remainder> kFrameWithoutMask = {
    {"graphics worlds", 1, "the world of a frame whose mask cannot be made stays"},
    {"handles", 1, "its colour table"}};

} // namespace

std::vector<Expectation> StillImageExpectations()
{
    return {{"GetCurrentThread", kNothing, kNothing},
            {"LockPixels", "decode=-1,-108 page=other", "decode=-1,-108 page=other",
             kUnblankedDirectWorlds},
            {"NewGWorld", "decode=E page=other", "decode=E page=other", kDirectFrameWithoutMask},
            {"NewHandle", kNothing, kNothing}};
}

std::vector<Expectation> AnimatedImageExpectations()
{
    return {
        {"GetCurrentThread", kNothing, kNothing},
        {"LockPixels", "clicks=0,6 decode=-1,-108 display=-1 page=other",
         "clicks=0 decode=-1,-108 display=-1 page=other", kUnblankedWorlds},
        {"NewGWorld", "clicks=0,6 decode=E display=E page=other",
         "clicks=0 decode=E display=E page=other", kFrameWithoutMask},
        {"NewHandle", "clicks=0,6 decode=-108,E page=other", "clicks=0,6 decode=-108,E page=other"},
        {"NewHandleClear", "clicks=0 decode=-108,E display=-108,E page=other",
         "clicks=0 decode=-108,E display=-108,E page=other", kFrameWithoutMask}};
}

std::vector<Expectation> DamagedImageExpectations()
{
    return {{"GetCurrentThread", kNothing, kNothing},
            {"LockPixels", "decode=-1,-108 display=-1 page=other",
             "decode=-1,-108 display=-1 page=other", kUnblankedWorlds},
            {"NewGWorld", "decode=E display=E page=other", "decode=E display=E page=other",
             kFrameWithoutMask},
            {"NewHandle", "decode=-108,E page=other", "decode=-108,E page=other"},
            {"NewHandleClear", "decode=-108,E display=-108,E page=other",
             "decode=-108,E display=-108,E page=other", kFrameWithoutMask}};
}

std::vector<Expectation> DraggedImageExpectations()
{
    return {{"GetCurrentThread", kNothing, kNothing},
            {"LockPixels", "decode=-1,-108 drag=-50 image=none picture=none",
             "decode=-1,-108 drag=-50 image=none picture=none", kUnblankedWorlds},
            {"NewGWorld", "decode=E drag=-50,E image=none picture=none",
             "decode=E drag=-50,E image=none picture=none", kFrameWithoutMask},
            {"NewHandle", "decode=-108,E drag=-50,E image=none picture=none",
             "decode=-108,E drag=-50,E image=none picture=none"},
            {"NewHandleClear", "decode=-108,E drag=-50,E image=none picture=none",
             "decode=-108,E drag=-50,E image=none picture=none", kFrameWithoutMask},
            {"AddDragItemFlavor", "drag=E image=none", "drag=E image=none"},
            {"OpenPicture", "picture=none", "picture=none"},
            {"SetDragImage", kNothing, kNothing},
            {"SetHandleSize", "picture=empty", "picture=empty"}};
}

std::vector<Expectation> TypeCheckExpectations()
{
    return {{"CFBundleGetValueForInfoDictionaryKey", "extension=0 gif=0 type=0",
             "extension=0 gif=0 type=0"},
            {"CFDictionaryGetValue", "extension=0 gif=0 type=0", "extension=0 gif=0 type=0"},
            {"CFStringCreateWithCString", "extension=0 gif=0 type=0", "extension=0 gif=0 type=0"},
            {"EnterMovies", kNothing, kNothing},
            {"Gestalt", "extension=0 type=0", "extension=0 type=0"},
            {"QuickTimePresent", "extension=0 type=0", "extension=0 type=0"},
            {"RegisterComponent", "type=0", "extension=0 type=0"}};
}

} // namespace sweep
