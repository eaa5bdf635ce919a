// Reads a ZIP archive strictly: each record has to be where the one before it ends.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace vxut::test {

struct ZipMember {
    std::string name;
    std::string comment;
    std::string content;
    uint16_t flags = 0;
    uint16_t method = 0;
    uint16_t time = 0;
    uint16_t date = 0;
    uint32_t attributes = 0;
};

struct ZipArchive {
    std::vector<ZipMember> members;
    std::string comment;
};

// A reader of little-endian numbers and bytes that throws at the end.
class ZipCursor {
public:
    ZipCursor(const std::string& bytes, size_t position) : bytes_(bytes), position_(position) {}

    std::string Take(size_t count) {
        if (count > bytes_.size() - position_) throw std::runtime_error("the archive is cut");
        position_ += count;
        return bytes_.substr(position_ - count, count);
    }
    uint32_t Number(size_t count) {
        uint32_t number = 0;
        const std::string bytes = Take(count);
        for (size_t i = count; i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes[i]);
        return number;
    }
    void Expect(size_t count, uint32_t wanted, const char* what) {
        if (Number(count) != wanted) throw std::runtime_error(what);
    }
    size_t Position() const { return position_; }

private:
    const std::string& bytes_;
    size_t position_;
};

inline std::string InflateRaw(const std::string& packed, size_t size) {
    std::string content(size + 1, '\0'); // one more than needed, to see what is too much
    z_stream stream{};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(content.data());
    stream.avail_out = static_cast<uInt>(content.size());
    inflateInit2(&stream, -15);
    const int result = inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    if (result != Z_STREAM_END || stream.total_out != size || stream.avail_in != 0)
        throw std::runtime_error("bad compressed data");
    content.pop_back();
    return content;
}

// Reads a member at its local header and checks its contents.
inline void ReadLocal(ZipCursor& local, ZipMember& member) {
    local.Expect(4, 0x04034B50, "no local header");
    local.Expect(2, 20, "version needed");
    member.flags = static_cast<uint16_t>(local.Number(2));
    member.method = static_cast<uint16_t>(local.Number(2));
    member.time = static_cast<uint16_t>(local.Number(2));
    member.date = static_cast<uint16_t>(local.Number(2));
    const uint32_t crc = local.Number(4);
    const uint32_t packedSize = local.Number(4);
    const uint32_t size = local.Number(4);
    const uint32_t nameSize = local.Number(2);
    local.Expect(2, 0, "an extra field");
    member.name = local.Take(nameSize);
    const std::string packed = local.Take(packedSize);
    member.content = member.method == 8 ? InflateRaw(packed, size) : packed;
    const auto* content = reinterpret_cast<const Bytef*>(member.content.data());
    if (crc32(0, content, static_cast<uInt>(member.content.size())) != crc) throw std::runtime_error("CRC");
}

inline ZipArchive ReadZip(const std::string& bytes) {
    const size_t endAt = bytes.rfind("PK\5\6");
    if (endAt == std::string::npos) throw std::runtime_error("no end record");
    ZipCursor end(bytes, endAt + 4);
    end.Expect(4, 0, "disks");
    const uint32_t count = end.Number(2);
    end.Expect(2, count, "entries");
    const uint32_t indexSize = end.Number(4);
    const uint32_t indexAt = end.Number(4);
    ZipArchive archive;
    archive.comment = end.Take(end.Number(2));
    if (end.Position() != bytes.size() || indexAt + indexSize != endAt) throw std::runtime_error("bad end");

    ZipCursor index(bytes, indexAt);
    ZipCursor local(bytes, 0);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t localAt = local.Position();
        ZipMember member;
        ReadLocal(local, member);
        index.Expect(4, 0x02014B50, "no central header");
        index.Expect(2, 0x0A14, "version made by");
        if (index.Take(26) != bytes.substr(localAt + 4, 26)) throw std::runtime_error("headers differ");
        const uint32_t commentSize = index.Number(2);
        index.Expect(2, 0, "disk");
        index.Expect(2, 0, "internal attributes");
        member.attributes = index.Number(4);
        index.Expect(4, static_cast<uint32_t>(localAt), "offset");
        if (index.Take(member.name.size()) != member.name) throw std::runtime_error("names differ");
        member.comment = index.Take(commentSize);
        archive.members.push_back(member);
    }
    if (local.Position() != indexAt || index.Position() != endAt) throw std::runtime_error("gaps");
    return archive;
}

} // namespace vxut::test
