// The pass of the conversion from HTML to text that resolves tags.
#include "encoding/html_passes.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace vxut {
namespace {

constexpr wchar_t kNoBreakSpace = 0xA0;

struct TagOutput {
    std::wstring_view name;
    std::wstring_view output;
};
// Other tags, such as "p" and "td", and those that are listed with nothing are silent.
constexpr TagOutput kOutputs[] = {
    {L"/address", L"\r"}, {L"/blockquote", L"\r"}, {L"/div", L"\r"}, {L"/h1", L"\r"},    {L"/h2", L"\r"},
    {L"/h3", L"\r"},      {L"/h4", L"\r"},         {L"/h5", L"\r"},  {L"/h6", L"\r"},    {L"/li", L"\r"},
    {L"/ol", L"\r"},      {L"/p", L"\r"},          {L"/pre", L"\r"}, {L"/tbody", L"\r"}, {L"/td", L" "},
    {L"/th", L" "},       {L"/thead", L"\r"},      {L"/tr", L"\r"},  {L"/ul", L"\r"},    {L"br", L"\r"},
    {L"hr", L"\r"},       {L"li", L"- "},
};

// Elements whose content is not shown.
constexpr std::wstring_view kSkipped[] = {L"head", L"iframe", L"script", L"select", L"style", L"textarea"};

constexpr size_t kMostNameUnits = 11; // "/blockquote"

// The name of a tag, in lower case. Longer names than any known one are cut behind the first unit too many,
// which makes them unknown.
class TagName {
public:
    void Empty() { units_ = 0; }
    void Append(wchar_t unit) {
        if (units_ > kMostNameUnits) return;
        name_[units_++] = unit >= L'A' && unit <= L'Z' ? unit | 0x20 : unit;
    }
    std::wstring_view Get() const { return {name_, units_}; }

private:
    wchar_t name_[kMostNameUnits + 1];
    size_t units_ = 0;
};

std::wstring_view OutputOf(std::wstring_view name) {
    const auto* const row =
        std::lower_bound(std::begin(kOutputs), std::end(kOutputs), name,
                         [](const TagOutput& left, auto right) { return left.name < right; });
    return row != std::end(kOutputs) && row->name == name ? row->output : std::wstring_view();
}

// By how much a tag changes the depth of elements that are not shown.
int SkipChange(std::wstring_view name) {
    const bool isEnd = name.starts_with(L'/');
    if (isEnd) name.remove_prefix(1);
    return std::ranges::find(kSkipped, name) == std::end(kSkipped) ? 0 : isEnd ? -1 : 1;
}

class TagResolver {
public:
    TagResolver(const wchar_t* from, const wchar_t* end, wchar_t* to, HtmlTags tags)
        : from_(from),
          end_(end),
          to_(to),
          hasPlaceholders_(tags == HtmlTags::kPlaceholders),
          opening_(hasPlaceholders_ ? L'[' : L'<'),
          closing_(hasPlaceholders_ ? L']' : L'>') {}

    wchar_t* Run() {
        while (from_ != end_) {
            const wchar_t unit = *from_++;
            if (unit == opening_)
                StartTag();
            else if (isInTag_)
                TakeTagUnit(unit);
            else if (skipDepth_ == 0)
                TakeText(unit);
        }
        return to_;
    }

private:
    // A tag may begin inside another; whether the name is over stays as it was then.
    void StartTag() {
        StepOverPlaceholder(opening_);
        isInTag_ = true;
        name_.Empty();
    }
    void TakeTagUnit(wchar_t unit) {
        if (unit == closing_) return EndTag();
        if (isPastName_) return;
        isPastName_ = IsBlank(unit);
        if (!isPastName_) name_.Append(unit);
    }
    void EndTag() {
        StepOverPlaceholder(closing_);
        isInTag_ = isPastName_ = false;
        const std::wstring_view name = name_.Get();
        if (skipDepth_ == 0) to_ = std::ranges::copy(OutputOf(name), to_).out;
        skipDepth_ += SkipChange(name);
    }
    void TakeText(wchar_t unit) {
        const bool isBlank = IsBlank(unit);
        if (!isBlank)
            *to_++ = unit;
        else if (!isAfterBlank_)
            *to_++ = unit == kNoBreakSpace ? unit : L' ';
        isAfterBlank_ = isBlank;
    }
    // The rest of "[_[" and "]_]".
    void StepOverPlaceholder(wchar_t bracket) {
        if (hasPlaceholders_ && end_ - from_ >= 2 && from_[0] == L'_' && from_[1] == bracket) from_ += 2;
    }
    static bool IsBlank(wchar_t unit) {
        return unit == L' ' || unit == L'\t' || unit == L'\n' || unit == L'\r' || unit == kNoBreakSpace;
    }

    const wchar_t* from_;
    const wchar_t* const end_;
    wchar_t* to_;
    const bool hasPlaceholders_;
    const wchar_t opening_;
    const wchar_t closing_;
    TagName name_;
    bool isInTag_ = false;
    bool isPastName_ = false;
    bool isAfterBlank_ = false;
    int64_t skipDepth_ = 0; // below 0 after a stray closing tag, which hides the text as well
};

} // namespace

wchar_t* ResolveHtmlTags(const wchar_t* from, const wchar_t* end, wchar_t* to, HtmlTags tags) {
    static_assert(std::ranges::is_sorted(kOutputs, {}, &TagOutput::name));
    return TagResolver(from, end, to, tags).Run();
}

} // namespace vxut
