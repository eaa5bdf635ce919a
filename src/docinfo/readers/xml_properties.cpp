// Loose XML files: the properties of a flat package, else the block of a web page that an office program
// wrote.
#include "base/com_initialize.h"
#include "base/debug.h"
#include "docinfo/readers/bounded_stream.h"
#include "docinfo/readers/head_text.h"
#include "docinfo/readers/html_references.h"
#include "docinfo/readers/named_property.h"
#include "docinfo/readers/parser_memory.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "docinfo/readers/xml_lite.h"
#include "locale/date_forms.h"
#include "text/shared_regex.h"

#include <vector>

namespace vxut {
namespace {

// A document this deep or with its properties behind so much else is not read to its end. The parser is the
// system's: only what it is fed bounds its time.
constexpr size_t kMostDepth = 256;
constexpr int64_t kMostBytes = int64_t{8} * 1024 * 1024;
constexpr uint64_t kMostMilliseconds = 150;
constexpr uint64_t kMostFallbackMilliseconds = 150;
constexpr int kSpins = 16; // of a wait that has not yet begun to sleep
constexpr DWORD kWaitMilliseconds = 1;
constexpr int kMostWaits = 300;

constexpr wchar_t kCoreProperties[] = L"cp:coreProperties";
constexpr wchar_t kKeywordList[] = L"meta:keywords";
constexpr wchar_t kKeywordSeparator[] = L", ";
constinit clsSharedRegEx officeBlock(L"<o:DocumentProperties>(.*)</o:DocumentProperties>",
                                     kRegExCaseless | kRegExDotAll | kRegExUngreedy);

constexpr scNamedProperty kProperties[] = {
    {L"dc:title", &clsDocu::Title},
    {L"dc:subject", &clsDocu::Subject},
    {L"dc:creator", &clsDocu::Author},
    {L"meta:initial-creator", &clsDocu::Author},
    {L"dcterms:created", nullptr, &clsDocu::Created},
    {L"meta:creation-date", nullptr, &clsDocu::Created},
    {L"dcterms:modified", nullptr, &clsDocu::Modified},
    {L"dc:date", nullptr, &clsDocu::Modified},
    {L"cp:lastModifiedBy", &clsDocu::LastAuthor},
    {L"cp:keywords", &clsDocu::Keywords},
    {L"meta:keyword", &clsDocu::Keywords},
    {L"dc:description", &clsDocu::Comments},
};

// Reports a failed call. Returns whether it succeeded.
bool Check(HRESULT result, const wchar_t* report) {
    if (FAILED(result)) DebugWrite(report, String::FromError(static_cast<DWORD>(result)).Text());
    return SUCCEEDED(result);
}

// Walks the nodes of a file.
class Walk {
public:
    Walk(clsDocu& document, IXmlReader& reader, clsBoundedStream& stream)
        : document_(document), reader_(reader), stream_(stream) {}

    // Returns whether there were properties.
    bool Run() {
        while (!reader_.IsEOF() && !stream_.IsOver()) {
            XmlNodeType type = XmlNodeType_None;
            const HRESULT result = reader_.Read(&type);
            if (result == E_PENDING) {
                if (!Wait()) break;
                continue;
            }
            waits_ = 0;
            if (!Check(result, L"ERR: read() returned %s") || result == S_FALSE || !Take(type)) break;
        }
        return hasFound_;
    }

private:
    // Each returns false to end the walk.
    bool Take(XmlNodeType type) {
        if (type == XmlNodeType_Element) return Push();
        // Also for elements that were not pushed: callers rely on it.
        if (type == XmlNodeType_EndElement && !names_.empty()) names_.pop_back();
        return type != XmlNodeType_Text || names_.size() < 3 || TakeText();
    }

    bool Push() {
        const wchar_t* prefix = nullptr;
        const wchar_t* name = nullptr;
        if (!Check(reader_.GetPrefix(&prefix, nullptr), L"Error getting prefix, error is %s")) return false;
        if (!Check(reader_.GetLocalName(&name, nullptr), L"Error getting local name, error is %s"))
            return false;
        if (reader_.IsEmptyElement() || !prefix || !*prefix) return true;
        names_.emplace_back(prefix);
        names_.back() += L':';
        names_.back() += name;
        return names_.size() < kMostDepth;
    }

    // The name of an open element; 0 is the innermost.
    const String& Name(size_t index) const { return names_[names_.size() - 1 - index]; }

    bool TakeText() {
        const bool isProperty = Name(1) == kCoreProperties;
        const bool isKeyword = Name(1) == kKeywordList && Name(2) == kCoreProperties;
        if (!isProperty && !isKeyword) return true;
        if (isProperty) hasFound_ = true;
        const wchar_t* units = nullptr;
        if (!Check(reader_.GetValue(&units, nullptr), L"Error getting value, error is %s")) return false;
        const String value(units);
        if (isProperty)
            Store(value);
        else
            AppendText(document_.Keywords, kKeywordSeparator, value);
        return true;
    }

    void Store(const String& value) {
        const scNamedProperty* const row = FindProperty(kProperties, Name(0));
        if (!row) return;
        if (row->text) {
            SetText(document_.*row->text, value);
        } else {
            document_.*row->time = EmptyTime();
            ParseIso8601Date(document_.*row->time, value);
        }
    }

    // The stream has no data yet. Returns false if it seems to never have any.
    bool Wait() {
        if (++waits_ > kSpins || !SwitchToThread()) Sleep(kWaitMilliseconds);
        return waits_ < kMostWaits;
    }

    clsDocu& document_;
    IXmlReader& reader_;
    clsBoundedStream& stream_;
    std::vector<String> names_; // of the open elements, the innermost last
    int waits_ = 0;
    bool hasFound_ = false;
};

bool ReadByParser(clsDocu& document, clsDocFile& file) {
    const clsCOMInitialize com;
    if (!com.Succeeded()) return false;
    clsXMLLite library;
    clsParserMemory memory;
    clsBoundedStream stream(file, kMostBytes, kMostMilliseconds);
    if (!memory.IsReady()) return false;
    const clsAutoRelease<IXmlReader*> reader = library.MakeReader(memory);
    if (!reader || FAILED(reader->SetInput(static_cast<ISequentialStream*>(&stream)))) return false;
    return Walk(document, *reader.Get(), stream).Run();
}

int ReadFirstBlock(clsDocu& document, clsDocFile& file) {
    String text;
    if (!ReadHeadText(file, text)) return -1;
    clsMatchBudget budget(kMostFallbackMilliseconds);
    clsRegExMatchList groups;
    if (!officeBlock.Match(text, &groups, budget)) return -1;
    String properties = groups.get(1).text;
    DecodeHtmlEntities(properties, true);
    return ReadOfficeBlock(document, properties);
}

} // namespace

int ReadXmlProperties(clsDocu& document, clsDocFile& file) {
    return ReadByParser(document, file) ? 0 : ReadFirstBlock(document, file);
}

} // namespace vxut
