#include "trace/line_layout.h"

#include <cwchar>

namespace vxut {
namespace {

class LayoutReader {
public:
    explicit LayoutReader(const wchar_t* format) : next_(format) {}

    scLineLayout Read() {
        while (layout_.isSupported && FindConversion()) ReadConversion();
        return layout_;
    }

private:
    bool FindConversion() {
        while (*next_ && *next_ != L'%') ++next_;
        if (*next_ == 0) return false;
        ++next_;
        return true;
    }

    void ReadConversion() {
        while (*next_ && std::wcschr(L" +-0#", *next_)) ++next_;
        ReadNumber();
        precision_ = scLineLayout::kNoPrecision;
        if (*next_ == L'.') {
            ++next_;
            precision_ = ReadNumber();
        }
        ReadSize();
        if (*next_ == 0) return;
        const wchar_t letter = *next_++;
        if (letter == L's' || letter == L'S')
            AddText(letter == L'S' ? size_ != L'l' && size_ != L'w' : size_ == L'h');
        else if (std::wcschr(L"diouxXcCeEfFgGaAp", letter))
            Add(scLineLayout::kNumber);
        else if (letter != L'%')
            layout_.isSupported = false;
    }

    int16_t ReadNumber() {
        if (*next_ == L'*') {
            ++next_;
            Add(scLineLayout::kNumber);
            return scLineLayout::kPrecisionBefore;
        }
        int number = 0;
        for (; *next_ >= L'0' && *next_ <= L'9'; ++next_)
            if (number < kMostPrecision) number = number * 10 + (*next_ - L'0');
        return static_cast<int16_t>(number < kMostPrecision ? number : kMostPrecision);
    }

    void ReadSize() {
        size_ = 0;
        while (*next_ && std::wcschr(L"hlwLIztj", *next_)) {
            size_ = *next_++;
            if (size_ == L'I' &&
                ((next_[0] == L'6' && next_[1] == L'4') || (next_[0] == L'3' && next_[1] == L'2')))
                next_ += 2;
        }
    }

    void AddText(bool isNarrow) {
        Add(isNarrow ? scLineLayout::kNarrowText : scLineLayout::kWideText);
        layout_.hasText = true;
    }

    void Add(scLineLayout::Kind kind) {
        if (layout_.slots == scLineLayout::kMostSlots) {
            layout_.isSupported = false;
            return;
        }
        layout_.kinds[layout_.slots] = kind;
        layout_.precisions[layout_.slots++] = precision_;
    }

    static constexpr int kMostPrecision = 30000;

    const wchar_t* next_;
    scLineLayout layout_;
    int16_t precision_ = scLineLayout::kNoPrecision;
    wchar_t size_ = 0;
};

} // namespace

scLineLayout LayoutOf(const wchar_t* format) noexcept { return LayoutReader(format).Read(); }

} // namespace vxut
