// SPDX-License-Identifier: MIT
#pragma once

#include "viewer/EmbeddedObject.h"
#include "viewer/MimeDocument.h"
#include "viewer/Options.h"

#include <optional>

namespace viewer
{

// The document that an object of the command line is, if it is a file and a MIME document. Throws
// SourceFailure for one that has nothing to show, and PartMissing.
std::optional<MimeDocument> OpenDocument(const ObjectRequest& request);

// Whether what comes out of a stream is a document, as far as its first bytes tell.
enum class DocumentLook { kNotYetKnown, kNoDocument, kDocument };
DocumentLook LookForDocument(EmbeddedObject& object);

} // namespace viewer
