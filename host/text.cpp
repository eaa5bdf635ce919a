#include "host/text.h"

#include "host/command.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace vlm {

namespace {

struct CodePageName {
    const wchar_t* name;
    UINT (*codePage)();
};
constexpr CodePageName kCodePageNames[] = {
    {L"utf-8", [] { return UINT{CP_UTF8}; }},
    {L"utf8", [] { return UINT{CP_UTF8}; }},
    {L"ansi", [] { return GetACP(); }},
    {L"oem", [] { return GetOEMCP(); }},
};
constexpr const wchar_t* kCodePagePrefixes[] = {L"windows-", L"cp", L"ibm", L""};

UINT NumberBehindPrefix(const std::wstring& name, const wchar_t* prefix) {
    const size_t length = std::wcslen(prefix);
    if (_wcsnicmp(name.c_str(), prefix, length) != 0) return 0;
    const std::wstring digits = name.substr(length);
    const bool isNumber = !digits.empty() && digits.size() <= 5 &&
                          digits.find_first_not_of(L"0123456789") == std::wstring::npos;
    return isNumber ? static_cast<UINT>(std::wcstoul(digits.c_str(), nullptr, 10)) : 0;
}

UINT CodePageNumber(const std::wstring& name) {
    for (const CodePageName& row : kCodePageNames)
        if (_wcsicmp(name.c_str(), row.name) == 0) return row.codePage();
    for (const wchar_t* prefix : kCodePagePrefixes)
        if (const UINT number = NumberBehindPrefix(name, prefix)) return number;
    return 0;
}

struct UnitRange {
    wchar_t first;
    wchar_t last;
};
// Characters that cannot be seen, or that change the direction of what follows.
constexpr UnitRange kInvisible[] = {
    {0x0080, 0x009F}, {0x00AD, 0x00AD}, {0x061C, 0x061C}, {0x180E, 0x180E}, {0x200B, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB},
};

bool NeedsEscape(wchar_t unit) {
    return std::any_of(std::begin(kInvisible), std::end(kInvisible),
                       [&](const UnitRange& range) { return unit >= range.first && unit <= range.last; });
}

} // namespace

std::string BytesOf(std::wstring_view text, UINT codePage) {
    if (text.empty()) return {};
    const auto convert = [&](char* bytes, int capacity) {
        return WideCharToMultiByte(codePage, 0, text.data(), static_cast<int>(text.size()), bytes, capacity,
                                   nullptr, nullptr);
    };
    std::string bytes(convert(nullptr, 0), '\0');
    convert(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

std::wstring WideOf(std::string_view bytes, UINT codePage) {
    if (bytes.empty()) return {};
    const auto convert = [&](wchar_t* text, int capacity) {
        return MultiByteToWideChar(codePage, 0, bytes.data(), static_cast<int>(bytes.size()), text, capacity);
    };
    std::wstring text(convert(nullptr, 0), L'\0');
    convert(text.data(), static_cast<int>(text.size()));
    return text;
}

bool IsStrictUtf8(std::string_view bytes) {
    return bytes.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                                static_cast<int>(bytes.size()), nullptr, 0) != 0;
}

std::wstring Visible(std::wstring_view text) {
    constexpr wchar_t kControlPictures = 0x2400;
    constexpr wchar_t kDeletePicture = 0x2421;
    std::wstring visible;
    visible.reserve(text.size());
    for (const wchar_t unit : text) {
        if (unit < 0x20) {
            visible += static_cast<wchar_t>(kControlPictures + unit);
        } else if (unit == 0x7F) {
            visible += kDeletePicture;
        } else if (NeedsEscape(unit)) {
            wchar_t escape[8];
            _snwprintf(escape, std::size(escape), L"\\u%04X", unit);
            visible += escape;
        } else {
            visible += unit;
        }
    }
    return visible;
}

UINT CodePageNamed(const std::wstring& name) {
    const UINT number = CodePageNumber(name);
    if (number == 0 || !IsValidCodePage(number)) FailUsage(L"unknown code page: " + name);
    return number;
}

std::wstring SystemMessage(DWORD error) {
    wchar_t buffer[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        error, 0, buffer, static_cast<DWORD>(std::size(buffer)), nullptr);
    std::wstring message(buffer, length);
    message.erase(message.find_last_not_of(L"\r\n. ") + 1);
    return message.empty() ? L"error " + std::to_wstring(error) : message;
}

} // namespace vlm
