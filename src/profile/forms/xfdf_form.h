// The XFDF form of a profile: the XML form of the field data of PDF forms.
//
//     <field="List">
//      <field name="Name">
//       <value>Value</value>
//      </field>
//     </field>
//
// The reader is much narrower than the writer and does not read what the writer writes; callers rely on both.
// A tag for a list without an attribute name is what the writer writes, and there is no escape for the
// characters of tags.
#pragma once

#include "profile/forms.h"

namespace vxut {

// The first line of such a file. The file is in the default code page, whatever the line claims.
inline constexpr std::wstring_view kXfdfFirstLine = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

// Reads tags "<field>", each of which adds its name to a dotted path, and "<value>", whose text becomes an
// item under that path. The first "</field>" ends the reading. At level -1 these tags are damage, so that no
// whole file can be read; the reader for XML calls with level 0. Throws clsLoadException for damage and
// std::bad_alloc; the items read before stay.
void ProfReadXfdf(clsProfileInput& input, int level, clsItemList& list);

class clsXfdfWriter : public IclsFormWriter {
public:
    void WriteHeader(clsProfOutput& output) const override;
    void WriteTrailer(clsProfOutput& output) const override;
    void OpenList(const clsItemList& list, int depth, clsProfOutput& output) const override;
    void CloseList(const clsItemList& list, int depth, clsProfOutput& output) const override;
    void WriteItem(const clsItem& item, int depth, clsProfOutput& output) const override;
    int DepthStep(const clsItemList& list) const override;
};
inline constexpr clsXfdfWriter kXfdfWriter;

} // namespace vxut
