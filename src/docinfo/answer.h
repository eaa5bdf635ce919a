// The answer to a request.
#pragma once

#include "docinfo/document.h"
#include "util/docinfo.h"

namespace vxut {

// Writes the properties of a document to the targets of a request, which are memory of the host: no lock may
// be held. Returns false if memory is exhausted.
bool WriteAnswer(const scDocuFields& document, const DocInfoRequest& request);

} // namespace vxut
