// The content of one member of a ZIP archive.
#pragma once

#include "docinfo/document.h"
#include "docinfo/readers/zip_records.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxut {

// Properties of documents are small: what is larger, compressed or not, is not read. That bounds time and
// memory whatever the archive claims.
constexpr size_t kMostMemberBytes = size_t{8} * 1024 * 1024;

// Returns the content of a member, up to its first zero byte. Empty, with a report, if it is damaged, too
// large or compressed in an unknown way. Throws std::bad_alloc.
std::vector<uint8_t> ZipMemberText(clsDocFile& file, const scZipDirectoryEntry& entry);

} // namespace vxut
