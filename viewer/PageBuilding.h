// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/HostTime.h"
#include "viewer/Options.h"
#include "viewer/Page.h"

namespace viewer
{

// Adds an object for each one the command line names, and the text and the media of each that is a
// MIME document. One that cannot be opened is given up at once.
void AddObjects(Page& page, const Options& options, const PluginFolder& plugins, HostTime& time);

// Puts the text and the media of a document that has come out of a stream into its place. Answers
// the objects that are new; the document is given up where it has nothing to show.
std::vector<EmbeddedObject*> UnfoldDocument(EmbeddedObject& document, Page& page,
                                            const Options& options, const PluginFolder& plugins,
                                            HostTime& time);

} // namespace viewer
