#include "variant/variant.h"

#include "tests/support/child_process.h"
#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace vxut {
namespace {

using test::FakeStream;

clsVariant Text(std::wstring_view text) {
    clsVariant value;
    EXPECT_EQ(value.AssignText(text), S_OK);
    return value;
}

// A value of 8 bytes or fewer.
template <class Number>
clsVariant Value(int type, Number number) {
    clsVariant value;
    std::memcpy(&value.llVal, &number, sizeof number);
    value.vt = static_cast<VARTYPE>(type);
    return value;
}

std::wstring TextOf(const clsVariant& value) {
    String text;
    return value.ToString(text) ? std::wstring(text.Text(), static_cast<size_t>(text.Length())) : L"(none)";
}

std::string Saved(const clsVariant& value) {
    FakeStream stream;
    EXPECT_EQ(value.Save(stream), S_OK);
    return stream.bytes;
}

clsVariant Loaded(const std::string& bytes) {
    FakeStream stream(bytes);
    clsVariant value = Text(L"old");
    EXPECT_EQ(value.Load(stream), S_OK);
    return value;
}

TEST(VariantTest, StreamFormOfEveryType) {
    const size_t kSizes[] = {0, 0, 2, 4, 4, 8, 8, 8, 0, 0, 4, 2, 0, 0, 0, 0, 1, 1, 2, 4, 8, 8, 4, 4};
    const char kValue[] = "\x11\x22\x33\x44\x55\x66\x77\x41";
    for (int type = 0; type <= 80; ++type) {
        if (type == VT_BSTR) continue;
        size_t size = type < static_cast<int>(std::size(kSizes)) ? kSizes[type] : 0;
        if (type == VT_FILETIME) size = 2;
        if (type == VT_CLSID) size = 4;
        const std::string bytes = std::string(1, static_cast<char>(type)) + '\0' + std::string(kValue, size);
        const clsVariant value = Loaded(bytes + std::string(kValue + size, 8 - size));
        EXPECT_EQ(value.vt, size > 0 || type == VT_NULL ? type : VT_EMPTY) << type;
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(&value.llVal), 8),
                  std::string(kValue, size) + std::string(8 - size, '\0'))
            << type;
        if (value.vt == type) {
            EXPECT_EQ(Saved(value), bytes);
        }
        for (size_t cut = 0; cut < size; ++cut)
            EXPECT_EQ(Loaded(bytes.substr(0, 2 + cut)).vt, VT_EMPTY) << type << " cut to " << cut;
    }
}

