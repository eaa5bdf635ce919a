#include "docinfo/readers/package_patterns.h"

#include "docinfo/readers/properties.h"
#include "encoding/charset.h"
#include "locale/date_forms.h"
#include "text/regex.h"

#include <span>
#include <string_view>
#include <vector>

namespace vxut {
namespace {

// Of all searches in one member together.
constexpr uint64_t kMostSearchMilliseconds = 300;

constexpr uint32_t kUngreedy = kRegExDotAll | kRegExUngreedy;

// A pattern and where its value goes: a text or a time.
struct Row {
    const wchar_t* pattern;
    clsVariant clsDocu::* text;
    SYSTEMTIME clsDocu::* time = nullptr;
};

constexpr Row kCoreRows[] = {
    {L"<(dc:creator)[^>]*>(.*?)</\\1>", &clsDocu::Author},
    {L"<(dcterms:created)[^>]*>(.*?)</\\1>", nullptr, &clsDocu::Created},
    {L"<(dcterms:modified)[^>]*>(.*?)</\\1>", nullptr, &clsDocu::Modified},
    {L"<(cp:lastModifiedBy)[^>]*>(.*?)</\\1>", &clsDocu::LastAuthor},
    {L"<(dc:title)[^>]*>(.*?)</\\1>", &clsDocu::Title},
    {L"<(dc:subject)[^>]*>(.*?)</\\1>", &clsDocu::Subject},
    {L"<(cp:keywords)[^>]*>(.*?)</\\1>", &clsDocu::Keywords},
    {L"<(dc:description)[^>]*>(.*?)</\\1>", &clsDocu::Comments},
};

// With the ungreedy option "?" makes a group greedy: a value reaches to the last end of its element.
constexpr Row kOpenDocumentRows[] = {
    {L"<meta:initial-creator>(.*?)</meta:initial-creator>", &clsDocu::Author},
    {L"<meta:creation-date>(.*?)</meta:creation-date>", nullptr, &clsDocu::Created},
    {L"<dc:creator>(.*?)</dc:creator>", &clsDocu::LastAuthor},
    {L"<dc:title>(.*?)</dc:title>", &clsDocu::Title},
    {L"<dc:subject>(.*?)</dc:subject>", &clsDocu::Subject},
    {L"<dc:description>(.*?)</dc:description>", &clsDocu::Comments},
    {L"<dc:date>(.*?)</dc:date>", nullptr, &clsDocu::Modified},
};

constexpr wchar_t kEncodingPattern[] = L"<\\?xml.*\\sencoding=\"([-a-zA-Z0-9]*?)\".*\\?>";
constexpr wchar_t kCoreBody[] = L"<cp:coreProperties\\s+.*>(.*?)</cp:coreProperties>";
constexpr wchar_t kOpenDocumentBody[] =
    L"<office:document-meta.*>.*<office:meta.*>(.*?)</office:meta>.*</office:document-meta>";
constexpr wchar_t kKeywordList[] = L"<meta:keywords>(.*?)</meta:keywords>";
constexpr std::wstring_view kKeywordStart = L"<meta:keyword>";
constexpr std::wstring_view kKeywordEnd = L"</meta:keyword>";
constexpr wchar_t kKeywordSeparator[] = L", ";

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
        isUtf8_ = Search(kEncodingPattern, kRegExDotAll, text, 1, encoding) &&
                  _wcsicmp(encoding.Text(), L"UTF-8") == 0;
    }

    bool Search(const wchar_t* pattern, uint32_t options, const String& subject, int group, String& value) {
        clsRegExMatchList groups;
        if (!clsRegEx(pattern, options).Match(subject, &groups, budget_)) return false;
        value = groups.get(group).text;
        return true;
    }

    void ReadRows(std::span<const Row> rows, uint32_t options, int group, const String& body) {
        String value;
        for (const Row& row : rows) {
            if (!Search(row.pattern, options, body, group, value)) continue;
            if (row.text)
                SetText(document_.*row.text, Decode({value.Text(), static_cast<size_t>(value.Length())}));
            else
                ReadTime(document_.*row.time, value);
        }
    }

    void ReadKeywords(const String& body) {
        String list = body;
        const bool hasList = Search(kKeywordList, kRegExDotAll, body, 1, list);
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
    if (package.Search(kCoreBody, kUngreedy, text, 1, body))
        package.ReadRows(kCoreRows, kRegExDotAll, 2, body);
}

void ReadOpenDocumentProperties(clsDocu& document, const String& text) {
    Package package(document, text);
    String body;
    if (!package.Search(kOpenDocumentBody, kUngreedy, text, 1, body)) return;
    package.ReadRows(kOpenDocumentRows, kUngreedy, 1, body);
    package.ReadKeywords(body);
}

} // namespace vxut
