#include "host/archive_reader.h"

#include "host/byte_view.h"

#include <zlib.h>

#include <algorithm>

namespace vlm {

namespace {

constexpr std::string_view kEndMark("PK\5\6", 4);
constexpr size_t kEndBytes = 22;
constexpr size_t kMostComment = 65535;
constexpr uint32_t kIndexMark = 0x02014B50;
constexpr uint32_t kLocalMark = 0x04034B50;
constexpr size_t kIndexBytes = 46;
constexpr size_t kLocalBytes = 30;
constexpr uint16_t kStored = 0;
constexpr uint16_t kDeflated = 8;
constexpr uint16_t kEncrypted = 1;

// The end record: the last one whose comment ends with the file. npos if there is none.
size_t FindEnd(std::string_view bytes) {
    const ByteView view(bytes);
    const size_t first =
        bytes.size() > kEndBytes + kMostComment ? bytes.size() - kEndBytes - kMostComment : 0;
    for (size_t at = bytes.rfind(kEndMark); at != std::string_view::npos && at >= first;
         at = at == 0 ? std::string_view::npos : bytes.rfind(kEndMark, at - 1)) {
        uint16_t comment;
        if (view.Read(at + 20, comment) && at + kEndBytes + comment == bytes.size()) return at;
    }
    return std::string_view::npos;
}

// Reads an entry of the index and moves past it.
bool ReadEntry(const ByteView& view, uint64_t& at, ArchiveEntry& entry) {
    uint32_t mark;
    uint16_t name, extra, comment;
    const bool isRead = view.Read(at, mark) && mark == kIndexMark && view.Read(at + 8, entry.flags) &&
                        view.Read(at + 10, entry.method) && view.Read(at + 16, entry.crc) &&
                        view.Read(at + 20, entry.packedSize) && view.Read(at + 24, entry.size) &&
                        view.Read(at + 28, name) && view.Read(at + 30, extra) &&
                        view.Read(at + 32, comment) && view.Read(at + 42, entry.headerAt);
    if (!isRead || !view.Has(at + kIndexBytes, uint64_t{name} + extra + comment)) return false;
    entry.name = view.Piece(at + kIndexBytes, name);
    entry.comment = view.Piece(at + kIndexBytes + name + extra, comment);
    at += kIndexBytes + uint64_t{name} + extra + comment;
    return true;
}

// Inflates to exactly the given size.
bool Inflate(std::string_view packed, size_t size, std::string& content) {
    constexpr size_t kPiece = size_t{1} << 20;
    z_stream stream = {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) return false;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    int result = Z_OK;
    // The size that the archive claims is not believed: the text grows with the data.
    while (result == Z_OK && content.size() <= size) {
        const size_t before = content.size();
        content.resize(before + std::min(kPiece, size - before + 1));
        stream.next_out = reinterpret_cast<Bytef*>(content.data() + before);
        stream.avail_out = static_cast<uInt>(content.size() - before);
        result = inflate(&stream, Z_NO_FLUSH);
        content.resize(content.size() - stream.avail_out);
        if (content.size() == before && stream.avail_in == 0) break;
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END && content.size() == size;
}

} // namespace

bool ReadArchive(std::string_view bytes, Archive& archive) {
    const ByteView view(bytes);
    const size_t end = FindEnd(bytes);
    uint16_t count;
    uint32_t indexAt;
    if (end == std::string_view::npos || !view.Read(end + 10, count) || !view.Read(end + 16, indexAt))
        return false;
    archive.comment = view.Piece(end + kEndBytes, kMostComment);
    uint64_t at = indexAt;
    for (uint16_t i = 0; i < count; ++i) {
        ArchiveEntry entry;
        if (!ReadEntry(view, at, entry)) return false;
        archive.entries.push_back(std::move(entry));
    }
    return true;
}

bool UnpackEntry(std::string_view bytes, const ArchiveEntry& entry, size_t maximumBytes,
                 std::string& content) {
    const ByteView view(bytes);
    uint32_t mark;
    uint16_t name, extra;
    content.clear();
    if (entry.size > maximumBytes || (entry.flags & kEncrypted) || !view.Read(entry.headerAt, mark) ||
        mark != kLocalMark || !view.Read(entry.headerAt + uint64_t{26}, name) ||
        !view.Read(entry.headerAt + uint64_t{28}, extra)) {
        return false;
    }
    const uint64_t dataAt = entry.headerAt + kLocalBytes + uint64_t{name} + extra;
    if (!view.Has(dataAt, entry.packedSize)) return false;
    const std::string_view packed = view.Piece(dataAt, entry.packedSize);
    if (entry.method == kStored && entry.size == entry.packedSize)
        content = packed;
    else if (entry.method != kDeflated || !Inflate(packed, entry.size, content))
        return false;
    return crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size()) == entry.crc;
}

} // namespace vlm
