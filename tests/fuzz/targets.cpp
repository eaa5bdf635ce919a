#include "encoding/charset.h"
#include "encoding/html.h"
#include "encoding/zip_text.h"
#include "files/path.h"
#include "prof.h"
#include "target.h"
#include "tests/support/html_reference.h"
#include "text/regex.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <shlwapi.h>

#include <algorithm>

namespace fuzz {
namespace {

using namespace vxut;

// The bytes as 16-bit units, without an odd last byte.
String Wide(const uint8_t* data, size_t size) {
    String text;
    text.Append(reinterpret_cast<const wchar_t*>(data), static_cast<int64_t>(size / sizeof(wchar_t)));
    return text;
}

String Latin(const uint8_t* data, size_t size) {
    return clsCHARString(reinterpret_cast<const char*>(data), static_cast<int64_t>(size)).ToString(0);
}

int CALLBACK ReadEntry(HPROF job, const wchar_t* name, const wchar_t* value, HPROFLIST, void* list) {
    auto* parent = static_cast<HPROFLIST>(list);
    int32_t number = 0;
    RECT rectangle = {};
    const RECT none = {};
    COLORREF color = 0;
    wchar_t text[32];
    ProfGetIntW(job, parent, name, &number, 0);
    ProfGetRectW(job, parent, name, &rectangle, &none);
    ProfGetColorrefW(job, parent, name, &color, 0);
    ProfGetStringW(job, parent, name, text, 32, value);
    return 1;
}

// Loads a profile as a whole file or as a fragment, reads all entries, copies, deletes and saves.
void RunProfile(const uint8_t* data, size_t size) {
    IStream* stream = SHCreateMemStream(data, static_cast<UINT>(size));
    if (stream == nullptr) return;
    const uint32_t level = size > 0 && data[size - 1] == 'L' ? 2 : 0;
    HPROF job = ProfJobOpenStreamObjectW(stream, L"/", level);
    ProfEnumW(job, nullptr, ReadEntry, nullptr);
    ProfCopyList(job, nullptr, job, nullptr);
    ProfDeleteItemW(job, nullptr, L"List/Item");
    ProfDeleteListW(job, nullptr, L"List");
    IStream* target = SHCreateMemStream(nullptr, 0);
    ProfSaveToStream(job, target, 0);
    target->Release();
    ProfJobClose(job);
    stream->Release();
}

void RunCharset(const uint8_t* data, size_t size) {
    const String text = Wide(data, size);
    LikelyCharset(text.Text());
    DecodeUtf8String(Latin(data, size));
    clsCharsetConversionString narrow;
    narrow.Set(text.Narrow());
    narrow.GetWide();
}

// The first line is the pattern, the rest is the subject.
void RunPattern(const uint8_t* data, size_t size) {
    const String text = Latin(data, std::min<size_t>(size, 2000));
    const int64_t end = Find(text.Text(), L"\n");
    if (end < 0) return;
    const uint32_t options = static_cast<uint32_t>(data[0]) & 0x7F;
    const String subject = text.Mid(end + 1);
    clsRegEx expression(text.Left(end), options);
    clsRegExMatchList matches;
    expression.Match(subject, &matches);
    expression.GSub(subject, L"[\\1\\0\\\\]");
    expression.SplitGroups(subject);
}

void RunPath(const uint8_t* data, size_t size) {
    String path = Wide(data, size);
    String expanded;
    ExpandTokens(path, expanded);
    IsFileNameAllowed(path);
    FullName(path);
    BaseName(path);
    DeviceTest(path);
}

// Converts both ways. Short texts must agree with the plain passes; those are too slow for long ones.
void RunHtml(const uint8_t* data, size_t size) {
    constexpr int64_t kMostCompared = 200;
    const String text = Wide(data, size);
    for (const HtmlTags tags : {HtmlTags::kAngleBrackets, HtmlTags::kPlaceholders}) {
        const String plain = HtmlToText(text, tags);
        if (text.Length() <= kMostCompared && !(plain == test::ReferenceHtmlToText(text, tags)))
            __builtin_trap();
        if (HtmlToText(TextToHtml(plain, tags), tags).Length() > 8 * plain.Length() + 8) __builtin_trap();
    }
}

// Names of entries, which are encoded as they come.
void RunZipName(const uint8_t* data, size_t size) {
    const String text = Wide(data, std::min<size_t>(size, 2000));
    const String name = ZipName(text, String());
    if (Find(name.Text(), L"\\") >= 0) __builtin_trap();
    ZipBytes(name, !IsZipOemText(name));
}

} // namespace

const std::vector<Target>& Targets() {
    static const std::vector<Target> targets = {
        {"profile",
         RunProfile,
         {Utf16(
              L"[/]\r\n {\r\n Item=1\r\n [List]\r\n  {\r\n  Point=(1,2)\r\n  Text=a\u240Db\r\n  }\r\n }\r\n"),
          Bytes("[section]\r\nkey=value\r\n[next]\r\n;comment\r\n#too\r\ncolor=(1,2,3)\r\nhex=xFF\r\n"),
          Bytes("\xEF\xBB\xBF[/]\n{\nRect=(1,2,3,4)\n}\n"), Bytes("Item=1\n}\nL")},
         {Bytes("["), Bytes("]"), Bytes("{"), Bytes("}\n"), Bytes("="), Bytes("[/]\n"), Bytes("x%X"),
          Utf16(L"\r\n[List]\r\n"), Utf16(L"\r\n}\r\n"), Bytes("ZRzQ"), Bytes("<?xml version")}},
        {"charset",
         RunCharset,
         {Bytes("\xC3\xA4\xE2\x82\xAC"), Utf16(L"\u0391\u0416\u4E00")},
         {Bytes("\xF0\x9F\x98\x80")}},
        {"pattern",
         RunPattern,
         {Bytes("a(b)?c\nabcac"), Bytes("(a+)+$\naaaaaaaaaaaaaaaaaaaaaaaab"),
          Bytes("(?!x)[^a-f]*\\d{2,}\nzz12")},
         {Bytes("(?:"), Bytes("(?="), Bytes("\\b"), Bytes("*?"), Bytes("{1,9}"), Bytes("[^]"), Bytes("|")}},
        {"path",
         RunPath,
         {Utf16(L"C:\\a\\.\\b\\..\\c.txt"), Utf16(L"%WINDIR%\\%PERSONAL%\\x"), Utf16(L"FILE:LPT1:")},
         {Utf16(L"\\..\\"), Utf16(L"%"), Utf16(L"\\\\?\\"), Utf16(L"COM1:")}},
        {"html",
         RunHtml,
         {Utf16(L"<p>a &amp; b</p><a href=\"u\">t</a>x<a href=\"v\">v</a>"),
          Utf16(L"<!-- x --><ul><li>y</ul><script>z</script>[_[br]_]\r\n&#65;"),
          Utf16(L"\xAB\xBB&laquo;&nbsp; \r\r\r")},
         {Utf16(L"<a "), Utf16(L"href=\""), Utf16(L"\">"), Utf16(L"</a>"), Utf16(L"<!--"), Utf16(L"-->"),
          Utf16(L"&#x"), Utf16(L"</style>"), Utf16(L"<br>"), Utf16(L"[_["), Utf16(L"]_]"), Utf16(L"&amp;")}},
        {"zipname",
         RunZipName,
         {Utf16(L"C:\\a\\b.txt"), Utf16(L"\\\\server\\share\\x"), Utf16(L"\u65E5.txt")},
         {Utf16(L"\\\\"), Utf16(L"Z:"), Utf16(L"/"), Utf16(L"\xD800")}},
    };
    return targets;
}

} // namespace fuzz
