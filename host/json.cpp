#include "host/json.h"

#include <cstdio>

namespace vlm {

// Lone surrogates are escaped too: the output is UTF-8.
void JsonWriter::Quote(std::wstring_view value) {
    text_ += L'"';
    for (const wchar_t unit : value) {
        if (unit == L'"' || unit == L'\\') {
            text_ += L'\\';
            text_ += unit;
        } else if (unit < 0x20 || (unit >= 0xD800 && unit < 0xE000)) {
            wchar_t escape[8];
            _snwprintf(escape, 8, L"\\u%04x", unit);
            text_ += escape;
        } else {
            text_ += unit;
        }
    }
    text_ += L'"';
}

} // namespace vlm
