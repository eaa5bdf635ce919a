#include "docinfo/readers/zip_records.h"

#include "docinfo/readers/properties.h"
#include "encoding/zip_format.h"

#include <algorithm>

namespace vxut {
namespace {

constexpr uint16_t kMostFieldBytes = 255;
constexpr size_t kMostEntryBytes = sizeof(scZipIndexHeader) + size_t{3} * kMostFieldBytes;
constexpr size_t kFirstPieceBytes = 4096; // the whole directory of an ordinary document
constexpr size_t kPieceBytes = 65536;
static_assert(kMostEntryBytes <= kFirstPieceBytes);

#pragma pack(push, 1)
struct Descriptor {
    uint32_t signature;
    uint32_t crc;
    uint32_t compressedSize;
    uint32_t size;
};
#pragma pack(pop)
static_assert(sizeof(Descriptor) == 16);
constexpr uint32_t kDescriptorSignature = 0x08074B50;

std::string NameOf(std::span<const uint8_t> bytes) {
    return {bytes.begin(), std::ranges::find(bytes, uint8_t{0})};
}

} // namespace

bool ReadZipDirectoryEnd(clsFile& file, int64_t fileSize, scZipDirectoryEnd& end) {
    scZipEnd record;
    const auto bytes = static_cast<int64_t>(sizeof record);
    if (!ReadAll(file, fileSize - bytes, &record, sizeof record)) return false;
    if (record.signature != scZipEnd().signature) return false;
    end = {record.entriesOnDisk, record.indexOffset};
    return true;
}

bool ReadZipMemberHeader(clsFile& file, int64_t fileSize, uint32_t offset, scZipMemberHeader& header) {
    scZipLocalHeader record;
    if (!ReadAll(file, offset, &record, sizeof record)) return false;
    const scZipCommon& common = record.common;
    const int64_t nameOffset = int64_t{offset} + static_cast<int64_t>(sizeof record);
    if (record.signature != scZipLocalHeader().signature || common.nameBytes > kMostFieldBytes ||
        nameOffset + common.nameBytes >= fileSize) {
        return false;
    }
    header = {common.flags,
              common.method,
              {common.compressedSize, common.size},
              nameOffset + common.nameBytes + common.extraBytes};
    return header.dataOffset <= fileSize;
}

bool ReadZipDescriptor(clsFile& file, int64_t offset) {
    Descriptor record;
    return ReadAll(file, offset, &record, sizeof record) && record.signature == kDescriptorSignature;
}

// Makes sure that the piece has the next entry as a whole, unless the file ends before.
bool clsZipDirectory::Provide() {
    if (cursor_.Remaining() >= kMostEntryBytes) return true;
    const int64_t position = pieceOffset_ + static_cast<int64_t>(cursor_.Position());
    const int64_t left = fileSize_ - position;
    if (left <= static_cast<int64_t>(cursor_.Remaining())) return left > 0;
    const size_t piece = piece_.empty() ? kFirstPieceBytes : kPieceBytes;
    piece_.resize(static_cast<size_t>(std::min<int64_t>(left, static_cast<int64_t>(piece))));
    pieceOffset_ = position;
    cursor_ = clsByteCursor(piece_.data(), ReadSome(file_, position, piece_.data(), piece_.size()));
    return true;
}

bool clsZipDirectory::Next(scZipDirectoryEntry& entry) {
    scZipIndexHeader record;
    if (!Provide() || !cursor_.ReadObject(record)) return false;
    const scZipCommon& common = record.common;
    if (record.signature != scZipIndexHeader().signature || common.nameBytes > kMostFieldBytes ||
        common.extraBytes > kMostFieldBytes || record.commentBytes > kMostFieldBytes) {
        return false;
    }
    std::span<const uint8_t> name;
    const int64_t position = pieceOffset_ + static_cast<int64_t>(cursor_.Position());
    if (position + common.nameBytes + common.extraBytes + record.commentBytes >= fileSize_) return false;
    if (!cursor_.ReadBytes(common.nameBytes, name)) return false;
    if (!cursor_.Skip(size_t{common.extraBytes} + record.commentBytes)) return false;
    entry = {common.flags, {common.compressedSize, common.size}, NameOf(name), record.offset};
    return true;
}

} // namespace vxut
