// Documents of binary formats, put together byte by byte: packages, images and files of old word processors.
// Only the standard library: the fuzz driver and the torture scenarios start from them too.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vxut::test {

// Numbers in the byte order of a format.
inline std::string Number(uint64_t value, int bytes, bool isBig = false) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * (isBig ? bytes - 1 - i : i));
    return text;
}
inline std::string Little16(uint64_t value) { return Number(value, 2); }
inline std::string Little32(uint64_t value) { return Number(value, 4); }

// A member of a package, stored as it is unless it says otherwise.
struct PackageMember {
    std::string name;
    std::string content;
    uint16_t method = 0;
    uint16_t flags = 0;          // bit 3: the local header has no sizes
    uint32_t size = 1;           // what the headers say of the expanded content
    std::string localExtra = ""; // an extra field
    std::string descriptor = ""; // after the content
    uint16_t extraBytes = 0;     // what the directory says of its extra field
};

inline std::string Package(const std::vector<PackageMember>& members, const std::string& comment = "") {
    std::string file;
    std::string directory;
    for (const PackageMember& member : members) {
        const bool isLate = (member.flags & 8) != 0;
        const uint64_t packed = member.content.size();
        const std::string head =
            Little16(20) + Little16(member.flags) + Little16(member.method) + Little32(0);
        const std::string name = Little16(member.name.size());
        directory += "PK\1\2" + Little16(20) + head + Little32(0) + Little32(packed) + Little32(member.size) +
                     name + Little16(member.extraBytes) + std::string(10, '\0') + Little32(file.size()) +
                     member.name + std::string(member.extraBytes, 'x');
        file += "PK\3\4" + head + Little32(0) + Little32(isLate ? 0 : packed) +
                Little32(isLate ? 0 : member.size) + name + Little16(member.localExtra.size()) + member.name +
                member.localExtra + member.content + member.descriptor;
    }
    const std::string count = Little16(members.size());
    return file + directory + "PK\5\6" + Little32(0) + count + count + Little32(directory.size()) +
           Little32(file.size()) + Little16(comment.size()) + comment;
}

inline std::string CoreProperties(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><cp:coreProperties xmlns:cp=\"c\">" + body +
           "</cp:coreProperties>";
}
inline std::string OpenDocumentMeta(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><office:document-meta a=\"b\"><office:meta>" + body +
           "</office:meta></office:document-meta>";
}

// Builds a TIFF image of one or more directories.
class ImageBuilder {
public:
    explicit ImageBuilder(bool isBig = false) : isBig_(isBig) {
        file_ = (isBig ? "MM" : "II") + Of(42, 2) + Of(0, 4);
    }

    // Entries of the directory that comes next. Values longer than four bytes are put before it.
    ImageBuilder& Text(uint16_t tag, const std::string& text) { return Add(tag, 2, text.size(), text); }
    ImageBuilder& Short(uint16_t tag, uint16_t value) { return Add(tag, 3, 1, Of(value, 2)); }
    ImageBuilder& Long(uint16_t tag, uint32_t value) { return Add(tag, 4, 1, Of(value, 4)); }
    ImageBuilder& Fraction(uint16_t tag, uint32_t first, uint32_t second, uint16_t type = 5,
                           uint32_t count = 1) {
        return Add(tag, type, count, Of(first, 4) + Of(second, 4));
    }
    ImageBuilder& Add(uint16_t tag, uint16_t type, uint64_t count, std::string value) {
        if (value.size() > 4) {
            const std::string offset = Of(file_.size(), 4);
            file_ += value;
            value = offset;
        }
        value.resize(4);
        entries_ += Of(tag, 2) + Of(type, 2) + Of(count, 4) + value;
        return *this;
    }
    // Writes the directory, and lets the one before it, or the header, lead to it. Returns its offset.
    uint32_t End() {
        const auto offset = static_cast<uint32_t>(file_.size());
        file_.replace(link_, 4, Of(offset, 4));
        file_ += Of(entries_.size() / 12, 2) + entries_;
        link_ = file_.size();
        file_ += Of(0, 4);
        entries_.clear();
        return offset;
    }
    // The same for a directory that only an entry leads to.
    uint32_t EndApart() {
        const std::string linked = file_;
        const size_t link = link_;
        const uint32_t offset = End();
        file_.replace(link, 4, linked, link, 4);
        link_ = link;
        return offset;
    }
    // Lets the last directory lead to any offset.
    ImageBuilder& LinkTo(uint32_t offset) {
        file_.replace(link_, 4, Of(offset, 4));
        return *this;
    }
    std::string File() const { return file_; }

private:
    std::string Of(uint64_t value, int bytes) const { return Number(value, bytes, isBig_); }

    bool isBig_;
    std::string file_;
    std::string entries_;
    size_t link_ = 4;
};

// A JPEG image with a segment before the one with the camera's data.
inline std::string Photo(const std::string& image) {
    return "\xFF\xD8\xFF\xE0" + Number(4, 2, true) + "xx\xFF\xE1" + Number(image.size() + 8, 2, true) +
           std::string("Exif\0\0", 6) + image;
}

inline std::string OldWordDocument(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += static_cast<char>(text.size()) + text;
    std::string file = "\xDB\xA5\x2D";
    file.resize(280);
    return file + Little32(284) + Little16(all.size() + 2) + all;
}

struct SummaryRecord {
    uint16_t tag;
    std::u16string text;
};

// The index has its header, a packet that is none of a summary, and the summary.
inline std::string PerfectDocument(const std::vector<SummaryRecord>& records, uint32_t length = 0) {
    constexpr uint32_t kIndex = 16;
    constexpr uint32_t kData = 512;
    std::string packet;
    for (const SummaryRecord& record : records) {
        std::string text;
        for (const char16_t unit : record.text) text += Little16(unit);
        packet += Little16(6 + text.size() + 2) + Little16(record.tag) + Little16(0) + text + Little16(0);
    }
    const auto entry = [](uint8_t type, uint64_t bytes) {
        return std::string(1, '\0') + static_cast<char>(type) + Little32(0) + Little32(bytes) +
               Little32(kData);
    };
    std::string file = "\xFFWPC" + Little32(kData) + "\1\xA" + "\2" + std::string(3, '\0') +
                       Little16(kIndex) + "\2" + std::string(1, '\0') + Little16(3) + std::string(10, '\0') +
                       entry(1, 2) + entry(18, length ? length : packet.size());
    file.resize(kData);
    return file + packet;
}

} // namespace vxut::test
