// The records of a ZIP archive as they are in the file. All numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

constexpr uint16_t kZipVersion = 20;        // needed to extract: deflate and folders
constexpr uint16_t kZipMadeBy = 0x0A14;     // version 20 on a system whose attributes are those of NTFS
constexpr uint16_t kZipUtf8 = 0x0800;       // flag: name and comment are UTF-8
constexpr uint16_t kZipStored = 0;          // method of folders
constexpr uint16_t kZipDeflated = 8;        // method of files
constexpr int64_t kZipMaxSize = 0xFFFFFFFF; // of a file, of its compressed form, of the archive
constexpr int64_t kZipMaxText = 0xFFFF;     // bytes of a name or comment

#pragma pack(push, 1)

// The part of a header that the local and the central one have in common.
struct scZipCommon {
    uint16_t versionNeeded = kZipVersion;
    uint16_t flags = 0;
    uint16_t method = kZipStored;
    uint16_t time = 0;
    uint16_t date = 0;
    uint32_t crc = 0;
    uint32_t compressedSize = 0;
    uint32_t size = 0;
    uint16_t nameBytes = 0;
    uint16_t extraBytes = 0; // never used
};

// Followed by the name and the data.
struct scZipLocalHeader {
    uint32_t signature = 0x04034B50;
    scZipCommon common;
};

// Followed by the name and the comment.
struct scZipIndexHeader {
    uint32_t signature = 0x02014B50;
    uint16_t madeBy = kZipMadeBy;
    scZipCommon common;
    uint16_t commentBytes = 0;
    uint16_t disk = 0;
    uint16_t internalAttributes = 0;
    uint32_t attributes = 0;
    uint32_t offset = 0; // of the local header
};

// Followed by the comment of the archive.
struct scZipEnd {
    uint32_t signature = 0x06054B50;
    uint32_t disks = 0;
    uint16_t entriesOnDisk = 0;
    uint16_t entries = 0;
    uint32_t indexBytes = 0;
    uint32_t indexOffset = 0;
    uint16_t commentBytes = 0;
};

#pragma pack(pop)

static_assert(sizeof(scZipLocalHeader) == 30 && offsetof(scZipLocalHeader, common.crc) == 14);
static_assert(sizeof(scZipIndexHeader) == 46 && offsetof(scZipIndexHeader, common.crc) == 16);
static_assert(offsetof(scZipIndexHeader, attributes) == 38);
static_assert(sizeof(scZipEnd) == 22 && offsetof(scZipEnd, indexBytes) == 12);

} // namespace vxut
