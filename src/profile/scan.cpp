#include "profile/scan.h"

#include "base/digits.h"

#include <cwctype>

namespace vxut {
namespace {

class Scanner {
public:
    explicit Scanner(const wchar_t* text) : at_(text) {}

    bool Literal(wchar_t unit) {
        if (*at_ != unit) return false;
        ++at_;
        return true;
    }

    template <class Number>
    bool Field(uint32_t base, Number& value) {
        while (std::iswspace(*at_)) ++at_;
        const bool isNegative = *at_ == L'-';
        if (isNegative || *at_ == L'+') ++at_;
        if (base == 16 && at_[0] == L'0' && (at_[1] == L'x' || at_[1] == L'X')) at_ += 2;
        if (DigitOf(*at_, base) == base) return false;
        uint64_t number = 0;
        for (uint32_t digit = 0; (digit = DigitOf(*at_, base)) != base; ++at_) number = number * base + digit;
        value = static_cast<Number>(isNegative ? 0 - number : number);
        ++fields_;
        return true;
    }

    int Result() const { return fields_ == 0 && *at_ == 0 ? kScanEnd : fields_; }

private:
    const wchar_t* at_;
    int fields_ = 0;
};

template <class Number>
int ScanDecimalNumber(const wchar_t* text, Number& value) {
    Scanner scanner(text);
    scanner.Field(10, value);
    return scanner.Result();
}

template <class Number>
int ScanHexNumber(const wchar_t* text, Number& value) {
    Scanner scanner(text);
    if (scanner.Literal(L'x')) scanner.Field(16, value);
    return scanner.Result();
}

} // namespace

int ScanDecimal(const wchar_t* text, int32_t& value) { return ScanDecimalNumber(text, value); }
int ScanDecimal64(const wchar_t* text, int64_t& value) { return ScanDecimalNumber(text, value); }
int ScanHex(const wchar_t* text, uint32_t& value) { return ScanHexNumber(text, value); }
int ScanHex64(const wchar_t* text, uint64_t& value) { return ScanHexNumber(text, value); }

int ScanTuple(const wchar_t* text, int32_t* fields, int count) {
    Scanner scanner(text);
    for (int i = 0; i < count; ++i)
        if (!scanner.Literal(i == 0 ? L'(' : L',') || !scanner.Field(10, fields[i])) break;
    return scanner.Result();
}

} // namespace vxut
