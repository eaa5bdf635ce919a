#include "binary_document_targets.h"
#include "crash_targets.h"
#include "encoding/charset.h"
#include "encoding/deflate.h"
#include "encoding/html.h"
#include "encoding/pack_file.h"
#include "encoding/text_encoding.h"
#include "encoding/zip_text.h"
#include "files/find_files.h"
#include "files/path.h"
#include "files/temp_sweep.h"
#include "locale/compact_date.h"
#include "locale/country_lookup.h"
#include "locale/country_resource.h"
#include "locale/date.h"
#include "locale/date_forms.h"
#include "locale/date_text.h"
#include "locale/system_time.h"
#include "locale/time_stamp.h"
#include "net/download.h"
#include "net/http_answer.h"
#include "prof.h"
#include "target.h"
#include "tests/support/html_reference.h"
#include "text/regex.h"
#include "text_document_targets.h"
#include "variant/variant.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <shlwapi.h>

#include <algorithm>
#include <cstring>
#include <utility>

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

// Units without a byte order mark.
Input Units(const std::wstring& text) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
    return {bytes, bytes + text.size() * sizeof(wchar_t)};
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
    for (const uint32_t format : {PROF_FORMAT_TEXT, PROF_FORMAT_XML, PROF_FORMAT_XFDF})
        ProfSaveToStream(job, target, format);
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

// Loads a variant, uses it in every way, and saves it: the same bytes load the same value.
void RunVariant(const uint8_t* data, size_t size) {
    clsVariant value;
    if (FAILED(value.LoadBytes({data, size}))) return;
    clsVariant copy = value;
    String text;
    copy.ToString(text);
    copy.ToDouble();
    clsVariant other;
    other.vt = VT_R8;
    other.dblVal = 1;
    value.Compare(copy);
    value.Compare(other);
    const int32_t index = 0;
    value.GetArrayElement(other, &index, 1);
    for (const VARTYPE type : {VT_BSTR, VT_I4, VT_R8, VT_DATE}) clsVariant(value).ChangeType(type);
    IStream* stream = SHCreateMemStream(nullptr, 0);
    if (stream == nullptr) return;
    value.Save(*stream);
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    copy.Load(*stream);
    stream->Release();
    if (copy.vt != value.vt) __builtin_trap();
}

// Decodes text without and with a password, and the bytes themselves after a round trip.
void RunDecode(const uint8_t* data, size_t size) {
    const String text =
        size > 1 && data[0] == 0xFF && data[1] == 0xFE ? Wide(data + 2, size - 2) : Latin(data, size);
    const std::wstring_view units(text.Text(), static_cast<size_t>(text.Length()));
    scByteBlock block;
    DecodeText(units, String(), block);
    DecodeText(units, L"password", block);
    const String encoded = EncodeBytes({data, size}, size % 2 == 1);
    DecodeText({encoded.Text(), static_cast<size_t>(encoded.Length())}, String(), block);
    if (!std::ranges::equal(block.Bytes(), std::span(data, size))) __builtin_trap();
}

// The bytes as a packed profile; and packed themselves, so that mutations reach the form inside.
void RunPacked(const uint8_t* data, size_t size) {
    for (const bool packs : {false, true}) {
        IStream* const stream = SHCreateMemStream(nullptr, 0);
        if (stream == nullptr) return;
        {
            clsFile image(stream);
            image.Write("ZRzQ", 4);
            clsFile source(SHCreateMemStream(data, static_cast<UINT>(size)));
            source.Stream()->Release(); // the file holds the reference from now on
            if (packs)
                UtilPackFile(image, source, kDeflateFast, nullptr, kToEnd);
            else
                image.Write(data, static_cast<int64_t>(size));
        }
        ProfJobClose(ProfJobOpenStream(stream));
        stream->Release();
    }
}

Input PackedSeed(const std::string& profile) {
    clsFile source(
        SHCreateMemStream(reinterpret_cast<const BYTE*>(profile.data()), static_cast<UINT>(profile.size())));
    clsFile packed(SHCreateMemStream(nullptr, 0));
    source.Stream()->Release();
    packed.Stream()->Release();
    UtilPackFile(packed, source, kDeflateProfiles, nullptr, kToEnd);
    Input seed(static_cast<size_t>(packed.GetSize()));
    packed.SetPosition(0);
    packed.Read(seed.data(), static_cast<int64_t>(seed.size()));
    return seed;
}

