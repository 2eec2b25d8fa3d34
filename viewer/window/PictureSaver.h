// SPDX-License-Identifier: MIT
//
// Saves what is seen, when the user asks for it.
#pragma once

#include "viewer/Page.h"

#include <string>
#include <utility>

namespace viewer
{

// Into a folder, under names that are not taken. The user is told on the console where each file
// is, or why there is none; each function answers the same, to be shown, in lines.
class PictureSaver
{
public:
    // `folder`: empty for Pictures in the user's home, or the current folder where there is none.
    PictureSaver(Page& page, std::string folder) : page_(page), folder_(std::move(folder)) {}

    // An object's picture as a file of the type 'PICT', if it gives one, and the pixels that are
    // shown as a PNG file. Null: there is nothing to be saved.
    std::string SavePicture(EmbeddedObject* object);
    // The page as a PNG file.
    std::string SavePage();

private:
    void Tell(const std::string& name, const std::string& text);
    std::string FreePath(const std::string& name, const std::string& extension) const;
    void WritePixels(const Rect& area, const std::string& path);
    bool WritePicture(EmbeddedObject& object, const std::string& path);

    Page& page_;
    std::string folder_;
    std::string told_;
};

} // namespace viewer
