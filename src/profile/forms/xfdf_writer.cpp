#include "profile/forms/xfdf_form.h"

#include "profile/forms/narrow_output.h"
#include "profile/forms/xml_form.h"

namespace vxut {
namespace {

constexpr std::wstring_view kHeader =
    L"\r\n<xfdf xmlns=\"http://ns.adobe.com/xfdf/\" xml:space=\"preserve\">\r\n<fields>\r\n";

} // namespace

int clsXfdfWriter::DepthStep(const clsItemList& list) const { return XmlHasTag(list) ? 1 : 0; }

void clsXfdfWriter::WriteHeader(clsProfOutput& output) const {
    PutNarrow(output, kXfdfFirstLine);
    PutNarrow(output, kHeader);
}

void clsXfdfWriter::WriteTrailer(clsProfOutput& output) const {
    PutNarrow(output, L"</fields>\r\n</xfdf>\r\n");
}

void clsXfdfWriter::OpenList(const clsItemList& list, int depth, clsProfOutput& output) const {
    if (!XmlHasTag(list)) return;
    PutNarrowIndent(output, depth);
    PutNarrow(output, L"<field=\"");
    PutNarrow(output, list.Name());
    PutNarrow(output, L"\">\r\n");
}

void clsXfdfWriter::CloseList(const clsItemList& list, int depth, clsProfOutput& output) const {
    if (!XmlHasTag(list)) return;
    PutNarrowIndent(output, depth);
    PutNarrow(output, L"</field>\r\n");
}

void clsXfdfWriter::WriteItem(const clsItem& item, int depth, clsProfOutput& output) const {
    PutNarrowIndent(output, depth);
    PutNarrow(output, L"<field name=\"");
    PutNarrow(output, item.Name());
    PutNarrow(output, L"\">\r\n");
    PutNarrowIndent(output, depth);
    PutNarrow(output, L" <value>");
    PutNarrow(output, item.Value());
    PutNarrow(output, L"</value>\r\n");
    PutNarrowIndent(output, depth);
    PutNarrow(output, L"</field>\r\n");
}

} // namespace vxut
