// The XML form of a profile: a document of its own shape, with one tag at the start of each line.
//
//     <profile>
//      <item name="Name">Value</item>
//      <list name="List">
//      </list>
//     </profile>
#pragma once

#include "profile/forms.h"

namespace vxut {

// The first line of such a file.
inline constexpr std::wstring_view kXmlFirstLine =
    L"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"yes\"?>";

// A list of this name has no lines of its own: its entries are written in its place, and read into the list
// around it.
inline constexpr std::wstring_view kXmlTransparentName = L"/";

// Whether a list is written with a tag. The root of a file is not, whatever its name.
inline bool XmlHasTag(const clsItemList& list) noexcept {
    return list.Owner() && list.Name() != kXmlTransparentName;
}

// Reads lines, not XML: an element never spans lines, of two tags on a line only the first counts, and
// unknown tags are passed over. Level -1 is a whole file, whose entries begin behind "<profile>". Throws
// clsLoadException for damage and std::bad_alloc; lists that were closed before stay. A "<xfdf " tag turns to
// the rules of that form.
void ProfReadXml(clsProfileInput& input, int level, clsItemList& list);

class clsXmlWriter : public IclsFormWriter {
public:
    void WriteHeader(clsProfOutput& output) const override;
    void WriteTrailer(clsProfOutput& output) const override;
    void OpenList(const clsItemList& list, int depth, clsProfOutput& output) const override;
    void CloseList(const clsItemList& list, int depth, clsProfOutput& output) const override;
    void WriteItem(const clsItem& item, int depth, clsProfOutput& output) const override;
    int DepthStep(const clsItemList& list) const override { return XmlHasTag(list) ? 1 : 0; }
};
inline constexpr clsXmlWriter kXmlWriter;

} // namespace vxut
