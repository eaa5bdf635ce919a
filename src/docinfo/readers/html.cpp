// HTML and MHTML: title and meta tags of the head, or the properties that office programs write there.
//
// Source: HTML 4.01, section 7.4. There is no parser: tags are found by patterns, so only those written as
// office programs and simple generators write them count.
#include "docinfo/readers/head_text.h"
#include "docinfo/readers/html_references.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "text/shared_regex.h"

namespace vxut {
namespace {

// A text between two patterns.
struct Enclosed {
    clsSharedRegEx opening;
    clsSharedRegEx closing;

    // Finds what is between the first match of opening and the next one of closing. A pattern of both would
    // find the same, but search the rest of a text without closing from each opening.
    bool Find(const String& text, String& inner) {
        clsRegExMatchList groups;
        if (!opening.Match(text, &groups)) return false;
        const scRegExMatch& start = groups.get(0);
        const String rest = text.Mid(start.position + start.text.Length());
        if (!closing.Match(rest, &groups)) return false;
        inner = rest.Left(groups.get(0).position);
        return true;
    }
};

struct Meta {
    Enclosed content;
    clsVariant clsDocu::* property;
};

clsSharedRegEx Pattern(const wchar_t* pattern) { return clsSharedRegEx(pattern, kRegExCaseless); }

Enclosed head{Pattern(L"<head>"), Pattern(L"</head>")};
Enclosed title{Pattern(L"<title>"), Pattern(L"</title>")};
Enclosed officeBlock{Pattern(L"<o:DocumentProperties>"), Pattern(L"</o:DocumentProperties>")};

constexpr wchar_t kTagEnd[] = LR"(">)";
Meta metas[] = {
    {{Pattern(LR"re(<meta\s+name="author"\s+content=")re"), Pattern(kTagEnd)}, &clsDocu::Author},
    {{Pattern(LR"re(<meta\s+name="(?:description|DC\.Description)"\s+content=")re"), Pattern(kTagEnd)},
     &clsDocu::Comments},
    {{Pattern(LR"re(<meta\s+name="DC\.Subject"\s+content=")re"), Pattern(kTagEnd)}, &clsDocu::Subject},
    {{Pattern(LR"re(<meta\s+name="(?:keywords|DC\.Subject\.Keywords)"\s+content=")re"), Pattern(kTagEnd)},
     &clsDocu::Keywords},
};

} // namespace

int ReadHtml(clsDocu& document, clsDocFile& file) {
    String text;
    if (!ReadHeadText(file, text) || !head.Find(text, text)) return 0;
    DecodeHtmlEntities(text, true);
    String value;
    if (title.Find(text, value)) SetText(document.Title, value);
    if (officeBlock.Find(text, value)) return ReadOfficeBlock(document, value);
    for (Meta& meta : metas)
        if (meta.content.Find(text, value)) SetText(document.*meta.property, value);
    return 0;
}

} // namespace vxut
