// What a reader found in a document, as one text that tests compare.
#pragma once

#include "tests/support/document_reading.h"

#include <string>

namespace vxut::test {

// The properties that are set, as "Title=a|Created=2026-11-13 16:30:00|".
inline std::wstring Describe(const clsDocu& document) {
    struct Text {
        const wchar_t* name;
        const clsVariant& value;
    };
    std::wstring all;
    for (const Text& text : {Text{L"Title", document.Title}, Text{L"Subject", document.Subject},
                             Text{L"Author", document.Author}, Text{L"LastAuthor", document.LastAuthor},
                             Text{L"Keywords", document.Keywords}, Text{L"Comments", document.Comments}})
        if (text.value.vt != VT_EMPTY) all += std::wstring(text.name) + L"=" + TextOrUnset(text.value) + L"|";
    const auto addTime = [&all](const wchar_t* name, const SYSTEMTIME& time) {
        const std::string text = TimeText(time);
        if (time.wYear != 0) all += std::wstring(name) + L"=" + std::wstring(text.begin(), text.end()) + L"|";
    };
    addTime(L"Created", document.Created);
    addTime(L"Modified", document.Modified);
    return all;
}

// The result of a reader and the properties: "0 Title=a|".
inline std::wstring ReadAndDescribe(DocumentReader read, const std::string& bytes) {
    int result = 0;
    const Document document = ReadDocument(read, bytes, &result);
    return std::to_wstring(result) + L" " + Describe(*document.Get());
}

} // namespace vxut::test
