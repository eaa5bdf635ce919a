#include "profile/forms/xml_form.h"
#include "profile/forms/xml_text.h"

namespace vxut {
namespace {

constexpr std::wstring_view kHeader =
    L"<!-- DTD -->\r\n"
    L"<!DOCTYPE profile [\r\n"
    L" <!ENTITY cr \"&#x000a;<!--CR-->\">\r\n"
    L" <!ENTITY tab \"&#x0009;<!--TAB-->\">\r\n"
    L" <!ELEMENT profile (list*, item*)*>\r\n"
    L"  <!ELEMENT list (list?, item?)*>\r\n"
    L"  <!ATTLIST list name CDATA #REQUIRED>\r\n"
    L"   <!ELEMENT item (#PCDATA)>\r\n"
    L"   <!ATTLIST item name CDATA #REQUIRED>\r\n"
    L"   <!ATTLIST item xml:space (default|preserve) \"preserve\"> ]>\r\n"
    L"<!-- DATA -->\r\n"
    L"<profile>\r\n";

void PutStartTag(clsProfOutput& output, int depth, std::wstring_view tag, std::wstring_view name) {
    output.PutIndent(depth);
    output.Put(tag);
    XmlPutEscaped(output, name);
    output.Put(L"\">");
}

} // namespace

void clsXmlWriter::WriteHeader(clsProfOutput& output) const {
    output.Put(L"\uFEFF");
    output.Put(kXmlFirstLine);
    output.Put(L"\r\n");
    output.Put(kHeader);
}

void clsXmlWriter::WriteTrailer(clsProfOutput& output) const { output.Put(L"</profile>\r\n"); }

void clsXmlWriter::OpenList(const clsItemList& list, int depth, clsProfOutput& output) const {
    if (!XmlHasTag(list)) return;
    PutStartTag(output, depth, L"<list name=\"", list.Name());
    output.Put(L"\r\n");
}

void clsXmlWriter::CloseList(const clsItemList& list, int depth, clsProfOutput& output) const {
    if (!XmlHasTag(list)) return;
    output.PutIndent(depth);
    output.Put(L"</list>\r\n");
}

void clsXmlWriter::WriteItem(const clsItem& item, int depth, clsProfOutput& output) const {
    PutStartTag(output, depth, L"<item name=\"", item.Name());
    XmlPutEscaped(output, item.Value());
    output.Put(L"</item>\r\n");
}

} // namespace vxut
