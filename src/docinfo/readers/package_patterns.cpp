#include "docinfo/readers/package_patterns.h"

#include "docinfo/readers/properties.h"
#include "encoding/charset.h"
#include "locale/date_forms.h"
#include "text/shared_regex.h"

#include <span>
#include <string_view>
#include <vector>

namespace vxut {
namespace {

// Of all searches in one member together.
constexpr uint64_t kMostSearchMilliseconds = 250;

constexpr uint32_t kUngreedy = kRegExDotAll | kRegExUngreedy;

// A pattern and where its value goes: a text or a time.
struct Row {
    clsSharedRegEx pattern;
    clsVariant clsDocu::* text;
    SYSTEMTIME clsDocu::* time = nullptr;
};

constinit Row coreRows[] = {
    {clsSharedRegEx(L"<(dc:creator)[^>]*>(.*?)</\\1>", kRegExDotAll), &clsDocu::Author},
    {clsSharedRegEx(L"<(dcterms:created)[^>]*>(.*?)</\\1>", kRegExDotAll), nullptr, &clsDocu::Created},
    {clsSharedRegEx(L"<(dcterms:modified)[^>]*>(.*?)</\\1>", kRegExDotAll), nullptr, &clsDocu::Modified},
    {clsSharedRegEx(L"<(cp:lastModifiedBy)[^>]*>(.*?)</\\1>", kRegExDotAll), &clsDocu::LastAuthor},
    {clsSharedRegEx(L"<(dc:title)[^>]*>(.*?)</\\1>", kRegExDotAll), &clsDocu::Title},
    {clsSharedRegEx(L"<(dc:subject)[^>]*>(.*?)</\\1>", kRegExDotAll), &clsDocu::Subject},
    {clsSharedRegEx(L"<(cp:keywords)[^>]*>(.*?)</\\1>", kRegExDotAll), &clsDocu::Keywords},
    {clsSharedRegEx(L"<(dc:description)[^>]*>(.*?)</\\1>", kRegExDotAll), &clsDocu::Comments},
};

// With the ungreedy option "?" makes a group greedy: a value reaches to the last end of its element.
constinit Row openDocumentRows[] = {
    {clsSharedRegEx(L"<meta:initial-creator>(.*?)</meta:initial-creator>", kUngreedy), &clsDocu::Author},
    {clsSharedRegEx(L"<meta:creation-date>(.*?)</meta:creation-date>", kUngreedy), nullptr,
     &clsDocu::Created},
    {clsSharedRegEx(L"<dc:creator>(.*?)</dc:creator>", kUngreedy), &clsDocu::LastAuthor},
    {clsSharedRegEx(L"<dc:title>(.*?)</dc:title>", kUngreedy), &clsDocu::Title},
    {clsSharedRegEx(L"<dc:subject>(.*?)</dc:subject>", kUngreedy), &clsDocu::Subject},
    {clsSharedRegEx(L"<dc:description>(.*?)</dc:description>", kUngreedy), &clsDocu::Comments},
    {clsSharedRegEx(L"<dc:date>(.*?)</dc:date>", kUngreedy), nullptr, &clsDocu::Modified},
};

constinit clsSharedRegEx encodingPattern(L"<\\?xml.*\\sencoding=\"([-a-zA-Z0-9]*?)\".*\\?>", kRegExDotAll);
constinit clsSharedRegEx coreBody(L"<cp:coreProperties\\s+.*>(.*?)</cp:coreProperties>", kUngreedy);
constinit clsSharedRegEx openDocumentBody(
    L"<office:document-meta.*>.*<office:meta.*>(.*?)</office:meta>.*</office:document-meta>", kUngreedy);
constinit clsSharedRegEx keywordList(L"<meta:keywords>(.*?)</meta:keywords>", kRegExDotAll);
constexpr std::wstring_view kKeywordStart = L"<meta:keyword>";
constexpr std::wstring_view kKeywordEnd = L"</meta:keyword>";
constexpr wchar_t kKeywordSeparator[] = L", ";

// The text up to the last end of an instruction. The pattern of the encoding matches nothing behind it, but
// would search there first.
String UpToLastInstruction(const String& text) {
    constexpr std::wstring_view kEnd = L"?>";
    const size_t end = std::wstring_view(text.Text(), static_cast<size_t>(text.Length())).rfind(kEnd);
    return end == std::wstring_view::npos ? String() : text.Left(static_cast<int64_t>(end + kEnd.size()));
}

// Takes the next keyword from what is left. There may be many: this takes time proportional to the text.
bool NextKeyword(std::wstring_view& rest, std::wstring_view& keyword) {
    const size_t start = rest.find(kKeywordStart);
    if (start == rest.npos) return false;
    rest.remove_prefix(start + kKeywordStart.size());
    const size_t end = rest.find(kKeywordEnd);
    if (end == rest.npos) return false;
    keyword = rest.substr(0, end);
    rest.remove_prefix(end + kKeywordEnd.size());
    return true;
}

// One member's text with what its searches have in common.
class Package {
public:
    Package(clsDocu& document, const String& text) : document_(document) {
        String encoding;
        isUtf8_ = Search(encodingPattern, UpToLastInstruction(text), 1, encoding) &&
                  _wcsicmp(encoding.Text(), L"UTF-8") == 0;
    }

    bool Search(clsSharedRegEx& pattern, const String& subject, int group, String& value) {
        clsRegExMatchList groups;
        if (!pattern.Match(subject, &groups, budget_)) return false;
        value = groups.get(group).text;
        return true;
    }

    void ReadRows(std::span<Row> rows, int group, const String& body) {
        String value;
        for (Row& row : rows) {
            if (!Search(row.pattern, body, group, value)) continue;
            if (row.text)
                SetText(document_.*row.text, Decode({value.Text(), static_cast<size_t>(value.Length())}));
            else
                ReadTime(document_.*row.time, value);
        }
    }

    void ReadKeywords(const String& body) {
        String list = body;
        const bool hasList = Search(keywordList, body, 1, list);
        std::wstring_view rest(list.Text(), static_cast<size_t>(list.Length()));
        std::wstring_view keyword;
        String all;
        int count = 0;
        for (; NextKeyword(rest, keyword); ++count) {
            if (count > 0) all += kKeywordSeparator;
            all += Decode(keyword);
        }
        if (hasList || count > 0) SetText(document_.Keywords, all);
    }

private:
    static void ReadTime(SYSTEMTIME& target, const String& value) {
        SYSTEMTIME time = EmptyTime();
        ParseIso8601Date(time, value);
        if (time.wYear != 0) target = time;
    }

    String Decode(std::wstring_view bytes) const {
        if (!isUtf8_) return AnsiText(std::vector<uint8_t>(bytes.begin(), bytes.end()));
        String text;
        text.Append(bytes.data(), static_cast<int64_t>(bytes.size()));
        return DecodeUtf8String(text);
    }

    clsDocu& document_;
    bool isUtf8_;
    clsMatchBudget budget_{kMostSearchMilliseconds};
};

} // namespace

void ReadCoreProperties(clsDocu& document, const String& text) {
    Package package(document, text);
    String body;
    if (package.Search(coreBody, text, 1, body)) package.ReadRows(coreRows, 2, body);
}

void ReadOpenDocumentProperties(clsDocu& document, const String& text) {
    Package package(document, text);
    String body;
    if (!package.Search(openDocumentBody, text, 1, body)) return;
    package.ReadRows(openDocumentRows, 1, body);
    package.ReadKeywords(body);
}

} // namespace vxut
