// Character references of HTML, decoded in texts of documents.
//
// Threads: no shared state.
#pragma once

#include "text/string.h"

namespace vxut {

// Removes line ends, then replaces "&#228;" and "&#xE4;" by their characters, also where a replacement made
// the reference. The number is cut to 16 bits; one that is 0 is removed. With namedToo, the Latin-1 entities
// "&nbsp;" to "&yuml;" are replaced before that; callers rely on "&amp;", "&lt;" and the like being kept.
// Takes time proportional to the length. Throws std::bad_alloc.
// Source: HTML 4.01, section 24.2 (ISO 8859-1 characters).
void DecodeHtmlEntities(String& text, bool namedToo);

} // namespace vxut
