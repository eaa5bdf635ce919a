// The records of a compound file as they are in the file. All numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

constexpr uint64_t kCompoundMagic = 0xE11AB1A1E011CFD0;
constexpr uint16_t kCompoundByteOrder = 0xFFFE;
constexpr uint16_t kCompoundSmallShift = 6;    // of the size of small sectors
constexpr uint32_t kCompoundSmallLimit = 4096; // streams below this size are in small sectors
// In place of the number of a sector.
constexpr uint32_t kSectorsEnd = 0xFFFFFFFE;
constexpr uint32_t kNoSector = 0xFFFFFFFF;
constexpr uint32_t kNoEntry = 0xFFFFFFFF; // in place of the number of an entry

enum CompoundEntryType : uint8_t { kCompoundStorage = 1, kCompoundStream = 2, kCompoundRoot = 5 };

#pragma pack(push, 1)

struct scCompoundHeader {
    uint64_t magic;
    uint8_t classId[16];
    uint16_t minorVersion;
    uint16_t majorVersion;
    uint16_t byteOrder;
    uint16_t sectorShift;
    uint16_t smallShift;
    uint8_t reserved[6];
    uint32_t directorySectors;
    uint32_t tableSectors; // of the allocation table
    uint32_t firstDirectorySector;
    uint32_t transaction;
    uint32_t smallLimit; // always kCompoundSmallLimit
    uint32_t firstSmallTableSector;
    uint32_t smallTableSectors;
    uint32_t firstListSector; // of the list of sectors of the allocation table
    uint32_t listSectors;
    uint32_t list[109]; // its beginning
};

struct scCompoundEntry {
    char16_t name[32];
    uint16_t nameBytes; // with the terminator
    uint8_t type;
    uint8_t color;
    uint32_t left;
    uint32_t right;
    uint32_t child;
    uint8_t classId[16];
    uint32_t state;
    uint64_t created;
    uint64_t modified;
    uint32_t firstSector;
    uint64_t size;
};

#pragma pack(pop)

static_assert(sizeof(scCompoundHeader) == 512 && offsetof(scCompoundHeader, list) == 76);
static_assert(sizeof(scCompoundEntry) == 128 && offsetof(scCompoundEntry, firstSector) == 116);

} // namespace vxut
