#include "base/default_code_page.h"
#include "base/text_conversion.h"
#include "text/string.h"

#include <algorithm>
#include <climits>

namespace vxut {

clsCHARString::clsCHARString(const char* text, int64_t length) {
    if (text == nullptr || length <= 0) return;
    text_ = new char[static_cast<size_t>(length) + 1];
    std::copy_n(text, length, text_);
    text_[length] = '\0';
    length_ = length;
}

clsCHARString::~clsCHARString() { delete[] text_; }

String clsCHARString::ToString(uint32_t codePage) const {
    String result;
    if (length_ == 0) return result;
    if (codePage == 0) {
        wchar_t* target = result.GetBuffer(length_);
        std::transform(text_, text_ + length_, target,
                       [](char byte) { return static_cast<unsigned char>(byte); });
        result.SetLength(length_);
        return result;
    }
    const int length = static_cast<int>(std::min<int64_t>(length_, INT_MAX));
    const int units = WidenText(codePage, text_, length, nullptr, 0);
    if (units > 0) result.SetLength(WidenText(codePage, text_, length, result.GetBuffer(units), units));
    return result;
}

} // namespace vxut
