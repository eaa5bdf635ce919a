#include "profile/forms/narrow_output.h"

#include "base/default_code_page.h"
#include "base/last_error.h"
#include "base/text_conversion.h"

#include <algorithm>
#include <cstdint>

namespace vxut {
namespace {

constexpr size_t kPiece = 512;
constexpr int kBytesPerUnit = 8; // no code page needs more, shifts between character sets included

bool IsHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

// The length of the next piece to convert, which does not part a surrogate pair.
size_t NextPiece(std::wstring_view text) {
    if (text.size() <= kPiece) return text.size();
    return IsHighSurrogate(text[kPiece - 1]) ? kPiece - 1 : kPiece;
}

} // namespace

void PutNarrow(clsProfOutput& output, std::wstring_view text) {
    char bytes[kPiece * kBytesPerUnit];
    for (size_t piece = 0; !text.empty() && !output.HasFailed(); text.remove_prefix(piece)) {
        piece = NextPiece(text);
        const int size = NarrowText(DefaultCodePage(), text.data(), static_cast<int>(piece), bytes,
                                    static_cast<int>(sizeof(bytes)));
        if (size <= 0) return output.Fail(ErrorOfFailedCall());
        output.PutBytes(bytes, static_cast<size_t>(size));
    }
}

void PutNarrowIndent(clsProfOutput& output, int depth) {
    const int level = std::clamp(depth, 0, clsProfOutput::kMaxIndentDepth);
    PutNarrow(output, std::wstring_view(L"\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t")
                          .substr(0, static_cast<size_t>(level / clsProfOutput::kDepthPerTab)));
    PutNarrow(output,
              std::wstring_view(L"   ").substr(0, static_cast<size_t>(level % clsProfOutput::kDepthPerTab)));
}

} // namespace vxut
