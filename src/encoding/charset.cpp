#include "encoding/charset.h"

#include "base/default_code_page.h"

#include <windows.h>

#include <bit>
#include <cwchar>

namespace vxut {
namespace {

struct CharsetRow {
    const wchar_t* name;
    uint32_t codePage;
};
// Searched from the top: the second row of a name is never reached. "windows-1252" and "us-ascii" have no
// row, so that callers get their fallback. Callers rely on both.
constexpr CharsetRow kCharsets[] = {
    {L"windows-1250", 1250},
    {L"windows-1251", 1251},
    {L"windows-1253", 1253},
    {L"windows-1254", 1254},
    {L"windows-1255", 1255},
    {L"windows-1256", 1256},
    {L"windows-1257", 1257},
    {L"windows-1258", 1258},
    {L"iso-8859-1", 1252},
    {L"iso-8859-1", 28591},
    {L"iso-8859-2", 28592},
    {L"iso-8859-3", 28593},
    {L"iso-8859-4", 28594},
    {L"iso-8859-5", 28595},
    {L"iso-8859-6", 28596},
    {L"iso-8859-7", 28597},
    {L"iso-8859-8", 28598},
    {L"unicode", 1200},
    {L"unicodeFEFF", 1201},
    {L"utf-7", 65000},
    {L"utf-8", 65001},
    {L"iso-2022-jp", 50220},
    {L"iso-2022-jp", 50222},
    {L"iso-2022-kr", 50225},
    {L"DIN_66003", 20106},
    {L"NS_4551-1", 20108},
    {L"SEN_850200_B", 20107},
    {L"_autodetect", 50932},
    {L"_autodetect_kr", 50949},
    {L"big5", 950},
    {L"csISO2022JP", 50221},
    {L"euc-kr", 51949},
    {L"gb2312", 936},
    {L"hz-gb-2312", 52936},
    {L"ibm852", 852},
    {L"ibm866", 866},
    {L"irv", 20105},
    {L"koi8-r", 20866},
    {L"ks_c_5601", 949},
    {L"shift-jis", 932},
    {L"windows-874", 874},
    {L"x-euc", 51932},
    {L"x-user-defined", 50000},
};

// Scripts as bits. Ideographs have three bits, so that they always count as several scripts.
constexpr uint32_t kJapanese = 0x01;
constexpr uint32_t kIdeographs = 0x07;
constexpr uint32_t kKorean = 0x08;
constexpr uint32_t kThai = 0x10;
constexpr uint32_t kGreek = 0x20;
constexpr uint32_t kCyrillic = 0x40;
constexpr uint32_t kArabic = 0x80;
constexpr uint32_t kHebrew = 0x100;

struct ScriptRange {
    wchar_t first;
    wchar_t last;
    uint32_t script;
};
constexpr ScriptRange kScriptRanges[] = {
    {0x0370, 0x03FF, kGreek},    {0x0400, 0x052F, kCyrillic}, {0x0590, 0x05FF, kHebrew},
    {0x0600, 0x06FF, kArabic},   {0x0E00, 0x0E7F, kThai},     {0x1100, 0x11FF, kKorean},
    {0x1F00, 0x1FFF, kGreek},    {0x3040, 0x30FF, kJapanese}, {0x3130, 0x318F, kKorean},
    {0x3300, 0x3357, kJapanese}, {0x3400, 0x4DFF, kKorean},   {0x4E00, 0x9FAF, kIdeographs},
    {0xAC00, 0xD7A3, kKorean},   {0xFE70, 0xFEFF, kArabic},
};

struct CharsetOf {
    uint32_t key;
    uint32_t charset;
};
constexpr CharsetOf kCharsetOfScript[] = {
    {kGreek, GREEK_CHARSET},       {kCyrillic, RUSSIAN_CHARSET}, {kHebrew, HEBREW_CHARSET},
    {kArabic, ARABIC_CHARSET},     {kThai, THAI_CHARSET},        {kKorean, HANGEUL_CHARSET},
    {kJapanese, SHIFTJIS_CHARSET},
};
constexpr CharsetOf kCharsetOfCodePage[] = {
    {932, SHIFTJIS_CHARSET}, {936, GB2312_CHARSET}, {949, HANGEUL_CHARSET}, {950, CHINESEBIG5_CHARSET}};

uint32_t ScriptOf(wchar_t unit) {
    for (const ScriptRange& range : kScriptRanges) {
        if (unit < range.first) break;
        if (unit <= range.last) return range.script;
    }
    return 0;
}

template <size_t N>
uint32_t LookUp(const CharsetOf (&rows)[N], uint32_t key) {
    for (const CharsetOf& row : rows)
        if (row.key == key) return row.charset;
    return 0;
}

// The message that is returned in place of a text that cannot be decoded.
const wchar_t* FaultText(Utf8Fault fault) {
    switch (fault) {
        case Utf8Fault::kEncoding:
            return L"invalid UTF-8 encoding!";
        case Utf8Fault::kTooWide:
            return L"UCS-4 not supported!";
        default:
            return L"invalid UTF-8 sequence found!";
    }
}

} // namespace

uint32_t CodePageOfCharset(const String& name, uint32_t fallback) {
    for (const CharsetRow& row : kCharsets)
        if (_wcsicmp(row.name, name.Text()) == 0) return row.codePage;
    return fallback;
}

String DecodeUtf8String(const String& bytes) {
    String result;
    wchar_t* const target = result.GetBuffer(bytes.Length());
    int64_t length = 0;
    for (int64_t i = 0; i < bytes.Length();) {
        if (!(bytes[i] & 0x80)) {
            target[length++] = bytes[i++];
            continue;
        }
        const scUtf8Unit read = ReadUtf8Unit([&](int step) { return static_cast<uint8_t>(bytes[i + step]); });
        if (read.fault != Utf8Fault::kNone) return FaultText(read.fault);
        target[length++] = read.unit;
        i += read.length;
    }
    result.SetLength(length);
    return result;
}

uint32_t LikelyCharset(const wchar_t* text) {
    uint32_t scripts = 0;
    for (; text && *text; ++text) scripts |= ScriptOf(*text);
    return std::popcount(scripts) > 1 ? LookUp(kCharsetOfCodePage, DefaultCodePage())
                                      : LookUp(kCharsetOfScript, scripts);
}

} // namespace vxut
