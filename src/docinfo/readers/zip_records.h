// The records of a ZIP archive that somebody else has written, as the reader of packages needs them.
//
// Nothing is believed: a record is read only where the file has its bytes. Threads: no shared state.
#pragma once

#include "base/byte_cursor.h"
#include "files/file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vxut {

// The end of the central directory.
struct scZipDirectoryEnd {
    uint16_t entries = 0;
    uint32_t offset = 0; // of the directory
};

struct scZipSizes {
    uint32_t compressed = 0;
    uint32_t uncompressed = 0;
};

// An entry of the central directory.
struct scZipDirectoryEntry {
    uint16_t flags = 0;
    scZipSizes sizes;
    std::string name; // up to the first zero byte
    uint32_t localOffset = 0;
};

// The local header of a member.
struct scZipMemberHeader {
    uint16_t flags = 0;
    uint16_t method = 0;
    scZipSizes sizes;
    int64_t dataOffset = 0;
};

// Reads the end record, which must be the last 22 bytes of the file.
bool ReadZipDirectoryEnd(clsFile& file, int64_t fileSize, scZipDirectoryEnd& end);

bool ReadZipMemberHeader(clsFile& file, int64_t fileSize, uint32_t offset, scZipMemberHeader& header);

// Reads a data descriptor. Returns false if it is cut short or none.
bool ReadZipDescriptor(clsFile& file, int64_t offset);

// Walks the central directory, which it reads in pieces. The file must outlive it.
class clsZipDirectory {
public:
    clsZipDirectory(clsFile& file, int64_t fileSize, uint32_t offset)
        : file_(file), fileSize_(fileSize), pieceOffset_(offset) {}

    // Reads the next entry. Returns false if there is none that the limits permit: signature, 255 bytes for
    // each of the variable fields, and an end before that of the file.
    bool Next(scZipDirectoryEntry& entry);

private:
    bool Provide();

    clsFile& file_;
    const int64_t fileSize_;
    int64_t pieceOffset_;
    std::vector<uint8_t> piece_;
    clsByteCursor cursor_; // in the piece
};

} // namespace vxut
