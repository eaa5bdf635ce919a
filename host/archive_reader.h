// Reads ZIP archives of unknown origin.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vlm {

struct ArchiveEntry {
    std::string name; // in the encoding of the archive
    std::string comment;
    uint16_t flags = 0;
    uint16_t method = 0;
    uint32_t crc = 0;
    uint32_t packedSize = 0;
    uint32_t size = 0;
    uint32_t headerAt = 0;
};

struct Archive {
    std::vector<ArchiveEntry> entries;
    std::string comment;
};

// Reads the index of an archive, whose bytes may be anything. Returns false if it has none.
bool ReadArchive(std::string_view bytes, Archive& archive);

// Unpacks an entry: one that is stored or deflated, whose size and checksum are right. Returns false for any
// other and for one of more than maximumBytes. Allocates no more than the data need.
bool UnpackEntry(std::string_view bytes, const ArchiveEntry& entry, size_t maximumBytes,
                 std::string& content);

} // namespace vlm
