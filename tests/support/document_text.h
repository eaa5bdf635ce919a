// The properties of a document as one text, which tests compare.
#pragma once

#include "docinfo/document.h"

#include <string>

namespace vxut::test {

// The text of a property; "-" if it has none.
inline std::wstring TextOfProperty(const clsVariant& property) {
    String text;
    return property.vt == VT_BSTR && property.ToString(text) ? text.Text() : L"-";
}

inline std::wstring TextOfTime(const SYSTEMTIME& time) {
    String text;
    if (time.wYear != 0)
        text.Format(L"%04d-%02d-%02d %02d:%02d:%02d", time.wYear, time.wMonth, time.wDay, time.wHour,
                    time.wMinute, time.wSecond);
    return text.Text();
}

// Those that are set, as "Title=a|Created=2026-11-13 16:30:00|".
inline std::wstring Describe(const clsDocu& document) {
    struct Text {
        const wchar_t* name;
        const clsVariant& value;
    };
    std::wstring all;
    for (const Text& text : {Text{L"Title", document.Title}, Text{L"Subject", document.Subject},
                             Text{L"Author", document.Author}, Text{L"LastAuthor", document.LastAuthor},
                             Text{L"Keywords", document.Keywords}, Text{L"Comments", document.Comments}})
        if (text.value.vt != VT_EMPTY)
            all += std::wstring(text.name) + L"=" + TextOfProperty(text.value) + L"|";
    if (document.Created.wYear != 0) all += L"Created=" + TextOfTime(document.Created) + L"|";
    if (document.Modified.wYear != 0) all += L"Modified=" + TextOfTime(document.Modified) + L"|";
    return all;
}

} // namespace vxut::test
