// The head of a file as text, in which several readers search.
//
// Threads: no shared state.
#pragma once

#include "docinfo/document.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

// No reader of text looks further into a file.
constexpr int64_t kMostHeadBytes = 65536;

// Reads the first kMostHeadBytes of the file, or all of a shorter one, in the default code page. A zero byte
// ends the text; it is empty if the system cannot convert it. Returns false if the file cannot be read or
// has fewer bytes than it says. Throws std::bad_alloc.
bool ReadHeadText(clsDocFile& file, String& text);

// The same of a file that counts as size bytes long.
bool ReadHeadText(clsDocFile& file, int64_t size, String& text);

} // namespace vxut
