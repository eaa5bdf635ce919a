// Variants as values of items.
#include "profile_support.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <cstring>
#include <string>

namespace vxut::test {
namespace {

// A VARIANT that is cleared in the end.
struct Variant : VARIANT {
    explicit Variant(VARTYPE type = VT_EMPTY, int64_t value = 0) : VARIANT{} {
        vt = type;
        llVal = value;
    }
    explicit Variant(const std::wstring& text) : VARIANT{} {
        vt = VT_BSTR;
        bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(this); }

    std::wstring Text() const { return vt == VT_BSTR ? std::wstring(bstrVal, SysStringLen(bstrVal)) : L"?"; }
};

TEST(ProfileVariantTest, ValuesComeBackFromTheirExactText) {
    const struct {
        VARTYPE type;
        int64_t value;
        const wchar_t* text;
        VARTYPE typeRead;
        int64_t valueRead;
    } kRows[] = {
        {VT_I4, 1, L"var://AwABAAAA", VT_I4, 1},
        {VT_EMPTY, 7, L"var://AAA=", VT_EMPTY, 0},
        {VT_NULL, 7, L"var://AQA=", VT_NULL, 0},
        {VT_UI1, 0xFFF, L"var://EQD/", VT_UI1, 0xFF},
        {VT_BOOL, 0xFFFF, L"var://CwD//w==", VT_BOOL, 0xFFFF},
        {VT_I8, -2, L"var://FAD+/////////w==", VT_I8, -2},
        {VT_R8, 0x3FF0000000000000, L"var://BQAAAAAAAADwPw==", VT_R8, 0x3FF0000000000000},
        {VT_FILETIME, 0x1122334455667788, L"var://QACIdw==", VT_FILETIME, 0x7788}, // cut to its width
        {VT_CLSID, 0x1122334455667788, L"var://SACId2ZV", VT_CLSID, 0x55667788},
        {VT_DECIMAL, 5, L"var://DgA=", VT_EMPTY, 0},
        {VT_LPWSTR, 5, L"var://HwA=", VT_EMPTY, 0},
    };
    const Job job;
    for (const auto& row : kRows) {
        VARIANT value{};
        value.vt = row.type;
        value.llVal = row.value;
        ProfSetVariant(job, nullptr, L"List/Item", &value);
        EXPECT_EQ(TreeOf(job), L"List{Item=" + std::wstring(row.text) + L";}");
        Variant out(L"old");
        EXPECT_EQ(ProfGetVariant(job, nullptr, L"List/Item", &out, nullptr), PROF_OK);
        EXPECT_EQ(out.vt, row.typeRead) << row.text;
        EXPECT_EQ(out.llVal, row.valueRead) << row.text;
    }
}

TEST(ProfileVariantTest, StringsAreCompressedFromAHundredAndOneBytes) {
    const Job job;
    for (const size_t units : {0, 1, 49, 50, 5000}) {
        const Variant value(std::wstring(units, L'\u65E5'));
        ProfAppendVariant(job, nullptr, nullptr, &value);
        ProfSetVariant(job, nullptr, L"s", &value);
        EXPECT_EQ(ValueOf(job, L"s").starts_with(L"var://@2@"), units >= 50) << units;
        Variant out;
        EXPECT_EQ(ProfGetVariant(job, nullptr, L"s", &out, nullptr), PROF_OK);
        EXPECT_EQ(out.Text(), value.Text());
    }
    EXPECT_EQ(TreeOf(job).substr(0, 14), L"=var://CAA=;s=") << "null is an empty name";
}

TEST(ProfileVariantTest, ReferencesAreStoredAsWhatTheyReferTo) {
    int32_t number = 77;
    Variant text(L"text");
    Variant inner(VT_I4 | VT_BYREF);
    inner.plVal = reinterpret_cast<LONG*>(&number);
    Variant outer(VT_VARIANT | VT_BYREF);
    outer.pvarVal = &inner;
    Variant ofText(VT_BSTR | VT_BYREF);
    ofText.pbstrVal = &text.bstrVal;
    Variant ofNothing(VT_VARIANT | VT_BYREF);
    const Job job;
    ProfAppendVariant(job, nullptr, L"a", &inner);
    ProfAppendVariant(job, nullptr, L"b", &outer);
    ProfAppendVariant(job, nullptr, L"c", &ofText);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(TreeOf(job), L"a=var://AwBNAAAA;b=var://AwBNAAAA;c=var://CAB0AGUAeAB0AA==;");
    ofNothing.vt = VT_BYREF | VT_EMPTY; // refers to no type
    ProfSetVariant(job, nullptr, L"d", &ofNothing);
    EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(ValueOf(job, L"d"), L"<-6>");
}

TEST(ProfileVariantTest, OtherTextIsAStringAndDamagedTextIsEmpty) {
    const struct {
        const wchar_t* text;
        VARTYPE type;
    } kRows[] = {{L"abc", VT_BSTR},          {L"", VT_EMPTY},         {L"VAR://AwABAAAA", VT_BSTR},
                 {L"var:/", VT_BSTR},        {L"var://", VT_EMPTY},   {L"var://AwABAA==", VT_EMPTY},
                 {L"var://@2@xx", VT_EMPTY}, {L"var://A", VT_EMPTY},  {L"var://SQABAAAA", VT_EMPTY},
                 {L"var://DCA=", VT_EMPTY},  {L"var://!!", VT_EMPTY}, {L"var://AwABAAAAZZZZ", VT_I4}};
    const Job job;
    for (const auto& row : kRows) {
        ProfSetStringW(job, nullptr, L"a", row.text);
        Variant fromItem(L"old");
        Variant fromText(L"old");
        const Variant fallback(VT_I4, 5);
        EXPECT_EQ(ProfGetVariant(job, nullptr, L"a", &fromItem, &fallback), PROF_OK) << row.text;
        EXPECT_EQ(ProfGetVariantFromContents(row.text, &fromText), PROF_OK);
        EXPECT_EQ(fromItem.vt, row.type) << row.text;
        EXPECT_EQ(fromText.vt, row.type) << row.text;
        if (row.type == VT_BSTR)
            EXPECT_EQ(fromItem.Text() + fromText.Text(), std::wstring(row.text) + row.text);
    }
}

TEST(ProfileVariantTest, MissingItemsAreTheDefaultAndNullsDoNothing) {
    int32_t number = 3;
    Variant fallback(VT_I4 | VT_BYREF);
    fallback.plVal = reinterpret_cast<LONG*>(&number);
    Variant out(L"old");
    const Job job;
    EXPECT_EQ(ProfGetVariant(job, nullptr, L"a", &out, nullptr), PROF_ERR_NOT_FOUND);
    EXPECT_EQ(ProfGetVariant(nullptr, nullptr, L"a", &out, &fallback), PROF_OK);
    EXPECT_EQ(out.Text(), L"old");
    EXPECT_EQ(ProfGetVariant(job, nullptr, nullptr, &out, &out), PROF_ERR_NOT_FOUND);
    EXPECT_EQ(out.Text(), L"old");
    EXPECT_EQ(ProfGetVariant(job, nullptr, L"a", &out, &fallback), PROF_ERR_NOT_FOUND);
    EXPECT_EQ(out.vt, VT_I4);
    EXPECT_EQ(out.lVal, 3);
    EXPECT_EQ(ProfGetVariant(job, nullptr, L"a", nullptr, &fallback), PROF_OK);
    EXPECT_EQ(ProfGetVariantFromContents(nullptr, &out), PROF_ERR_VALUE);
    EXPECT_EQ(ProfGetVariantFromContents(L"a", nullptr), PROF_OK);
    ProfAppendVariant(job, nullptr, L"a", nullptr);
    ProfSetVariant(job, nullptr, L"a", nullptr);
    ProfSetVariant(job, nullptr, nullptr, &fallback);
    ProfAppendVariant(nullptr, nullptr, L"a", &fallback);
    EXPECT_EQ(TreeOf(job), L"");
}

} // namespace
} // namespace vxut::test
