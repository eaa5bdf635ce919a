// The recognition of text encodings.
#include "files/file.h"

#include "base/debug.h"
#include "base/utf8.h"

#include <climits>
#include <cstring>
#include <iterator>
#include <new>

namespace vxut {
namespace {

// The content of unmarked files up to this size is not tested: it is too little to be judged by.
constexpr int64_t kMaxUnjudged = 200;
// The test for 16-bit text counts its bytes in an int.
constexpr int64_t kMaxJudged = INT_MAX - 1;

struct Mark {
    int64_t length;
    unsigned char bytes[3];
    UtfType type;
};
constexpr Mark kMarks[] = {{3, {0xEF, 0xBB, 0xBF}, kUtf8},
                           {2, {0xFF, 0xFE, 0}, kUtf16LittleEndian},
                           {2, {0xFE, 0xFF, 0}, kUtf16BigEndian}};

bool LooksLikeUnicode(const void* text, int64_t bytes) {
    int tests = IS_TEXT_UNICODE_UNICODE_MASK;
    return IsTextUnicode(text, static_cast<int>(bytes), &tests) != 0;
}

// IsTextUnicode() returns false for reversed text in any case, but reports the tests that were passed.
bool LooksLikeReversedUnicode(const void* text, int64_t bytes) {
    int tests = IS_TEXT_UNICODE_REVERSE_MASK;
    return IsTextUnicode(text, static_cast<int>(bytes), &tests) != 0 || tests != 0;
}

} // namespace

UtfType clsFile::GetUTFType() {
    const int64_t start = GetPosition();
    if (start < 0) return kUtfNone;
    if (start == 0) {
        const UtfType marked = ReadMark();
        if (marked != kUtfNone) return marked;
    } else {
        DebugWrite(L"clsFile::GetUTFType(): file not at BOF!");
    }
    const UtfType type = JudgeContent();
    SetPosition(start);
    return type;
}

// Moves the position past the mark, or to 0 if there is none.
UtfType clsFile::ReadMark() {
    unsigned char head[3] = {};
    const int64_t count = Read(head, GetSize() < 3 ? 2 : 3);
    for (const Mark& mark : kMarks) {
        if (count < mark.length || std::memcmp(head, mark.bytes, static_cast<size_t>(mark.length)) != 0)
            continue;
        SetPosition(mark.length);
        return mark.type;
    }
    SetPosition(0);
    return kUtfNone;
}

UtfType clsFile::JudgeContent() {
    const int64_t size = GetSize();
    if (size <= kMaxUnjudged || size > kMaxJudged) return kUtfNone;
    const clsAutoDeleteBytes<char> text(new (std::nothrow) char[static_cast<size_t>(size) + 1]);
    if (!text) return Note(ERROR_NOT_ENOUGH_MEMORY), kUtfNone;
    SetPosition(0);
    if (Read(text.get(), size) < size) return kUtfNone;
    text[static_cast<size_t>(size)] = 0;
    if (IsValidUtf8(text.get())) return kUtf8;
    if (LooksLikeUnicode(text.get(), size)) return kUtf16LittleEndian;
    return LooksLikeReversedUnicode(text.get(), size) ? kUtf16BigEndian : kUtfNone;
}

} // namespace vxut