Input EncodedSeed(const std::string& bytes) {
    return Bytes(EncodeBytes({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()}, true).Narrow());
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

// The number of names that a pattern matches.
int CountOf(const std::wstring& pattern) {
    int count = 0;
    ForEachFound(pattern.c_str(), [&](const WIN32_FIND_DATAW&) { ++count; });
    return count;
}

// Extracts the files of a profile into a folder of a folder, and reads all values as variants. Nothing may
// appear beside the folder or in the current one.
void RunEmbedded(const uint8_t* data, size_t size) {
    static const std::wstring outer = [] {
        const String name =
            TempDirectory(true) + L"vxut-fuzz-" + std::to_wstring(GetCurrentProcessId()).c_str();
        CreateDirectoryW(name.Text(), nullptr);
        return std::wstring(name.Text());
    }();
    static const int names = CountOf(L"*");
    const std::wstring folder = outer + L"\\out";
    IStream* stream = SHCreateMemStream(data, static_cast<UINT>(size));
    if (stream == nullptr) return;
    HPROF job = ProfJobOpenStream(stream);
    stream->Release();
    ProfEnumW(
        job, nullptr,
        [](HPROF, const wchar_t*, const wchar_t* value, HPROFLIST, void*) {
            clsVariant variant;
            return ProfGetVariantFromContents(value, &variant) == PROF_OK ? 1 : 0;
        },
        nullptr);
    ProfExtractFilesW(job, nullptr, folder.c_str(), nullptr);
    ProfExtractFilesW(job, nullptr, folder.c_str(), L"password");
    ProfJobClose(job);
    ForEachFound((folder + L"\\*").c_str(), [&](const WIN32_FIND_DATAW& found) {
        DeleteFileW((folder + L"\\" + found.cFileName).c_str());
    });
    if (CountOf(folder + L"\\*") > 2) __builtin_trap(); // "." and ".." only: no folder was made inside
    if (CountOf(outer + L"\\*") > 3) __builtin_trap();
    if (CountOf(L"*") > names) __builtin_trap();
}

// A profile with one embedded file and one variant.
Input EmbeddedSeed(const wchar_t* name, const wchar_t* contents) {
    return Utf16(std::wstring(L"[/]\r\n{\r\nvalue=var://AwABAAAA\r\n[File.Entry]\r\n{\r\nName=") + name +
                 L"\r\nContents=" + contents + L"\r\n}\r\n}\r\n");
}

// Names of entries, which are encoded as they come.
void RunZipName(const uint8_t* data, size_t size) {
    const String text = Wide(data, std::min<size_t>(size, 2000));
    const String name = ZipName(text, String());
    if (Find(name.Text(), L"\\") >= 0) __builtin_trap();
    ZipBytes(name, !IsZipOemText(name));
}

// A file of any name and time: signs of activity and files that are not old enough are never swept.
void RunTempSweep(const uint8_t* data, size_t size) {
    FILETIME written;
    if (size < sizeof written) return;
    std::memcpy(&written, data, sizeof written);
    const String name = Wide(data + sizeof written, std::min<size_t>(size - sizeof written, 2000));
    constexpr SYSTEMTIME kLimit = {2026, 3, 0, 1, 0, 0, 0, 0};
    if (!IsSweepable(name, written, kLimit)) return;
    FILETIME limit;
    SystemTimeToFileTime(&kLimit, &limit);
    const bool isConvertible = static_cast<int32_t>(written.dwHighDateTime) >= 0;
    if (isConvertible && CompareFileTime(&written, &limit) >= 0) __builtin_trap();
    if (name.Length() >= 7 && _wcsicmp(name.Text() + name.Length() - 7, L".signal") == 0) __builtin_trap();
}

// Whatever is read as a date of a locale exists, and is the same date when it has been written.
void RunDate(const uint8_t* data, size_t size) {
    const String text = Wide(data, std::min<size_t>(size, 2000));
    for (const uint32_t locale : {0x407u, 0x409u, 0x411u}) {
        for (const uint32_t flags : {0u, 3u}) {
            SYSTEMTIME time;
            if (ParseDateText(locale, text, time, flags) != kDateOk) continue;
            SYSTEMTIME again = time;
            if (!clsDate(time.wYear, time.wMonth, time.wDay).IsValid() || time.wHour > 23 ||
                time.wMinute > 59)
                __builtin_trap();
            // Earlier years are written with two digits or not at all by some locales.
            if (time.wYear < 1601 || time.wYear > 9999) continue;
            if (ParseDateText(locale, DateText(locale, &time), again, 0) != kDateOk ||
                again.wDay != time.wDay || again.wMonth != time.wMonth || again.wYear != time.wYear)
                __builtin_trap();
        }
    }
    DateText(LOCALE_USER_DEFAULT, nullptr);
    const SYSTEMTIME compact = ParseCompactDate(text);
    DateText(0x407, &compact);
    TimeStampText(ParseAnyDate(text));
    SYSTEMTIME time = EmptyTime();
    ParseInternetDate(time, text);
    ParseIso8601Date(time, text);
    AddMilliseconds(time, static_cast<int64_t>(size) << 40);
}

std::vector<Target> WithDocuments(std::vector<Target> targets) {
    for (auto make : {TextDocumentTargets, BinaryDocumentTargets})
        for (Target& target : make()) targets.push_back(std::move(target));
    return targets;
}

// The text as a key, a tag, and a row of the string resources.
void RunCountry(const uint8_t* data, size_t size) {
    static clsCountryLookup route(HostKind::kRoute);
    static clsCountryLookup other(HostKind::kOther);
    const String text = Wide(data, size);
    for (clsCountryLookup* lookup : {&route, &other}) {
        lookup->Locale(text);
        lookup->Iso(text);
        lookup->Name(text);
        if (lookup->LanguageNumber(text) > UINT16_MAX) __builtin_trap();
    }
    const scCountryRow row = ParseCountryRow(text);
    if (row.iso.Length() + row.englishName.Length() + row.car.Length() > text.Length()) __builtin_trap();
    scCountryFacts facts;
    AddDetails(facts, text);
    for (const auto& entry : facts.countryToCurrency)
        if (entry.value.IsEmpty() || entry.value[0] == L'?') __builtin_trap();
}

// The first unit is the status; the rest is the head of an answer, and a URL.
void RunHttp(const uint8_t* data, size_t size) {
    const String text = Wide(data, size);
    if (JudgeAnswer(static_cast<uint32_t>(text[0]), text.Mid(1).Text()).announcedBytes < -1) __builtin_trap();
    const String extension = ExtensionOfUrl(text);
    if (!extension.IsEmpty() && (extension[0] != L'.' || extension.Length() > 30)) __builtin_trap();
}

} // namespace

