#include "docinfo/readers/shell_sources.h"

#include "docinfo/readers/properties.h"
#include "docinfo/readers/property_value.h"
#include "docinfo/readers/readers.h"
#include "tests/support/document_text.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace vxut::test {
namespace {

// The parts of a COM object on the stack that nobody calls.
template <class Interface>
class OnStack : public Interface {
public:
    virtual ~OnStack() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

FILETIME SomeTime() { return {0x63AD7400, 0x01DC5169}; }

// A value that its taker owns.
using MakeValue = std::function<void(PROPVARIANT&)>;

MakeValue NarrowText(const char* text) {
    return [text](PROPVARIANT& value) {
        value.vt = VT_LPSTR;
        value.pszVal = static_cast<char*>(CoTaskMemAlloc(std::strlen(text) + 1));
        std::memcpy(value.pszVal, text, std::strlen(text) + 1);
    };
}
MakeValue Bstr(const wchar_t* text) {
    return [text](PROPVARIANT& value) {
        value.vt = VT_BSTR;
        value.bstrVal = SysAllocString(text);
    };
}
void Time(PROPVARIANT& value) {
    value.vt = VT_FILETIME;
    value.filetime = SomeTime();
}
void Integer(PROPVARIANT& value) {
    value.vt = VT_I4;
    value.lVal = 42;
}

struct Chunk {
    PROPID id;
    MakeValue make;
    CHUNKSTATE flags = CHUNK_VALUE;
    GUID format = kSummaryFormat;
};

class FakeFilter final : public OnStack<IFilter> {
public:
    explicit FakeFilter(std::vector<Chunk> chunks) : chunks_(std::move(chunks)) {}

    ULONG outputFlags = 0;
    SCODE initResult = S_OK;
    bool isEndless = false;
    int asked = 0;
    ULONG initFlags = 0;

    SCODE STDMETHODCALLTYPE Init(ULONG flags, ULONG, const FULLPROPSPEC*, ULONG* output) override {
        initFlags = flags;
        *output = outputFlags;
        return initResult;
    }
    SCODE STDMETHODCALLTYPE GetChunk(STAT_CHUNK* chunk) override {
        if (static_cast<size_t>(asked++) >= chunks_.size() && !isEndless) return kNoMoreChunks;
        const Chunk& next = Current();
        chunk->flags = next.flags;
        chunk->attribute.guidPropSet = next.format;
        chunk->attribute.psProperty.ulKind = PRSPEC_PROPID;
        chunk->attribute.psProperty.propid = next.id;
        return S_OK;
    }
    SCODE STDMETHODCALLTYPE GetText(ULONG*, WCHAR*) override { return E_NOTIMPL; }
    SCODE STDMETHODCALLTYPE GetValue(PROPVARIANT** value) override {
        if (!Current().make) return E_FAIL;
        // Every other value is passed back in memory of the filter's own.
        if (asked % 2 == 0) {
            *value = static_cast<PROPVARIANT*>(CoTaskMemAlloc(sizeof(PROPVARIANT)));
            PropVariantInit(*value);
        }
        Current().make(**value);
        return S_OK;
    }
    SCODE STDMETHODCALLTYPE BindRegion(FILTERREGION, REFIID, void**) override { return E_NOTIMPL; }

private:
    static constexpr SCODE kNoMoreChunks = static_cast<SCODE>(0x80041700);

    const Chunk& Current() const { return chunks_[std::min<size_t>(asked, chunks_.size()) - 1]; }

