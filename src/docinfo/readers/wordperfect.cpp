// Documents of WordPerfect, from version 6 on.
#include "base/byte_cursor.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"

#include <algorithm>
#include <vector>

namespace vxut {
namespace {

constexpr size_t kHeadBytes = 512;
constexpr uint8_t kMajorVersion = 2; // that of the format
constexpr size_t kVersionOffset = 10;
constexpr uint16_t kLeastIndexOffset = 16;
constexpr size_t kIndexBytes = 14;
constexpr uint8_t kIndexHeader = 2;
constexpr uint8_t kSummary = 18;
// A summary is one packet with a few texts. Entries of a hostile index may all share one.
constexpr size_t kMostSummaryBytes = size_t{1024} * 1024;

struct Target {
    uint16_t tag;
    clsVariant clsDocu::* text;
};
constexpr Target kTargets[] = {
    {1, &clsDocu::Comments},  {5, &clsDocu::Author},   {17, &clsDocu::Title},
    {26, &clsDocu::Keywords}, {46, &clsDocu::Subject}, {48, &clsDocu::LastAuthor},
};

constexpr uint16_t kLineEnd = 0xF90A;

struct CharacterRow {
    uint16_t code;
    wchar_t unit;
};
constexpr CharacterRow kCharacters[] = {
    {0x0126, 0x80}, {0x0147, 0x81}, {0x0129, 0x82}, {0x011D, 0x83}, {0x011F, 0x84}, {0x0121, 0x85},
    {0x0123, 0x86}, {0x0127, 0x87}, {0x012B, 0x88}, {0x012D, 0x89}, {0x012F, 0x8A}, {0x0135, 0x8B},
    {0x0133, 0x8C}, {0x0137, 0x8D}, {0x011E, 0x8E}, {0x0122, 0x8F}, {0x0128, 0x90}, {0x0125, 0x91},
    {0x0124, 0x92}, {0x013D, 0x93}, {0x013F, 0x94}, {0x0141, 0x95}, {0x0145, 0x96}, {0x0149, 0x97},
    {0x014B, 0x98}, {0x013E, 0x99}, {0x0146, 0x9A}, {0x011B, 0xA0}, {0x0131, 0xA1}, {0x013B, 0xA2},
    {0x0143, 0xA3}, {0x0139, 0xA4}, {0x0138, 0xA5}, {0x0117, 0xE1}, {0x010E, 0xF8},
};
static_assert(std::size(kCharacters) == 35);

// Returns 0 for a character that has no unit.
wchar_t UnitOf(uint16_t code) {
    if (code <= 0xFF) return code;
    const auto* const row = std::ranges::find(kCharacters, code, &CharacterRow::code);
    return row == std::end(kCharacters) ? L'\0' : row->unit;
}

String TextOfCharacters(clsByteCursor cursor) {
    String text;
    for (uint16_t code; cursor.ReadLittle(code) && code != 0;) {
        if (code == kLineEnd)
            text += L"\r\n";
        else if (const wchar_t unit = UnitOf(code))
            text += unit;
    }
    return text;
}

// The records of a summary, each with its size, its tag and two bytes more before its content.
void ReadRecords(clsDocu& document, clsByteCursor packet) {
    uint16_t size = 0;
    uint16_t tag = 0;
    clsByteCursor content;
    while (packet.ReadLittle(size) && packet.ReadLittle(tag) && packet.Skip(sizeof(uint16_t))) {
        constexpr size_t kHead = 3 * sizeof(uint16_t);
        if (size < kHead || !packet.ReadPart(size - kHead, content)) break;
        for (const Target& target : kTargets)
            if (target.tag == tag) SetText(document.*target.text, TextOfCharacters(content));
    }
}

// Whether the head is that of a document that can be read; then finds its index.
bool FindIndex(std::span<const uint8_t> head, uint16_t& offset) {
    clsByteCursor cursor(head);
    uint8_t version = 0;
    uint8_t productType = 0;
    uint16_t encryption = 0;
    if (!cursor.Skip(1) || !cursor.ReadMagic("WPC") || !cursor.Seek(kVersionOffset)) return false;
    if (!cursor.ReadLittle(version) || !cursor.ReadLittle(productType) || !cursor.ReadLittle(encryption) ||
        !cursor.ReadLittle(offset)) {
        return false;
    }
    offset = std::max(offset, kLeastIndexOffset);
    return encryption == 0 && version == kMajorVersion;
}

// Reads the packets of the index, of which the header is the first.
void ReadPackets(clsDocu& document, clsDocFile& file, clsByteCursor index) {
    size_t used = 0;
    clsByteCursor entry;
    std::vector<uint8_t> packet;
    while (used < kMostSummaryBytes && index.ReadPart(kIndexBytes, entry)) {
        uint8_t type = 0;
        uint32_t length = 0;
        uint32_t offset = 0;
        if (!entry.Skip(1) || !entry.ReadLittle(type) || type != kSummary) continue;
        if (!entry.Seek(6) || !entry.ReadLittle(length) || !entry.ReadLittle(offset)) continue;
        packet.resize(std::min<size_t>(length, kMostSummaryBytes - used));
        packet.resize(ReadSome(file, offset, packet.data(), packet.size()));
        used += packet.size();
        ReadRecords(document, clsByteCursor(packet));
    }
}

} // namespace

int ReadWordPerfect(clsDocu& document, clsDocFile& file) {
    uint8_t head[kHeadBytes];
    uint8_t indexHeader[kIndexBytes];
    uint16_t offset = 0;
    uint16_t count = 0;
    if (!ReadAll(file, 0, head, sizeof head) || !FindIndex(head, offset)) return -1;
    if (!ReadAll(file, offset, indexHeader, sizeof indexHeader)) return -1;
    clsByteCursor header(indexHeader);
    const bool isHeader = indexHeader[0] == kIndexHeader || indexHeader[1] == kIndexHeader;
    if (!isHeader || !header.Skip(2) || !header.ReadLittle(count) || count == 0) return -1;
    std::vector<uint8_t> index(count * kIndexBytes);
    index.resize(ReadSome(file, offset, index.data(), index.size()));
    ReadPackets(document, file, clsByteCursor(index));
    return 0;
}

} // namespace vxut
