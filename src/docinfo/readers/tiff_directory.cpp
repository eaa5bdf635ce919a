#include "docinfo/readers/tiff_directory.h"

#include "base/debug.h"
#include "docinfo/readers/properties.h"

#include <algorithm>
#include <new>

namespace vxut {
namespace {

constexpr uint16_t kLittleEndian = 0x4949;
constexpr uint16_t kBigEndian = 0x4D4D;
constexpr uint16_t kVersion = 42;
constexpr size_t kHeaderBytes = 8;
constexpr size_t kEntryBytes = 12;

// Of one image. Scans of whole books have thousands of directories with a few hundred bytes each.
constexpr size_t kMostDirectories = 10000;
constexpr size_t kMostEntryBytes = size_t{4} * 1024 * 1024;
constexpr size_t kMostValueBytes = size_t{8} * 1024 * 1024;
constexpr size_t kMostValues = 50000; // outside of the directories
// Read at first: the count, the entries and the next offset of an ordinary directory.
constexpr size_t kFirstBytes = 512;

enum TiffType : uint16_t {
    kByte = 1,
    kText = 2,
    kShort = 3,
    kLong = 4,
    kFraction = 5,
    kSignedByte = 6,
    kSignedShort = 8,
    kSignedLong = 9,
    kSignedFraction = 10
};

} // namespace

bool clsTiffImage::ReadHeader(uint32_t& firstDirectory) {
    uint8_t bytes[kHeaderBytes];
    if (!ReadAll(file_, base_, bytes, sizeof bytes)) {
        DebugWrite(L"error reading header");
        return false;
    }
    clsByteCursor cursor(bytes);
    uint16_t order = 0;
    uint16_t version = 0;
    bool isRead = cursor.ReadLittle(order);
    if (order != kLittleEndian && order != kBigEndian) {
        DebugWrite(L"Not a TIFF file, bad magic number %u (%#x)", order, order);
        return false;
    }
    order_ = order == kBigEndian ? ByteOrder::kBig : ByteOrder::kLittle;
    isRead = isRead && cursor.Read(version, order_) && cursor.Read(firstDirectory, order_);
    if (isRead && version == kVersion) return true;
    // The order it is, not the version: callers look for this line.
    DebugWrite(L"Not a TIFF file, bad version number %u (%#x)", order, order);
    return false;
}

uint32_t clsTiffImage::ReadEntries(uint32_t offset, std::vector<uint8_t>& entries) {
    if (directories_.size() >= kMostDirectories || !directories_.insert(offset).second) return 0;
    const int64_t position = base_ + offset;
    if (file_.SetPosition(position) != position) {
        DebugWrite(L"Seek error accessing TIFF directory");
        return 0;
    }
    uint8_t first[kFirstBytes];
    clsByteCursor cursor(first, static_cast<size_t>(file_.Read(first, kFirstBytes)));
    uint16_t count = 0;
    if (!cursor.Read(count, order_)) {
        DebugWrite(L"read error directory count");
        return 0;
    }
    const size_t wanted = count * kEntryBytes + sizeof(uint32_t);
    entryBytes_ += wanted;
    if (entryBytes_ > kMostEntryBytes) return 0;
    try {
        entries.assign(cursor.Rest().begin(), cursor.Rest().end());
        entries.resize(std::max(wanted, entries.size()));
    } catch (const std::bad_alloc&) {
        DebugWrite(L"No space for TIFF directory");
        entries.clear();
        return 0;
    }
    size_t read = std::min(cursor.Remaining(), wanted);
    if (read < wanted && cursor.Size() == kFirstBytes)
        read += ReadSome(file_, position + static_cast<int64_t>(kFirstBytes), entries.data() + read,
                         wanted - read);
    const size_t whole = std::min<size_t>(read / kEntryBytes, count);
    if (whole < count)
        DebugWrite(L"Could only read %u of %u entries in directory at offset %#lx",
                   static_cast<uint32_t>(whole), count, offset);
    uint32_t next = 0;
    clsByteCursor rest(entries.data(), read);
    if (!rest.Skip(whole * kEntryBytes) || !rest.Read(next, order_)) next = 0;
    entries.resize(whole * kEntryBytes);
    return whole < count ? 0 : next;
}

bool clsTiffImage::ReadEntry(clsByteCursor& cursor, scTiffEntry& entry) const {
    return cursor.Read(entry.tag, order_) && cursor.Read(entry.type, order_) &&
           cursor.Read(entry.count, order_) && cursor.ReadBytes(sizeof(uint32_t), entry.field);
}

uint32_t clsTiffImage::Number(const scTiffEntry& entry) const {
    const clsByteCursor field(entry.field);
    uint8_t byte = 0;
    uint16_t number16 = 0;
    uint32_t number32 = 0;
    switch (entry.type) {
        case kByte:
        case kSignedByte:
            return field.Peek(byte, order_) ? byte : 0U;
        case kShort:
        case kSignedShort:
            return field.Peek(number16, order_) ? number16 : 0U;
        case kLong:
        case kSignedLong:
            return field.Peek(number32, order_) ? number32 : 0U;
        default:
            return 0;
    }
}

// Reads bytes at the offset in the field. A value that does not fit into the file is not read at all.
bool clsTiffImage::ReadValue(const scTiffEntry& entry, std::vector<uint8_t>& bytes, size_t count) {
    uint32_t offset = 0;
    if (!clsByteCursor(entry.field).Peek(offset, order_)) return false;
    const int64_t position = base_ + offset;
    if (values_ == kMostValues || count > kMostValueBytes - valueBytes_ ||
        static_cast<int64_t>(count) > fileSize_ - position) {
        return false;
    }
    ++values_;
    valueBytes_ += count;
    return ReadAll(file_, position, bytes, count);
}

String clsTiffImage::Text(const scTiffEntry& entry) {
    if (entry.type != kText) return {};
    if (entry.count <= sizeof(uint32_t)) return AnsiText(entry.field.first(entry.count));
    std::vector<uint8_t> bytes;
    return ReadValue(entry, bytes, entry.count) ? AnsiText(bytes) : String();
}

double clsTiffImage::Fraction(const scTiffEntry& entry) {
    if (entry.type != kFraction && entry.type != kSignedFraction) {
        DebugWrite(L"bad TIFF data type");
        return 0.0;
    }
    // A signed one counts half the bytes that it has: its second number is missing if it is the only one.
    // Callers rely on it.
    const bool isSigned = entry.type == kSignedFraction;
    const size_t unitBytes = isSigned ? sizeof(uint32_t) : 2 * sizeof(uint32_t);
    const size_t wanted = entry.count < 2 ? entry.count * unitBytes : 2 * sizeof(uint32_t);
    std::vector<uint8_t> bytes;
    uint32_t first = 0;
    uint32_t second = 0;
    if (!ReadValue(entry, bytes, wanted)) return 0.0;
    clsByteCursor cursor(bytes);
    if (!cursor.Read(first, order_) || !cursor.Read(second, order_) || second == 0) return 0.0;
    if (isSigned) return double{static_cast<int32_t>(first)} / double{static_cast<int32_t>(second)};
    return double{first} / double{second};
}

} // namespace vxut
