// The HTML conversions as plain passes with regular expressions: slow, and what the fast ones must agree
// with.
#pragma once

#include "encoding/html.h"
#include "encoding/html_entities.h"
#include "text/regex.h"
#include "text/string.h"

#include <cwchar>
#include <map>
#include <string>

namespace vxut::test {

inline std::wstring WideOf(const String& text) { return {text.Text(), static_cast<size_t>(text.Length())}; }
inline String StringOf(const std::wstring& text) {
    String string;
    string.Append(text.data(), static_cast<int64_t>(text.size()));
    return string;
}

inline String ReferenceLinks(const String& text) {
    String rest(text);
    String joined;
    bool hasPieces = false;
    while (WideOf(rest).find(L"<a") != std::wstring::npos) {
        clsRegEx pattern(LR"_(^(.*)<a\s+(.*)href="(.*)"(.*)>(.*)</a>(.*)$)_", 517);
        clsRegExMatchList groups;
        const bool isLink = pattern.Match(rest, &groups);
        hasPieces = true;
        if (!isLink) return joined + rest;
        const String target = groups.get(3).text;
        const String label = groups.get(5).text;
        joined.Append(groups.get(1).text);
        joined.Append(IString(label).CompareTo(target) == 0 ? target : label + L" [" + target + L"]");
        rest = groups.get(6).text;
    }
    return hasPieces ? joined : text;
}

inline std::wstring ReferenceTags(const std::wstring& text, bool hasPlaceholders) {
    static const std::map<std::wstring, std::wstring> kOutputs = {
        {L"/h1", L"\r"}, {L"/h2", L"\r"},  {L"/h3", L"\r"},      {L"/h4", L"\r"},    {L"/h5", L"\r"},
        {L"/h6", L"\r"}, {L"li", L"- "},   {L"/p", L"\r"},       {L"/div", L"\r"},   {L"/ol", L"\r"},
        {L"/tr", L"\r"}, {L"/ul", L"\r"},  {L"/thead", L"\r"},   {L"/tbody", L"\r"}, {L"/blockquote", L"\r"},
        {L"/li", L"\r"}, {L"/pre", L"\r"}, {L"/address", L"\r"}, {L"/td", L" "},     {L"/th", L" "},
        {L"br", L"\r"},  {L"hr", L"\r"}};
    const std::wstring skipped = L"|head|script|iframe|textarea|select|style|";
    const std::wstring opening = hasPlaceholders ? L"[" : L"<";
    const std::wstring closing = hasPlaceholders ? L"]" : L">";
    const auto isAt = [&](size_t at, const std::wstring& what) {
        return text.compare(at, what.size(), what) == 0;
    };
    std::wstring result;
    std::wstring name;
    bool isInTag = false;
    bool isPastName = false;
    bool isAfterBlank = false;
    int skipDepth = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const std::wstring unit(1, text[i]);
        const bool isBlank = std::wstring(L" \t\n\r\u00A0").find(text[i]) != std::wstring::npos;
        if (unit == opening) {
            if (hasPlaceholders && isAt(i + 1, L"_[")) i += 2;
            isInTag = true;
            name.clear();
        } else if (isInTag && unit == closing) {
            if (hasPlaceholders && isAt(i + 1, L"_]")) i += 2;
            isInTag = isPastName = false;
            for (wchar_t& letter : name)
                letter = letter < 0x80 ? static_cast<wchar_t>(towlower(letter)) : letter;
            if (skipDepth == 0 && kOutputs.count(name)) result += kOutputs.at(name);
            const bool isEnd = name.starts_with(L"/");
            if (name.size() > 1 && skipped.find(L"|" + name.substr(isEnd) + L"|") != std::wstring::npos)
                skipDepth += isEnd ? -1 : 1;
        } else if (isInTag) {
            if (isBlank) isPastName = true;
            if (!isPastName) name += unit;
        } else if (skipDepth == 0) {
            if (!isBlank || !isAfterBlank) result += isBlank && text[i] != 0xA0 ? L" " : unit;
            isAfterBlank = isBlank;
        }
    }
    return result;
}

inline std::wstring ReferenceDemask(const std::wstring& text) {
    std::wstring result;
    for (size_t i = 0; i < text.size();) {
        const size_t end = text[i] == L'&' ? text.find(L';', i) : std::wstring::npos;
        if (end == std::wstring::npos || end - i + 1 > 8) {
            result += text[i++];
            continue;
        }
        const std::wstring entity = text.substr(i, end - i + 1);
        if (entity[1] != L'#') {
            std::wstring wanted = entity;
            for (wchar_t character = 1; character <= 0xFF; ++character) {
                const wchar_t* known = HtmlEntityOf(character);
                if (known && entity == known) wanted = std::wstring(1, character);
            }
            result += wanted;
            i = end + 1;
            continue;
        }
        const bool isHexadecimal = entity[2] == L'x';
        const std::wstring digits =
            entity.substr(isHexadecimal ? 3 : 2, entity.size() - (isHexadecimal ? 4 : 3));
        const bool areDigits = digits.find_first_not_of(isHexadecimal ? L"0123456789abcdefABCDEF"
                                                                      : L"0123456789") == std::wstring::npos;
        const unsigned long number =
            areDigits ? std::wcstoul(digits.c_str(), nullptr, isHexadecimal ? 16 : 10) : 0;
        if (number) result += static_cast<wchar_t>(number);
        i = number ? end + 1 : i + 1;
    }
    return result;
}

inline std::wstring ReferenceCleanUp(const std::wstring& text) {
    std::wstring result;
    int depth = 0;
    bool isAfterBlank = false;
    for (const wchar_t unit : text) {
        if (unit == L' ' || unit == 0xA0) {
            if (!isAfterBlank) result += unit;
            isAfterBlank = true;
        } else if (unit == 0xAB || unit == 0xBB) {
            const bool isOutermost = unit == 0xAB ? depth == 0 : depth == 1;
            depth += unit == 0xAB ? 1 : -1;
            if (isOutermost)
                isAfterBlank = false;
            else
                result += unit;
        } else if (unit != L'\n') {
            result += unit;
            isAfterBlank = false;
        }
    }
    return result;
}

inline String ReferenceHtmlToText(const String& html, HtmlTags tags) {
    String text = clsRegEx(L"<!--.*?-->", 518).GSub(html, String());
    text.ReplaceText(L"\r\n", L"\r");
    const std::wstring plain = ReferenceTags(WideOf(ReferenceLinks(text)), tags == HtmlTags::kPlaceholders);
    String result = StringOf(ReferenceCleanUp(ReferenceDemask(plain)));
    result.ReplaceText(L"\r\r\r", L"\r\r");
    result.ReplaceText(L"\r\r\r\r", L"\r\r");
    return result;
}

} // namespace vxut::test
