#include "docinfo/readers/shortcut_check.h"

#include "base/byte_cursor.h"

#include <algorithm>

namespace vxut {
namespace {

constexpr uint32_t kHeaderBytes = 0x4C;
constexpr size_t kFlagsOffset = 20;
constexpr uint32_t kHasItems = 0x01;
constexpr uint32_t kHasPlace = 0x02;
constexpr uint32_t kTexts[] = {0x04, 0x08, 0x10, 0x20, 0x40};
constexpr uint32_t kIsWide = 0x80;
constexpr uint32_t kLeastPlaceBytes = 0x1C;
constexpr size_t kVolumeField = 12; // of the place: where its parts are
constexpr size_t kNetworkField = 20;
constexpr size_t kPathFields[] = {16, 24};
constexpr size_t kVolumeTexts[] = {12}; // of a part: where its texts are
constexpr size_t kNetworkTexts[] = {8, 12};
constexpr uint32_t kLeastPartBytes = 16;
constexpr uint32_t kLeastBlockBytes = 8;

// Items, each with its length, up to one of length 0.
bool SkipItems(clsByteCursor& cursor) {
    uint16_t bytes = 0;
    clsByteCursor list;
    if (!cursor.ReadLittle(bytes) || !cursor.ReadPart(bytes, list)) return false;
    uint16_t item = 0;
    while (list.ReadLittle(item) && item != 0)
        if (item < sizeof item || !list.Skip(item - sizeof item)) return false;
    return item == 0 && list.IsAtEnd();
}

bool ReadOffset(clsByteCursor cursor, size_t field, uint32_t& offset) {
    return cursor.Seek(field) && cursor.ReadLittle(offset);
}

// Whether a text, which may be absent, ends inside the bytes.
bool HasText(clsByteCursor cursor, size_t field) {
    uint32_t offset = 0;
    if (!ReadOffset(cursor, field, offset)) return false;
    return offset == 0 || (cursor.Seek(offset) && std::ranges::find(cursor.Rest(), 0) != cursor.Rest().end());
}

// Whether a part, which begins with its size and may be absent, is inside the bytes, and its texts inside it.
bool HasPart(clsByteCursor cursor, size_t field, std::span<const size_t> texts) {
    uint32_t offset = 0;
    uint32_t bytes = 0;
    clsByteCursor part;
    if (!ReadOffset(cursor, field, offset)) return false;
    if (offset == 0) return true;
    if (!cursor.Seek(offset) || !cursor.PeekLittle(bytes) || bytes < kLeastPartBytes ||
        !cursor.ReadPart(bytes, part)) {
        return false;
    }
    return std::ranges::all_of(texts, [&part](size_t text) { return HasText(part, text); });
}

// The volume or share and the paths of the target.
bool SkipPlace(clsByteCursor& cursor) {
    uint32_t bytes = 0;
    clsByteCursor place;
    if (!cursor.PeekLittle(bytes) || bytes < kLeastPlaceBytes || !cursor.ReadPart(bytes, place)) return false;
    return HasPart(place, kVolumeField, kVolumeTexts) && HasPart(place, kNetworkField, kNetworkTexts) &&
           std::ranges::all_of(kPathFields, [&place](size_t field) { return HasText(place, field); });
}

bool SkipTexts(clsByteCursor& cursor, uint32_t flags) {
    const size_t unitBytes = flags & kIsWide ? sizeof(wchar_t) : 1;
    return std::ranges::all_of(kTexts, [&](uint32_t text) {
        uint16_t units = 0;
        return !(flags & text) || (cursor.ReadLittle(units) && cursor.Skip(units * unitBytes));
    });
}

// Blocks, each with its length, up to a length that is none or the end of the file.
bool SkipBlocks(clsByteCursor& cursor) {
    uint32_t bytes = 0;
    while (cursor.PeekLittle(bytes) && bytes >= sizeof bytes)
        if (bytes < kLeastBlockBytes || !cursor.Skip(bytes)) return false;
    return true;
}

} // namespace

bool IsShortcutSound(std::span<const uint8_t> bytes) {
    clsByteCursor cursor(bytes);
    uint32_t size = 0;
    uint32_t flags = 0;
    return cursor.ReadLittle(size) && size == kHeaderBytes && cursor.Seek(kFlagsOffset) &&
           cursor.ReadLittle(flags) && cursor.Seek(kHeaderBytes) &&
           (!(flags & kHasItems) || SkipItems(cursor)) && (!(flags & kHasPlace) || SkipPlace(cursor)) &&
           SkipTexts(cursor, flags) && SkipBlocks(cursor);
}

} // namespace vxut