    std::vector<Chunk> chunks_;
};

std::wstring Read(FakeFilter& filter) {
    clsDocu document;
    const int result = ReadFilter(document, L"absent.doc", filter);
    return std::to_wstring(result) + L" " + Describe(document);
}

TEST(ShellIndexTest, ReadsTheChunksOfAFilter) {
    FakeFilter filter({{2, Bstr(L"T")},
                       {3, NarrowText("S\xE4")},
                       {4, Bstr(L"other"), CHUNK_TEXT},
                       {4, Bstr(L"other"), CHUNK_VALUE, GUID{}},
                       {0xFFFFFFFF, nullptr},
                       {5, Integer},
                       {6, nullptr},
                       {12, Time},
                       {13, Bstr(L"no time")}});
    EXPECT_EQ(Read(filter), L"0 Title=T|Subject=S\xE4|Keywords=42|Created=2025-11-09 11:10:00|");
    EXPECT_EQ(filter.initFlags, 848U);

    FakeFilter titleOnly({{2, Bstr(L"T")}});
    EXPECT_EQ(Read(titleOnly), L"-1 Title=T|");
    FakeFilter endless({{4, Bstr(L"A")}});
    endless.isEndless = true;
    EXPECT_EQ(Read(endless), L"0 Author=A|");
    EXPECT_EQ(endless.asked, 1000);
    FakeFilter failing({{4, Bstr(L"A")}});
    failing.initResult = E_FAIL;
    EXPECT_EQ(Read(failing), L"-1 ");
    // The file itself is read then, and this one is absent.
    FakeFilter storage({{4, Bstr(L"A")}});
    storage.outputFlags = IFILTER_FLAGS_OLE_PROPERTIES;
    EXPECT_EQ(Read(storage), L"-1 ");
    EXPECT_EQ(storage.asked, 0);
}

class FakeStore final : public OnStack<IPropertyStore> {
public:
    explicit FakeStore(std::map<PROPID, MakeValue> values) : values_(std::move(values)) {}

    HRESULT STDMETHODCALLTYPE GetCount(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAt(DWORD, PROPERTYKEY*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) override {
        const auto found = values_.find(key.pid);
        if (found == values_.end() || !IsEqualGUID(key.fmtid, kSummaryFormat)) return E_FAIL;
        if (found->second) found->second(*value);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY, REFPROPVARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Commit() override { return E_NOTIMPL; }

private:
    std::map<PROPID, MakeValue> values_;
};

// Stands in for the conversion of the system, which some systems lack.
HRESULT WINAPI Convert(const PROPVARIANT* value, VARIANT* target) {
    VariantInit(target);
    SYSTEMTIME time;
    if (value->vt == VT_LPSTR) {
        target->vt = VT_BSTR;
        target->bstrVal = SysAllocString(String(value->pszVal).Text());
    } else if (value->vt == VT_FILETIME && FileTimeToSystemTime(&value->filetime, &time)) {
        target->vt = VT_DATE;
        SystemTimeToVariantTime(&time, &target->date);
    }
    return S_OK;
}

TEST(PropertyStoreTest, ReadsTheKeysInTheirOrder) {
    clsPropSys conversion;
    conversion.SetLibrary(L"kernel32", true);
    conversion.SetResolver(
        [](HMODULE, LPCSTR) { return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(Convert)); });
    ASSERT_TRUE(conversion.PropVariantToVariant.IsAvailable());
    const auto read = [&](std::map<PROPID, MakeValue> values, StoreResult expected) {
        FakeStore store(std::move(values));
        clsDocu document;
        SetText(document.Author, L"before");
        EXPECT_EQ(ReadStore(document, store, conversion), expected);
        return Describe(document);
    };
    const MakeValue title = NarrowText("T");
    EXPECT_EQ(read({{2, title}, {6, title}, {12, Time}}, StoreResult::kFound),
              L"Title=T|Author=before|Created=2025-11-09 11:10:00|");
    EXPECT_EQ(read({{4, nullptr}, {13, Time}}, StoreResult::kNothing), L"Modified=2025-11-09 11:10:00|");
    EXPECT_EQ(read({{2, title}, {4, Bstr(L"wide")}, {3, title}}, StoreResult::kRefused),
              L"Title=T|Author=before|");
    EXPECT_EQ(read({{2, title}, {12, Integer}}, StoreResult::kRefused), L"Title=T|Author=before|");
}

TEST(ShortcutTest, LeadsToItsTarget) {
    const FreshFolder folder;
    const String target = folder.Put(L"target.txt", "x");
    const String path = folder.At(L"a.lnk");
    CoInitialize(nullptr);
    {
        clsAutoRelease<IShellLinkW*> link;
        CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                         reinterpret_cast<void**>(link.Receive()));
        clsAutoRelease<IPersistFile*> file;
        link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(file.Receive()));
        link->SetPath(target.Text());
        ASSERT_EQ(file->Save(path.Text(), TRUE), S_OK);
    }
    CoUninitialize();
    EXPECT_EQ(IString(ResolveShortcut(path)), target.Text());
    EXPECT_TRUE(ResolveShortcut(folder.Put(L"b.lnk", "no shortcut")).IsEmpty());
    EXPECT_TRUE(ResolveShortcut(folder.At(L"absent.lnk")).IsEmpty());
}

} // namespace
} // namespace vxut::test
