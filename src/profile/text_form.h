// The text form of a profile, and its older relative without nesting.
//
//     [/]
//      {
//      Name=Value
//      [List]
//       {
//       }
//      }
#pragma once

#include "profile/forms.h"

namespace vxut {

// Characters that the form needs for itself stand for others in the file.
constexpr wchar_t kMappedEquals = L'\u2338';
constexpr wchar_t kMappedOpen = L'\u301A';
constexpr wchar_t kMappedClose = L'\u301B';
// Control characters appear as their pictures, this much higher.
constexpr wchar_t kControlPictures = 0x2400;
constexpr wchar_t kFirstPrintable = 0x20;

// At level -1 everything before the line "[/]" and behind its close is ignored; at others the entries stand
// at once, up to the first "}" that closes nothing.
void ProfReadList(clsProfileInput& input, int level, clsItemList& list);

// Files of "[...]" lines without "[/]". The name of the first section is dropped, and each later section lies
// inside the one before it, as nothing closes a section: callers rely on it.
void ProfReadSections(clsProfileInput& input, int level, clsItemList& list);

class clsTextWriter : public IclsFormWriter {
public:
    void WriteHeader(clsProfOutput& output) const override;
    void WriteTrailer(clsProfOutput&) const override {}
    void OpenList(const clsItemList& list, int depth, clsProfOutput& output) const override;
    void CloseList(const clsItemList& list, int depth, clsProfOutput& output) const override;
    void WriteItem(const clsItem& item, int depth, clsProfOutput& output) const override;
    int DepthStep(const clsItemList&) const override { return 1; }
};
inline constexpr clsTextWriter kTextWriter;

} // namespace vxut
