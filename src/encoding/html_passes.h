// The passes of the conversion from HTML to text.
//
// Each reads the units from "from" to "end", writes its result to "to" and returns the end of it. A result is
// never longer than what was read. Unless a pass says otherwise it may work in place, with to equal to from.
#pragma once

#include "encoding/html.h"

namespace vxut {

// Removes everything from the first "<!--" to the last "-->".
wchar_t* RemoveHtmlComments(const wchar_t* from, const wchar_t* end, wchar_t* to);

// Replaces CR LF by CR.
wchar_t* JoinHtmlLineEnds(const wchar_t* from, const wchar_t* end, wchar_t* to);

// Replaces links by their texts and targets. Does not work in place.
wchar_t* RenderHtmlLinks(const wchar_t* from, const wchar_t* end, wchar_t* to);

// Replaces tags by what they mean, drops elements that are not shown, and collapses blanks.
wchar_t* ResolveHtmlTags(const wchar_t* from, const wchar_t* end, wchar_t* to, HtmlTags tags);

// Replaces entities by characters.
wchar_t* DemaskHtmlUnits(const wchar_t* from, const wchar_t* end, wchar_t* to);

// Collapses blanks and removes the outermost guillemets.
wchar_t* CleanHtmlText(const wchar_t* from, const wchar_t* end, wchar_t* to);

// Shortens long sequences of CR.
wchar_t* ShortenHtmlGaps(const wchar_t* from, const wchar_t* end, wchar_t* to);

} // namespace vxut
