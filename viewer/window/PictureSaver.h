// SPDX-License-Identifier: MIT
//
// Saves what is seen, when the user asks for it.
#pragma once

#include "viewer/Page.h"

#include <string>

namespace viewer
{

// Into a folder, under names that are not taken; the user is told which, or why not.
class PictureSaver
{
public:
    // `folder`: empty for Pictures in the user's home, or the current folder where there is none.
    PictureSaver(Page& page, const std::string& folder);

    // An object's picture as a file of the type 'PICT', if it gives one, and the pixels that are
    // shown as a PNG file. Null: there is nothing to be saved.
    void SavePicture(EmbeddedObject* object);
    // The page as a PNG file.
    void SavePage();

private:
    std::string FreePath(const std::string& name, const std::string& extension) const;
    void WritePixels(const Rect& area, const std::string& path);
    bool WritePicture(EmbeddedObject& object, const std::string& path);

    Page& page_;
    std::string folder_;
};

} // namespace viewer
