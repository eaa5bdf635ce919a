// Links in HTML, as the expression
//     ^(.*)<a\s+(.*)href="(.*)"(.*)>(.*)</a>(.*)$
// finds them: letters in any case, dots for any unit, each group as short as possible. If the first
// occurrences of the pieces, each behind the one before, do not make a match, later ones do not either, so
// one search forwards decides.
#include "base/text_units.h"
#include "encoding/html_passes.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace vxut {
namespace {

struct Span {
    const wchar_t* from = nullptr;
    const wchar_t* end = nullptr;

    int64_t Length() const { return end - from; }
};

// The groups that are used. before ends where the tag begins, and rest begins behind the closing tag.
struct Link {
    Span before;
    Span target;
    Span text;
    Span rest;
};

constexpr wchar_t LowerAscii(wchar_t unit) { return unit >= L'A' && unit <= L'Z' ? unit | 0x20 : unit; }

bool IsSpace(wchar_t unit) { return unit == L' ' || (unit >= L'\t' && unit <= L'\r'); }

// Whether a lower-case text begins here.
bool StartsWith(const wchar_t* from, const wchar_t* end, const wchar_t* wanted) {
    for (; *wanted; ++wanted, ++from)
        if (from == end || LowerAscii(*from) != *wanted) return false;
    return true;
}

// Cuts the span behind the first occurrence of a lower-case text and returns the span before it. Not found:
// the span becomes null.
Span CutAt(Span& left, const wchar_t* wanted) {
    const bool isLetter = *wanted >= L'a' && *wanted <= L'z';
    for (const wchar_t* at = left.from; at != left.end; ++at) {
        // A first unit without case can be searched for in blocks.
        if (!isLetter) at += FindUnitWithin(at, static_cast<size_t>(left.end - at), *wanted);
        if (at == left.end) break;
        if (!StartsWith(at, left.end, wanted)) continue;
        const Span before{left.from, at};
        left.from = at + std::wcslen(wanted);
        return before;
    }
    left = {};
    return {};
}

// The same for "<a" and one white space. More of it belongs to what follows.
Span CutAtLinkStart(Span& left) {
    const wchar_t* const start = left.from;
    while (left.from) {
        const Span before = CutAt(left, L"<a");
        if (!left.from || left.from == left.end || !IsSpace(*left.from)) {
            if (left.from == left.end) left = {};
            continue;
        }
        ++left.from;
        return {start, before.end};
    }
    return {};
}

bool FindLink(Span left, Link& link) {
    link.before = CutAtLinkStart(left);
    if (left.from) CutAt(left, L"href=\"");
    if (left.from) link.target = CutAt(left, L"\"");
    if (left.from) CutAt(left, L">");
    if (left.from) link.text = CutAt(left, L"</a>");
    if (!left.from) return false;
    // "$" is also true before a line feed that ends the text.
    if (left.Length() > 0 && left.end[-1] == L'\n') --left.end;
    link.rest = left;
    return true;
}

bool IsSameIgnoringCase(const Span& left, const Span& right) {
    if (left.Length() != right.Length()) return false;
    return IString(left.from, 0, left.Length()).CompareTo(String(right.from, 0, right.Length())) == 0;
}

wchar_t* Copy(const Span& span, wchar_t* to) { return std::copy(span.from, span.end, to); }

wchar_t* CopyLink(const Link& link, wchar_t* to) {
    to = Copy(link.before, to);
    if (IsSameIgnoringCase(link.text, link.target)) return Copy(link.target, to);
    to = Copy(link.text, to);
    *to++ = L' ';
    *to++ = L'[';
    to = Copy(link.target, to);
    *to++ = L']';
    return to;
}

// Returns the place of the next "<a", in small letters only; end if there is none.
const wchar_t* NextLinkHint(const wchar_t* from, const wchar_t* end) {
    return from + FindUnitsWithin(from, static_cast<size_t>(end - from), L"<a", 2);
}

} // namespace

wchar_t* RenderHtmlLinks(const wchar_t* from, const wchar_t* end, wchar_t* to) {
    Span rest{from, end};
    const wchar_t* hint = NextLinkHint(from, end);
    if (hint == end) return Copy(rest, to);
    while (hint < rest.end) {
        Link link;
        if (!FindLink(rest, link)) return Copy(rest, to);
        to = CopyLink(link, to);
        rest = link.rest;
        // Searched again only when it is passed, or a late one would be searched for at every link.
        if (hint < rest.from) hint = NextLinkHint(rest.from, rest.end);
    }
    return to; // what follows the last link is dropped: callers rely on it
}

} // namespace vxut
