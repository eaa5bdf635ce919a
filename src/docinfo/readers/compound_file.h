// A look at compound files before the system opens them.
//
// The system's storage code may not end, or may return anything, on a file whose sectors form rings or lie
// outside of it. It gets only files that have passed this.
#pragma once

#include "files/file.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vxut {

// Returns whether the structure can be true: the header and its counts, the sectors of the allocation table,
// the chains of the directory, of the small sectors and of the streams that readers of documents open, and
// the tree of the directory. Other streams are not looked at, so that a document with damage elsewhere is
// still read. Takes time proportional to the size of the tables. Throws std::bad_alloc.
// Source: Compound File Binary File Format, version 3 and 4.
bool IsCompoundFileSound(clsFile& file);

// Returns whether every value of a property set is inside it, for the same reason.
// Source: Object Linking and Embedding Property Set Data Structures.
bool IsPropertySetSound(std::span<const uint8_t> bytes);

} // namespace vxut
