#include "net/http_answer.h"

#include <urlmon.h>

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <iterator>
#include <string_view>

namespace vxut {
namespace {

constexpr uint32_t kFirstRefusal = 400;
constexpr uint32_t kRedirects[] = {301, 302, 303, 307, 308};

struct Refusal {
    uint32_t status;
    HRESULT result;
};
constexpr Refusal kRefusals[] = {{404, INET_E_OBJECT_NOT_FOUND},
                                 {410, INET_E_OBJECT_NOT_FOUND},
                                 {401, INET_E_AUTHENTICATION_REQUIRED},
                                 {407, INET_E_AUTHENTICATION_REQUIRED}};

HRESULT RefusalOf(uint32_t status) {
    for (const Refusal& refusal : kRefusals)
        if (refusal.status == status) return refusal.result;
    return status >= kFirstRefusal ? INET_E_DOWNLOAD_FAILURE : S_OK;
}

bool IsBlank(wchar_t unit) { return unit == L' ' || unit == L'\t' || unit == L'\r'; }

std::wstring_view Trimmed(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

bool IsSameName(std::wstring_view left, std::wstring_view right) {
    return std::ranges::equal(left, right, {}, std::towlower, std::towlower);
}

// The value of a header; empty if it is missing.
std::wstring_view Header(std::wstring_view headers, std::wstring_view name) {
    while (!headers.empty()) {
        const size_t end = std::min(headers.find(L'\n'), headers.size());
        const std::wstring_view line = headers.substr(0, end);
        const size_t colon = line.find(L':');
        if (colon != line.npos && IsSameName(line.substr(0, colon), name))
            return Trimmed(line.substr(colon + 1));
        headers.remove_prefix(std::min(end + 1, headers.size()));
    }
    return {};
}

// -1 for what is no number of bytes.
int64_t ByteCount(std::wstring_view text) {
    constexpr size_t kMostDigits = 18; // fit in 63 bits
    if (text.empty() || text.size() > kMostDigits) return -1;
    int64_t count = 0;
    for (const wchar_t unit : text) {
        if (unit < L'0' || unit > L'9') return -1;
        count = count * 10 + (unit - L'0');
    }
    return count;
}

bool IsPlain(std::wstring_view coding) { return coding.empty() || IsSameName(coding, L"identity"); }

} // namespace

scHttpAnswer JudgeAnswer(uint32_t status, const wchar_t* headers) {
    // Systems make up a head without fields for what is no answer at all.
    if (headers && !std::wcschr(headers, L':')) return {.refusal = INET_E_DOWNLOAD_FAILURE};
    const std::wstring_view text = headers ? headers : L"";
    const bool isLengthOfFile =
        IsPlain(Header(text, L"Content-Encoding")) && IsPlain(Header(text, L"Transfer-Encoding"));
    return {RefusalOf(status), std::ranges::find(kRedirects, status) != std::end(kRedirects),
            isLengthOfFile ? ByteCount(Header(text, L"Content-Length")) : -1};
}

} // namespace vxut
