#include "text/format_scan.h"

#include "checks/validate.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace vxut {
namespace {

constexpr int64_t kIntegerSize = 34;
constexpr int64_t kPointerSize = 18;
constexpr int64_t kFloatSize = 128;
constexpr UINT_PTR kWholeString = 0x7FFFFFFF;
// Widths and precisions beyond this are a mistake; the sum of several must not overflow.
constexpr int64_t kMaxField = 0x7FFFFFFF;

enum class Modifier { kNone, kNarrow, kWide };

struct Conversion {
    int64_t width = 0;
    int64_t precision = -1; // none
    Modifier modifier = Modifier::kNone;
};

class FormatScanner {
public:
    FormatScanner(const wchar_t* format, va_list arguments) : next_(format) {
        va_copy(arguments_, arguments);
    }
    ~FormatScanner() { va_end(arguments_); }
    FormatScanner(const FormatScanner&) = delete;
    FormatScanner& operator=(const FormatScanner&) = delete;

    int64_t Scan() {
        while (*next_) {
            if (*next_ != L'%' || next_[1] == L'%') {
                next_ += *next_ == L'%' ? 2 : 1;
                size_ += 2;
                continue;
            }
            ++next_;
            if (!ScanConversion()) return -1;
        }
        return size_;
    }

private:
    bool ScanConversion() {
        Conversion conversion;
        ScanFlags();
        conversion.width = std::abs(ScanNumber());
        if (*next_ == L'.') {
            ++next_;
            conversion.precision = ScanNumber();
        }
        conversion.modifier = ScanModifiers();
        if (*next_ == 0) return true;
        ++next_;
        return AddConversion(next_[-1], conversion);
    }

    void ScanFlags() {
        for (; *next_ && std::wcschr(L" +-0#", *next_); ++next_) {
            if (*next_ == L'#') size_ += 2;
        }
    }

    int64_t ScanNumber() {
        if (*next_ == L'*') {
            ++next_;
            return va_arg(arguments_, int);
        }
        int64_t number = 0;
        for (; *next_ >= L'0' && *next_ <= L'9'; ++next_)
            number = std::min(number * 10 + (*next_ - L'0'), kMaxField);
        return number;
    }

    Modifier ScanModifiers() {
        Modifier modifier = Modifier::kNone;
        for (;; ++next_) {
            if (std::wcsncmp(next_, L"I64", 3) == 0 || std::wcsncmp(next_, L"I32", 3) == 0) {
                next_ += 2;
            } else if (*next_ == L'h') {
                modifier = Modifier::kNarrow;
            } else if (*next_ == L'l' || *next_ == L'w') {
                modifier = Modifier::kWide;
            } else if (*next_ != L'F' && *next_ != L'L' && *next_ != L'N') {
                return modifier;
            }
        }
    }

    bool AddConversion(wchar_t letter, const Conversion& conversion) {
        switch (letter) {
            case L's':
            case L'S':
                return AddText(letter, conversion);
            case L'c':
            case L'C':
                va_arg(arguments_, int);
                size_ += std::max<int64_t>(conversion.width, conversion.modifier == Modifier::kWide ? 2 : 1);
                return true;
            case L'd':
            case L'i':
            case L'o':
            case L'u':
            case L'x':
            case L'X':
                va_arg(arguments_, int64_t);
                size_ += std::max(conversion.width, kIntegerSize);
                return true;
            case L'e':
            case L'f':
            case L'g':
            case L'E':
            case L'G':
                va_arg(arguments_, double);
                size_ +=
                    std::max(conversion.width + std::max<int64_t>(conversion.precision, 0) + 2, kFloatSize) +
                    10;
                return true;
            case L'p':
                va_arg(arguments_, void*);
                size_ += std::max(conversion.width, kPointerSize);
                return true;
            case L'n':
                return IsCounterWritable(va_arg(arguments_, int*));
            default:
                return true;
        }
    }

    bool AddText(wchar_t letter, const Conversion& conversion) {
        const void* text = va_arg(arguments_, const void*);
        const bool narrow = conversion.modifier == Modifier::kNarrow ||
                            (letter == L'S' && conversion.modifier == Modifier::kNone);
        if (text == nullptr || !IsReadable(text, narrow, conversion.modifier)) return false;
        const size_t length = narrow ? std::strlen(static_cast<const char*>(text))
                                     : std::wcslen(static_cast<const wchar_t*>(text));
        int64_t size = std::max<int64_t>({static_cast<int64_t>(length), 1, conversion.width});
        if (conversion.precision >= 0)
            size = std::min(size, std::max(conversion.precision, conversion.width));
        size_ += size;
        return true;
    }

    // The explicit wide form is tested even in front of a debugger.
    static bool IsReadable(const void* text, bool narrow, Modifier modifier) {
        if (narrow) return ProbeStringA(static_cast<const char*>(text), kWholeString);
        const auto* wide = static_cast<const wchar_t*>(text);
        return modifier == Modifier::kWide ? !IsBadStringPtrW(wide, kWholeString)
                                           : ProbeStringW(wide, kWholeString);
    }

    static bool IsCounterWritable(int* counter) { return counter && ProbeWrite(counter, sizeof *counter); }

    const wchar_t* next_;
    va_list arguments_;
    int64_t size_ = 0;
};

} // namespace

int64_t ScanFormat(const wchar_t* format, va_list arguments) {
    return FormatScanner(format, arguments).Scan();
}

} // namespace vxut
