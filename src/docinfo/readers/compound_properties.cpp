// Documents of older office programs: the summary in their structured storage.
#include "base/debug.h"
#include "docinfo/readers/compound_file.h"
#include "docinfo/readers/document_storage.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/property_value.h"
#include "docinfo/readers/readers.h"

#include <iterator>
#include <vector>

namespace vxut {
namespace {

constexpr wchar_t kSummaryStream[] = L"\5SummaryInformation";

struct Row {
    PROPID id;
    const wchar_t* name; // in the debug channel
    clsVariant clsDocu::* text = nullptr;
    SYSTEMTIME clsDocu::* time = nullptr;
};
constexpr Row kRows[] = {
    {2, L"Title", &clsDocu::Title},
    {3, L"Subject", &clsDocu::Subject},
    {4, L"Author", &clsDocu::Author},
    {5, L"Keywords", &clsDocu::Keywords},
    {6, L"Comments", &clsDocu::Comments},
    {7, L"Template"},
    {8, L"LastAuthor", &clsDocu::LastAuthor},
    {9, L"Revision Number"},
    {10, L"Edit Time"},
    {11, L"Last printed"},
    {12, L"Created", nullptr, &clsDocu::Created},
    {13, L"Last Saved", nullptr, &clsDocu::Modified},
    {15, L"Word Count"},
    {16, L"Char Count"},
    {17, L"Thumbnail"},
    {14, L"Page Count"},
    {18, L"AppName"},
    {19, L"Doc Security"},
};
constexpr ULONG kRowCount = std::size(kRows);

// The values of all rows.
struct Values {
    PROPVARIANT all[kRowCount];
    Values() noexcept : all{} {}
    ~Values() { FreePropVariantArray(kRowCount, all); }
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;
};

HRESULT ReadValues(IStorage& storage, Values& values) {
    clsAutoRelease<IPropertySetStorage*> sets;
    HRESULT result =
        storage.QueryInterface(IID_IPropertySetStorage, reinterpret_cast<void**>(sets.Receive()));
    if (FAILED(result)) return result;
    clsAutoRelease<IPropertyStorage*> set;
    result = sets->Open(kSummaryFormat, STGM_READ | STGM_SHARE_EXCLUSIVE, set.Receive());
    if (FAILED(result)) return result;
    PROPSPEC specs[kRowCount];
    for (ULONG i = 0; i < kRowCount; ++i) {
        specs[i].ulKind = PRSPEC_PROPID;
        specs[i].propid = kRows[i].id;
    }
    return set->ReadMultiple(kRowCount, specs, values.all);
}

String Formatted(const wchar_t* format, auto value) {
    String text;
    text.Format(format, value);
    return text;
}

// Whether there is a text, which numbers have too.
bool TextOfValue(const PROPVARIANT& value, String& text) {
    switch (value.vt) {
        case VT_I2:
            text = Formatted(L"%d", int{value.iVal});
            return true;
        case VT_I4:
            text = Formatted(L"%d", value.lVal);
            return true;
        case VT_UI2:
            text = Formatted(L"%u", unsigned{value.uiVal});
            return true;
        case VT_UI4:
            text = Formatted(L"%u", value.ulVal);
            return true;
        case VT_R4:
            text = Formatted(L"%g", double{value.fltVal});
            return true;
        case VT_R8:
            text = Formatted(L"%g", value.dblVal);
            return true;
        case VT_BOOL:
            text = value.boolVal ? L"true" : L"false";
            return true;
        default: {
            const scPropertyValue read = TextOrTimeOf(value);
            text = read.text;
            return read.hasText;
        }
    }
}

void Store(clsDocu& document, const Row& row, const PROPVARIANT& value) {
    String text;
    const bool hasText = TextOfValue(value, text);
    if (hasText) DebugWrite(L"%s: %s", row.name, text.Text());
    if (hasText && row.text) SetText(document.*row.text, text);
    const scPropertyValue read = TextOrTimeOf(value);
    if (read.hasTime && row.time) document.*row.time = read.time;
}

} // namespace

int ReadCompoundProperties(clsDocu& document, const String& path) {
    clsDocumentStorage storage;
    HRESULT result = storage.Open(path);
    if (FAILED(result)) return result;
    std::vector<uint8_t> set;
    if (ReadStorageStream(*storage.Get(), kSummaryStream, set) && !IsPropertySetSound(set))
        return STG_E_DOCFILECORRUPT;
    Values values;
    result = ReadValues(*storage.Get(), values);
    if (FAILED(result)) return result;
    for (ULONG i = 0; i < kRowCount; ++i) Store(document, kRows[i], values.all[i]);
    return 0;
}

} // namespace vxut
