#include "profile/forms/text_form.h"

namespace vxut {
namespace {

constexpr std::wstring_view kByteOrderMark = L"\uFEFF";
constexpr std::wstring_view kLineEnd = L"\r\n";

struct EncodeValue {
    static __m128i MayChange(__m128i units) noexcept {
        return EqualUnits(_mm_subs_epu16(units, _mm_set1_epi16(kFirstPrintable - 1)), 0);
    }
    wchar_t operator()(wchar_t unit) const noexcept {
        return unit < kFirstPrintable ? static_cast<wchar_t>(unit + kControlPictures) : unit;
    }
};

struct EncodeName {
    static __m128i MayChange(__m128i units) noexcept {
        const __m128i brackets = _mm_or_si128(EqualUnits(units, L'['), EqualUnits(units, L']'));
        return _mm_or_si128(_mm_or_si128(brackets, EqualUnits(units, L'=')), EncodeValue::MayChange(units));
    }
    wchar_t operator()(wchar_t unit) const noexcept {
        switch (unit) {
            case L'=':
                return kMappedEquals;
            case L'[':
                return kMappedOpen;
            case L']':
                return kMappedClose;
            default:
                return EncodeValue()(unit);
        }
    }
};

void PutLine(clsProfOutput& output, int depth, std::wstring_view text) {
    output.PutIndent(depth);
    output.Put(text);
    output.Put(kLineEnd);
}

} // namespace

void clsTextWriter::WriteHeader(clsProfOutput& output) const { output.Put(kByteOrderMark); }

// The list's name is written as it is. The form has no escape for a bracket or a line break in it.
void clsTextWriter::OpenList(const clsItemList& list, int depth, clsProfOutput& output) const {
    output.PutIndent(depth);
    output.Put(L"[");
    output.Put(list.Name());
    output.Put(L"]\r\n");
    PutLine(output, depth + 1, L"{");
}

void clsTextWriter::CloseList(const clsItemList&, int depth, clsProfOutput& output) const {
    PutLine(output, depth + 1, L"}");
}

void clsTextWriter::WriteItem(const clsItem& item, int depth, clsProfOutput& output) const {
    output.PutIndent(depth);
    output.PutMapped(item.Name(), EncodeName());
    output.Put(L"=");
    output.PutMapped(item.Value(), EncodeValue());
    output.Put(kLineEnd);
}

} // namespace vxut