TEST(VariantTest, StreamFormOfStrings) {
    const std::wstring texts[] = {L"", L"abc", std::wstring(L"a\0b", 3), std::wstring(100'000, L'\u4E2D')};
    for (const std::wstring& text : texts) {
        const std::string bytes = std::string("\x08\0", 2) +
                                  std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size());
        EXPECT_EQ(Saved(Text(text)), bytes);
        EXPECT_EQ(TextOf(Loaded(bytes)), text);
        EXPECT_EQ(TextOf(Loaded(bytes + "x")), text) << "half a unit";
    }
}

TEST(VariantTest, HostileStreamsMakeEmptyValuesOrFailures) {
    for (const std::string bytes : {"", "\x08", "\x49", "\x08\x40", "\x08\x20", "\x0D",
                                    "\xFF\xFF"
                                    "12345678"})
        EXPECT_EQ(Loaded(bytes).vt, VT_EMPTY) << bytes;
    FakeStream lying(std::string("\x08\0a\0", 4));
    lying.claimedSize = uint64_t{1} << 60;
    lying.maxPiece = 1;
    clsVariant value;
    EXPECT_EQ(value.Load(lying), S_OK);
    EXPECT_EQ(TextOf(value), L"a");
    FakeStream failing(std::string("\x08\0a\0", 4));
    failing.readResult = STG_E_READFAULT;
    EXPECT_EQ(value.Load(failing), STG_E_READFAULT);
    EXPECT_EQ(value.vt, VT_EMPTY);
    FakeStream full;
    full.capacity = 3;
    EXPECT_TRUE(FAILED(Text(L"abc").Save(full)));
}

TEST(VariantTest, CopiesAreDeepAndReferencesAreFollowed) {
    clsVariant text = Text(L"abc");
    const clsVariant copy = text;
    text.bstrVal[0] = L'x';
    EXPECT_EQ(TextOf(copy), L"abc");
    EXPECT_EQ(TextOf(text), L"xbc");
    EXPECT_EQ(text.Assign(text), S_OK);
    EXPECT_EQ(TextOf(text), L"xbc");
    int32_t number = 7;
    const clsVariant reference = Value(VT_BYREF | VT_I4, &number);
    EXPECT_EQ(Saved(reference), std::string("\x03\0\x07\0\0\0", 6));
    EXPECT_EQ(reference.ToDouble(), 7.0);
    EXPECT_EQ(clsVariant(reference).vt, VT_I4);
}

// The system refuses to copy these types.
TEST(VariantTest, FileTimesAndClassIdentifiersKeepTheirStoredBytes) {
    const uint64_t value = 0x8877665544332211;
    for (const auto& [type, bytes] : {std::pair(VT_FILETIME, std::string("\x40\0\x11\x22", 4)),
                                      std::pair(VT_CLSID, std::string("\x48\0\x11\x22\x33\x44", 6))}) {
        const clsVariant original = Value(type, value);
        const clsVariant copy = original;
        EXPECT_EQ(Saved(copy), bytes);
        EXPECT_EQ(Saved(Value(VT_BYREF | type, &value)), bytes);
        clsVariant none;
        EXPECT_TRUE(FAILED(none.Assign(Value(VT_BYREF | type, static_cast<void*>(nullptr)))));
        EXPECT_TRUE(FAILED(none.Assign(Value(VT_BYREF | type, uint64_t{8}))));
        EXPECT_EQ(none.vt, VT_EMPTY);
    }
}

TEST(VariantTest, Conversions) {
    uint64_t large = 0xFFFFFFFFFFFFFFFF;
    const struct {
        clsVariant value;
        const wchar_t* text;
        double number;
    } kRows[] = {
        {Text(L"2"), L"2", 2},
        {Text(L"x"), L"x", 0},
        {Value(VT_I4, -3), L"-3", -3},
        {Value(VT_R8, 0.5), L"0.5", 0.5},
        {Value(VT_BOOL, VARIANT_TRUE), L"-1", -1},
        {Value(VT_I8, int64_t{5}), L"5", 0}, // large integers become texts only
        {Value(VT_I8, large), L"-1", 0},
        {Value(VT_UI8, large), L"18446744073709551615", 0},
        {Value(VT_BYREF | VT_UI8, &large), L"18446744073709551615", 0},
        {Value(VT_NULL, 0), L"(none)", 0},
        {Value(VT_LPWSTR, 8), L"(none)", 0},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(TextOf(row.value), row.text) << row.value.vt;
        EXPECT_EQ(row.value.ToDouble(), row.number) << row.value.vt;
    }
    clsVariant value = Text(L"12");
    EXPECT_FALSE(value.ChangeType(VT_UNKNOWN));
    EXPECT_EQ(TextOf(value), L"12") << "a failure changes nothing";
    EXPECT_TRUE(value.ChangeType(VT_I4));
    EXPECT_EQ(value.lVal, 12);
    clsVariant largeValue = Value(VT_I8, large);
    EXPECT_TRUE(largeValue.ChangeType(VT_I8));
    EXPECT_FALSE(largeValue.ChangeType(VT_I4));
    EXPECT_EQ(largeValue.vt, VT_I8);
}

TEST(VariantTest, Groups) {
    for (int type = 0; type <= 80; ++type) {
        const bool isNumeric =
            (type >= 2 && type <= 6) || type == 14 || (type >= 16 && type <= 23) || type == 37 || type == 38;
        const bool isString = type == 8 || type == 30 || type == 31;
        EXPECT_EQ(Value(type, 0).Group(), isNumeric  ? clsVariant::kNumeric
                                          : isString ? clsVariant::kString
                                                     : clsVariant::kOther)
            << type;
    }
}

TEST(VariantTest, Comparison) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    clsVariant decimal;
    ASSERT_TRUE(SUCCEEDED(VarDecFromI4(1, &decimal.decVal)));
    decimal.vt = VT_DECIMAL;
    clsVariant nullText = Value(VT_BSTR, static_cast<void*>(nullptr));
    const struct {
        clsVariant left;
        clsVariant right;
        bool isEqual;
    } kRows[] = {
        {Value(VT_EMPTY, 1), Value(VT_EMPTY, 2), true},
        {Value(VT_I1, 0x101), Value(VT_I1, 0x201), true},
        {Value(VT_I2, 0x10001), Value(VT_I2, 0x20001), true},
        {Value(VT_BOOL, 0xFFFF), Value(VT_BOOL, 1), false},
        {Value(VT_ERROR, int64_t{1} << 32), Value(VT_ERROR, 0), true},
        {Value(VT_UI8, int64_t{1} << 32), Value(VT_UI8, int64_t{0}), false},
        {Value(VT_R4, 0.5F), Value(VT_R4, 0.5F), true},
        {Value(VT_R4, std::nanf("")), Value(VT_R4, std::nanf("")), false},
        {Value(VT_R8, nan), Value(VT_R8, nan), false},
        {Value(VT_DATE, 0.0), Value(VT_DATE, -0.0), true},
        {Value(VT_CY, int64_t{10000}), Value(VT_CY, int64_t{10000}), true},
        {decimal, decimal, true},
        {Text(L"a\u00E4"), Text(L"a\u00E4"), true},
        {Text(L"\u00E4"), Text(L"\u00C4"), false},
        {Text(L""), nullText, true},
        {Text(L""), Text(L"a"), false},
        {Value(VT_FILETIME, int64_t{5}), Value(VT_FILETIME, int64_t{5}), true},
        {Value(VT_I4, 1), Value(VT_R8, 1.0), true},
        {decimal, Value(VT_I2, 1), true},
        {Value(VT_I4, 1), Text(L"1"), false},
        {Value(VT_I4, 1), Value(VT_R8, nan), false},
        {Value(VT_EMPTY, 0), Value(VT_I4, 0), false},
        {Value(0xF00, 0), Value(VT_EMPTY, 0), true},
        {Value(VT_NULL, 0), Value(0xF00, 0), false},
        {Value(VT_DATE, 1.0), Value(VT_R8, 1.0), false}, // a date is of no group
    };
    int row = 0;
    for (const auto& [left, right, isEqual] : kRows) EXPECT_EQ(left.Compare(right), isEqual) << row++;
}

