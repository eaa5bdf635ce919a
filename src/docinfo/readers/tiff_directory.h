// The directories of a TIFF image, with bounds on how much of a hostile one is read.
//
// Threads: no shared state.
#pragma once

#include "base/byte_cursor.h"
#include "docinfo/document.h"

#include <cstdint>
#include <set>
#include <span>
#include <vector>

namespace vxut {

// One entry, its numbers in the order of the machine. The field holds the value if that is short, else its
// offset.
struct scTiffEntry {
    uint16_t tag = 0;
    uint16_t type = 0;
    uint32_t count = 0;
    std::span<const uint8_t> field; // 4 bytes as they are in the file
};

// Reads directories and values of one image. The file must outlive it.
class clsTiffImage {
public:
    // All offsets count from base.
    clsTiffImage(clsDocFile& file, uint32_t base) : file_(file), fileSize_(file.GetSize()), base_(base) {}

    // Reads the header. Returns false, with a report, if it is none. A first directory of 0 is none.
    bool ReadHeader(uint32_t& firstDirectory);

    // Reads a directory and calls visit with each of its entries, as many as the file has. Returns the offset
    // of the next one; 0 at the end, after a fault, for a directory that was read before, and when more was
    // read than any honest image has. Throws std::bad_alloc.
    template <class Visit>
    uint32_t ReadDirectory(uint32_t offset, Visit visit) {
        std::vector<uint8_t> entries;
        const uint32_t next = ReadEntries(offset, entries);
        clsByteCursor cursor(entries);
        for (scTiffEntry entry; ReadEntry(cursor, entry);) visit(entry);
        return next;
    }

    // Values. Each is empty or 0 for an entry of another type.
    uint32_t Number(const scTiffEntry& entry) const;
    String Text(const scTiffEntry& entry); // also if the file does not have all of it
    double Fraction(const scTiffEntry& entry);

private:
    uint32_t ReadEntries(uint32_t offset, std::vector<uint8_t>& entries);
    bool ReadEntry(clsByteCursor& cursor, scTiffEntry& entry) const;
    bool ReadValue(const scTiffEntry& entry, std::vector<uint8_t>& bytes, size_t count);

    clsDocFile& file_;
    const int64_t fileSize_;
    const int64_t base_;
    ByteOrder order_ = ByteOrder::kLittle;
    std::set<uint32_t> directories_; // that were read
    size_t entryBytes_ = 0;
    size_t valueBytes_ = 0;
    size_t values_ = 0;
};

} // namespace vxut
