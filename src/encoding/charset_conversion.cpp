// The conversion buffer.
#include "encoding/charset.h"

#include "base/default_code_page.h"
#include "base/guard.h"
#include "base/text_conversion.h"

#include <climits>
#include <cstring>
#include <cwchar>
#include <utility>

namespace vxut {
namespace {

constexpr wchar_t kLastByteUnit = 0xFF;

uint32_t Effective(uint32_t codePage) { return codePage ? codePage : DefaultCodePage(); }

// The length in the form that the conversions of the system take. A longer text cannot be converted: 0.
int ConvertibleLength(int64_t length) { return length <= INT_MAX ? static_cast<int>(length) : 0; }

} // namespace

template <class Unit>
Unit* clsCharsetConversionString::Form<Unit>::Allocate(int64_t length) {
    Free();
    if (length >= kSmallUnits) large_.reset(new Unit[static_cast<size_t>(length) + 1]);
    text_ = large_ ? large_.get() : small_;
    text_[length] = 0;
    length_ = length;
    return text_;
}

template <class Unit>
void clsCharsetConversionString::Form<Unit>::Cut(int64_t length) noexcept {
    length_ = length;
    text_[length] = 0;
}

template <class Unit>
void clsCharsetConversionString::Form<Unit>::Copy(const Unit* text, int64_t length) {
    std::memcpy(Allocate(length), text, static_cast<size_t>(length) * sizeof(Unit));
}

template <class Unit>
void clsCharsetConversionString::Form<Unit>::Free() noexcept {
    text_ = nullptr;
    length_ = 0;
    large_.reset();
}

clsCharsetConversionString::~clsCharsetConversionString() {
    Guarded([this] { Reset(); });
}

void clsCharsetConversionString::Set(const char* bytes, int64_t length) {
    wide_.Free();
    narrow_.Free();
    if (bytes) narrow_.Copy(bytes, length == -1 ? static_cast<int64_t>(std::strlen(bytes)) : length);
}

void clsCharsetConversionString::Set(const wchar_t* text, int64_t length) {
    wide_.Free();
    narrow_.Free();
    if (text) wide_.Copy(text, length == -1 ? static_cast<int64_t>(std::wcslen(text)) : length);
}

const wchar_t* clsCharsetConversionString::GetWide() {
    if (!wide_.IsSet() && narrow_.Length() > 0) MakeWide();
    return wide_.IsSet() ? wide_.Text() : EmptyString().Text();
}

const char* clsCharsetConversionString::GetNarrow() {
    if (!narrow_.IsSet() && wide_.Length() > 0) MakeNarrow();
    return narrow_.IsSet() ? narrow_.Text() : "";
}

void clsCharsetConversionString::MakeWide() {
    if (codePage_ == kCodePageBytes) {
        wchar_t* const target = wide_.Allocate(narrow_.Length());
        for (int64_t i = 0; i < narrow_.Length(); ++i)
            target[i] = static_cast<unsigned char>(narrow_.Text()[i]);
        return;
    }
    const uint32_t codePage = Effective(codePage_);
    const int length = ConvertibleLength(narrow_.Length());
    const int needed = WidenText(codePage, narrow_.Text(), length, nullptr, 0);
    wchar_t* const target = wide_.Allocate(needed);
    wide_.Cut(needed > 0 ? WidenText(codePage, narrow_.Text(), length, target, needed) : 0);
}

void clsCharsetConversionString::MakeNarrow() {
    if (codePage_ == kCodePageBytes) {
        char* const target = narrow_.Allocate(wide_.Length());
        for (int64_t i = 0; i < wide_.Length(); ++i) {
            const wchar_t unit = wide_.Text()[i];
            target[i] = unit <= kLastByteUnit ? static_cast<char>(unit) : '?';
        }
        return;
    }
    const uint32_t codePage = Effective(codePage_);
    const int length = ConvertibleLength(wide_.Length());
    const int needed = NarrowText(codePage, wide_.Text(), length, nullptr, 0);
    char* const target = narrow_.Allocate(needed);
    narrow_.Cut(needed > 0 ? NarrowText(codePage, wide_.Text(), length, target, needed) : 0);
}

void clsCharsetConversionString::SetTarget(char* target, uint32_t size) noexcept {
    narrowTarget_ = {target, target ? size : 0};
}

void clsCharsetConversionString::SetTarget(wchar_t* target, uint32_t size) noexcept {
    wideTarget_ = {target, target ? size : 0};
}

void clsCharsetConversionString::Reset() {
    const std::span<char> narrow = std::exchange(narrowTarget_, {});
    if (!narrow.empty()) {
        std::strncpy(narrow.data(), GetNarrow(), narrow.size());
        narrow.back() = 0;
    }
    const std::span<wchar_t> wide = std::exchange(wideTarget_, {});
    if (!wide.empty()) {
        std::wcsncpy(wide.data(), GetWide(), wide.size());
        wide.back() = 0;
    }
    wide_.Free();
    narrow_.Free();
}

} // namespace vxut