const std::vector<Target>& Targets() {
    static const std::vector<Target> targets = WithDocuments({
        {"profile",
         RunProfile,
         {Utf16(
              L"[/]\r\n {\r\n Item=1\r\n [List]\r\n  {\r\n  Point=(1,2)\r\n  Text=a\u240Db\r\n  }\r\n }\r\n"),
          Bytes("[section]\r\nkey=value\r\n[next]\r\n;comment\r\n#too\r\ncolor=(1,2,3)\r\nhex=xFF\r\n"),
          Bytes("\xEF\xBB\xBF[/]\n{\nRect=(1,2,3,4)\n}\n"), Bytes("Item=1\n}\nL"),
          Utf16(L"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"yes\"?>\r\n<!-- DATA "
                L"-->\r\n<profile>\r\n"
                L" <item name=\"a&lt;\">1&cr;&#x001f;</item>\r\n <list name=\"List\">\r\n"
                L"  <item name=\"Item\">(1,2)</item>\r\n </list>\r\n</profile>\r\n"),
          Bytes("<\n<xfdf >\n<field>name=\"a\"\n<field>name=\"b\"\n<value>&#65;\n2</value>\n</field>\n"),
          Bytes("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<fields>\n<field "
                "name=\"a\">\n<value>1</value>\n")},
         {Bytes("["),
          Bytes("]"),
          Bytes("{"),
          Bytes("}\n"),
          Bytes("="),
          Bytes("[/]\n"),
          Bytes("x%X"),
          Utf16(L"\r\n[List]\r\n"),
          Utf16(L"\r\n}\r\n"),
          Bytes("ZRzQ"),
          Bytes("<?xml version"),
          Bytes("<profile>\n"),
          Bytes("<item name=\""),
          Bytes("</item>"),
          Bytes("<list name=\""),
          Bytes("</list>\n"),
          Bytes("<xfdf \n"),
          Bytes("<field>name=\""),
          Bytes("<value>"),
          Bytes("</value>"),
          Bytes("&#x"),
          Bytes("&cr;"),
          Bytes("<!-- "),
          Bytes(" -->")}},
        {"charset",
         RunCharset,
         {Bytes("\xC3\xA4\xE2\x82\xAC"), Utf16(L"\u0391\u0416\u4E00")},
         {Bytes("\xF0\x9F\x98\x80")}},
        {"decode",
         RunDecode,
         {Bytes("QUJDREVGR0g="), EncodedSeed(std::string(300, 'a')), Bytes("@1@ZAAAAHjaS0ykPQAA1j4l5Q=="),
          Utf16(L"QUJD\r\nREVG\r\nR0g=")},
         {Bytes("="), Bytes("@2@"), Bytes("@1@"), Bytes("\r\n"), Bytes("QzR_Packed")}},
        {"packed",
         RunPacked,
         {PackedSeed("[/]\n{\na=1\n}\n"), PackedSeed("[one]\nx=1\n"), Bytes("[/]\n{\na=1\n}\n")},
         {Bytes("ZRzQ"), Bytes("[/]\n"), Bytes("}\n")}},
        {"pattern",
         RunPattern,
         {Bytes("a(b)?c\nabcac"), Bytes("(a+)+$\naaaaaaaaaaaaaaaaaaaaaaaab"),
          Bytes("(?!x)[^a-f]*\\d{2,}\nzz12")},
         {Bytes("(?:"), Bytes("(?="), Bytes("\\b"), Bytes("*?"), Bytes("{1,9}"), Bytes("[^]"), Bytes("|")}},
        {"path",
         RunPath,
         {Utf16(L"C:\\a\\.\\b\\..\\c.txt"), Utf16(L"%WINDIR%\\%PERSONAL%\\x"), Utf16(L"FILE:LPT1:")},
         {Utf16(L"\\..\\"), Utf16(L"%"), Utf16(L"\\\\?\\"), Utf16(L"COM1:")}},
        {"variant",
         RunVariant,
         {Input{8, 0, '1', 0, '2', 0}, Input{3, 0, 1, 2, 3, 4}, Input{5, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F},
          Input{64, 0, 1, 2}, Input{72, 0, 1, 2, 3, 4}},
         {Input{7, 0}, Input{6, 0}, Input{14, 0}, Input{20, 0}, Input{12, 0x40}, Input{8, 0x20}}},
        {"embedded",
         RunEmbedded,
         {EmbeddedSeed(L"a.txt", L"aGVsbG8="), EmbeddedSeed(L"..\\x", L"@2@AAAA"),
          EmbeddedSeed(L"nul.txt", L"aGVsbG8gd29ybGQgaGVsbG8="), EmbeddedSeed(L"C:x", L"")},
         {Utf16(L"\r\n[File.Entry]\r\n{\r\nName="), Utf16(L"\r\nContents="), Utf16(L"..\\"), Utf16(L"../"),
          Utf16(L"\\\\?\\"), Utf16(L":"), Utf16(L"con"), Utf16(L"lpt1"), Utf16(L"var://"), Utf16(L"@2@"),
          Utf16(L". ")}},
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
        {"date",
         RunDate,
         {Units(L"13.11.2026 16:30:05"), Units(L"11/13/26, 4:30 PM"), Units(L"2026-11-13T16:30:00+01:00"),
          Units(L"Fri, 13 Nov 2026 16:30:00 +0100"), Units(L"20261113163000"),
          Units(L"24 Dec 1999 \x2010 23:59")},
         {Units(L"."), Units(L"/"), Units(L":"), Units(L"T"), Units(L"\x2212"), Units(L"PM"), Units(L" nov "),
          Units(L"GMT"), Units(L"2026")}},
        {"country",
         RunCountry,
         {Utf16(L"de-DE"), Utf16(L"0x0407"), Utf16(L"AD=Andorra=AND"),
          Utf16(L"Cyprus*1055:NativeName=K;CallingCode=357;ISO3166=CY/"
                L"CYP;LanguageCode=tr-cy;Currency=?;ANSICP=1254")},
         {Utf16(L"*"), Utf16(L";"), Utf16(L"="), Utf16(L":"), Utf16(L"?"), Utf16(L"/"), Utf16(L"Latn-"),
          Utf16(L"Currency=")}},
        {"http",
         RunHttp,
         {Utf16(L"\xC8HTTP/1.1 200 OK\r\nContent-Length: 12\r\nContent-Encoding: identity\r\n"),
          Utf16(L"http://host/folder/file.txt?query#part")},
         {Utf16(L"\r\n"), Utf16(L"Transfer-Encoding: "), Utf16(L"chunked"), Utf16(L"://"), Utf16(L"."),
          Utf16(L"?")}},
        ArchiveTarget(),
        DumpTarget(),
        LineLayoutTarget(),
        {"tempsweep",
         RunTempSweep,
         {Units(L"\x4000\xE2C1\x0EA9\x01DC_21_x.tmp"), Units(L"\x1\x1\x1\xFFFF_21_a.SIGNAL")},
         {Units(L".signal"), Units(L"_21_"), Units(L"."), Units(L"\\")}},
    });
    return targets;
}

} // namespace fuzz
