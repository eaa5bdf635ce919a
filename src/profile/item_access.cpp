#include "profile/item_access.h"

#include "encoding/charset.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace vxut {
namespace {

constexpr uint64_t kMaxLength = INT32_MAX;

// The number of units of a text that fit into a buffer with the terminator.
uint64_t CutLength(uint64_t length, uint32_t capacity) {
    return std::min({length, static_cast<uint64_t>(capacity) - 1, kMaxLength});
}

// Buffer and text may overlap.
template <class Unit>
void CopyCut(Unit* buffer, uint32_t capacity, const Unit* text, uint64_t length) {
    const uint64_t cut = CutLength(length, capacity);
    std::memmove(buffer, text, cut * sizeof(Unit));
    buffer[cut] = 0;
}

int32_t LengthRead(const clsItem* item, uint32_t capacity) {
    return item ? static_cast<int32_t>(CutLength(item->Value().size(), capacity)) : PROF_ERR_NOT_FOUND;
}

} // namespace

void AppendText(const scPlace& place, const wchar_t* path, const wchar_t* value) {
    if (!value) return;
    clsWritePath target(place, path);
    target.List().AppendItem(target.Name(), value);
    target.Commit();
}

void SetText(const scPlace& place, const wchar_t* path, const wchar_t* value) {
    if (!path || !value) return;
    clsWritePath target(place, path);
    target.List().SetItem(target.Name(), value);
    target.Commit();
}

int32_t ReadText(const clsItem* item, wchar_t* buffer, uint32_t capacity, const wchar_t* fallback) {
    if (!buffer || capacity == 0) return item ? 0 : PROF_ERR_NOT_FOUND;
    if (item)
        CopyCut(buffer, capacity, item->ValueText(), item->Value().size());
    else if (buffer != fallback)
        CopyCut(buffer, capacity, fallback ? fallback : L"", fallback ? std::wcslen(fallback) : 0);
    return LengthRead(item, capacity);
}

int32_t ReadText(const clsItem* item, char* buffer, uint32_t capacity, const char* fallback) {
    if (!buffer || capacity == 0) return item ? 0 : PROF_ERR_NOT_FOUND;
    clsCharsetConversionString converter;
    if (item) {
        converter.Set(item->ValueText(), static_cast<int64_t>(CutLength(item->Value().size(), capacity)));
    } else {
        clsCharsetConversionString given(fallback);
        const wchar_t* const wide = given.GetWide();
        converter.Set(wide, static_cast<int64_t>(CutLength(std::wcslen(wide), capacity)));
    }
    const char* const narrow = converter.GetNarrow();
    CopyCut(buffer, capacity, narrow, std::strlen(narrow));
    buffer[capacity - 1] = 0;
    return LengthRead(item, capacity);
}

int32_t TextLength(const clsItem* item) {
    return item ? static_cast<int32_t>(std::min<uint64_t>(item->Value().size(), kMaxLength))
                : PROF_ERR_NOT_FOUND;
}

} // namespace vxut
