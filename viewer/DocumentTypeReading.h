// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/PluginBundle.h"

namespace viewer
{

// The document types that a bundle's information dictionary declares; what is not of the expected
// shape is left out.
std::vector<DocumentType> ReadDocumentTypes(CFBundleRef bundle);

} // namespace viewer
