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

// In names, characters of the form's own syntax are replaced by these.
constexpr wchar_t kMappedEquals = L'\u2338';
constexpr wchar_t kMappedOpen = L'\u301A';
constexpr wchar_t kMappedClose = L'\u301B';
// Control characters are written as their pictures, at this offset.
constexpr wchar_t kControlPictures = 0x2400;
constexpr wchar_t kFirstPrintable = 0x20;

// Reads lines into a list. At level -1 everything before the line "[/]" and after its close is ignored; at
// other levels the input begins with the entries and ends at the first "}" without an open list. A list joins
// its parent when it is closed. Throws std::bad_alloc; lists closed before stay.
void ProfReadList(clsProfileInput& input, int level, clsItemList& list);

// Reads a file of "[...]" lines without "[/]". The name of the first section is dropped, and each later
// section is nested in the one before it, because nothing closes a section: callers rely on it.
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