// An array of two by three variants with the numbers 10 * first + second.
clsVariant MakeArray() {
    SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 5}};
    clsVariant array;
    array.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
    array.vt = VT_ARRAY | VT_VARIANT;
    for (LONG first = 0; first < 2; ++first) {
        for (LONG second = 0; second < 3; ++second) {
            LONG place[] = {first, 5 + second};
            clsVariant number = Value(VT_I4, 10 * first + second);
            EXPECT_EQ(SafeArrayPutElement(array.parray, place, &number), S_OK);
        }
    }
    return array;
}

TEST(VariantTest, ArrayElements) {
    const clsVariant array = MakeArray();
    clsVariant reference;
    reference.vt = array.vt | VT_BYREF;
    reference.pparray = const_cast<SAFEARRAY**>(&array.parray);
    for (const clsVariant* const source : {&array, static_cast<const clsVariant*>(&reference)}) {
        for (int32_t first = -1; first <= 3; ++first) {
            for (int32_t second = -1; second <= 3; ++second) {
                const bool isInside = first >= 0 && first < 2 && second >= 0 && second < 3;
                const int32_t indexes[] = {first, second};
                clsVariant element = Text(L"old");
                source->GetArrayElement(element, indexes, 2);
                EXPECT_EQ(TextOf(element), isInside ? std::to_wstring(10 * first + second) : L"") << first;
            }
        }
    }
    const int32_t indexes[] = {0, 0, 0};
    clsVariant element;
    for (const uint32_t count : {0u, 1u, 3u}) {
        array.GetArrayElement(element, indexes, count);
        EXPECT_EQ(element.vt, VT_EMPTY);
    }
    EXPECT_EQ(array.parray->cLocks, 0u);
    Text(L"a").GetArrayElement(element, indexes, 1);
    EXPECT_EQ(element.vt, VT_EMPTY);
}

TEST(VariantTest, ArrayElementsOfObjectsAddAReferenceAndOthersStayEmpty) {
    FakeStream object;
    IUnknown* unknown = &object;
    for (const int kind : {VT_UNKNOWN, VT_I8}) {
        clsVariant array;
        array.parray = SafeArrayCreateVector(static_cast<VARTYPE>(kind), 0, 1);
        array.vt = static_cast<VARTYPE>(VT_ARRAY | kind);
        LONG place = 0;
        if (kind == VT_UNKNOWN) {
            ASSERT_EQ(SafeArrayPutElement(array.parray, &place, unknown), S_OK);
        }
        clsVariant element;
        const int32_t index = 0;
        array.GetArrayElement(element, &index, 1);
        EXPECT_EQ(element.vt, kind == VT_UNKNOWN ? VT_UNKNOWN : VT_EMPTY);
        EXPECT_EQ(object.references, kind == VT_UNKNOWN ? 3u : 1u);
    }
    EXPECT_EQ(object.references, 1u);
}

TEST(VariantTest, DevelopersHearWhatFails) {
    SetEnvironmentVariableW(L"user", L"qzr"); // the child inherits it
    EXPECT_EQ(test::RunChild(L"variant-messages").exitCode, 0);
    SetEnvironmentVariableW(L"user", nullptr);
}

} // namespace
} // namespace vxut
