// Documents of the second version of a word processor for Windows.
#include "base/byte_cursor.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"

#include <vector>

namespace vxut {
namespace {

constexpr int64_t kOffsetOfTexts = 280; // where the file says where they are
constexpr int kFirstText = 2;           // the others before it are not read

constexpr clsVariant clsDocu::* kTexts[] = {&clsDocu::Title,    &clsDocu::Subject, &clsDocu::Keywords,
                                            &clsDocu::Comments, &clsDocu::Author,  &clsDocu::LastAuthor};

template <class Number>
bool ReadNumber(clsDocFile& file, int64_t offset, Number& number) {
    uint8_t bytes[sizeof number];
    return ReadAll(file, offset, bytes, sizeof bytes) && clsByteCursor(bytes).PeekLittle(number);
}

// Reads the next text, which begins with its length.
bool ReadText(clsByteCursor& cursor, std::span<const uint8_t>& text) {
    uint8_t length = 0;
    return cursor.ReadLittle(length) && cursor.ReadBytes(length, text);
}

} // namespace

int ReadWinWord2(clsDocu& document, clsDocFile& file) {
    uint32_t offset = 0;
    uint16_t size = 0;
    if (!ReadNumber(file, kOffsetOfTexts, offset) || !ReadNumber(file, offset, size)) return -1;
    std::vector<uint8_t> bytes;
    const int64_t first = int64_t{offset} + static_cast<int64_t>(sizeof size);
    if (size < sizeof size || !ReadAll(file, first, bytes, size - sizeof size)) return -1;
    clsByteCursor cursor(bytes);
    std::span<const uint8_t> text;
    for (int i = 0; i < kFirstText; ++i)
        if (!ReadText(cursor, text)) return 0;
    for (const auto property : kTexts) {
        if (!ReadText(cursor, text)) break;
        SetText(document.*property, AnsiText(text));
    }
    return 0;
}

} // namespace vxut
