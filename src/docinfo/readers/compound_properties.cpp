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
    const wchar_t* name; // in the debug channel
    scNumberedProperty property;
};
constexpr Row kRows[] = {
    {L"Title", {2, &clsDocu::Title}},
    {L"Subject", {3, &clsDocu::Subject}},
    {L"Author", {4, &clsDocu::Author}},
    {L"Keywords", {5, &clsDocu::Keywords}},
    {L"Comments", {6, &clsDocu::Comments}},
    {L"Template", {7}},
    {L"LastAuthor", {8, &clsDocu::LastAuthor}},
    {L"Revision Number", {9}},
    {L"Edit Time", {10}},
    {L"Last printed", {11}},
    {L"Created", {12, nullptr, &clsDocu::Created}},
    {L"Last Saved", {13, nullptr, &clsDocu::Modified}},
    {L"Word Count", {15}},
    {L"Char Count", {16}},
    {L"Thumbnail", {17}},
    {L"Page Count", {14}},
    {L"AppName", {18}},
    {L"Doc Security", {19}},
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
    PROPSPEC wanted[kRowCount];
    for (ULONG i = 0; i < kRowCount; ++i) {
        wanted[i].ulKind = PRSPEC_PROPID;
        wanted[i].propid = kRows[i].property.id;
    }
    return set->ReadMultiple(kRowCount, wanted, values.all);
}

String Formatted(const wchar_t* format, auto value) {
    String text;
    text.Format(format, value);
    return text;
}

// The text of a number; empty for any other value.
String NumberText(const PROPVARIANT& value) {
    switch (value.vt) {
        case VT_I2:
            return Formatted(L"%d", int{value.iVal});
        case VT_I4:
            return Formatted(L"%d", value.lVal);
        case VT_UI2:
            return Formatted(L"%u", unsigned{value.uiVal});
        case VT_UI4:
            return Formatted(L"%u", value.ulVal);
        case VT_R4:
            return Formatted(L"%g", double{value.fltVal});
        case VT_R8:
            return Formatted(L"%g", value.dblVal);
        case VT_BOOL:
            return value.boolVal ? L"true" : L"false";
        default:
            return {};
    }
}

void Store(clsDocu& document, const Row& row, const PROPVARIANT& stored) {
    scPropertyValue value = TextOrTimeOf(stored);
    if (!value.hasText) {
        value.text = NumberText(stored);
        value.hasText = !value.text.IsEmpty();
    }
    if (value.hasText) DebugWrite(L"%s: %s", row.name, value.text.Text());
    StoreValue(document, row.property, value);
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
