// The forms in which a profile can be stored: how each is recognised, read and written.
#pragma once

#include "files/file.h"
#include "profile/item_list.h"
#include "profile/line_reader.h"
#include "profile/output.h"

#include <cstdint>
#include <string_view>

namespace vxut {

class ProfJob;

// Writes the parts of one form. Depths count the levels of indentation. Writers have no state and serve all
// threads.
struct IclsFormWriter {
    virtual ~IclsFormWriter() = default;
    // The text before and after the root of a whole file.
    virtual void WriteHeader(clsProfOutput& output) const = 0;
    virtual void WriteTrailer(clsProfOutput& output) const = 0;
    virtual void OpenList(const clsItemList& list, int depth, clsProfOutput& output) const = 0;
    virtual void CloseList(const clsItemList& list, int depth, clsProfOutput& output) const = 0;
    virtual void WriteItem(const clsItem& item, int depth, clsProfOutput& output) const = 0;
    // The depth of a list's entries relative to the list.
    virtual int DepthStep(const clsItemList& list) const = 0;
};

// What is known of a file before it is read.
struct scFileStart {
    std::wstring_view firstLine;
    std::wstring_view rootName;
};

struct scForm {
    bool (*matches)(const scFileStart& start); // whether a file is of this form
    // Fills a list from a file. Level -1 means file level, others a fragment inside a larger text.
    void (*read)(clsProfileInput& input, int level, clsItemList& list);
    // The low bits of a save's format that choose this form, or one of the values below.
    int selector;
    int startDepth;               // of the root of a whole file
    const IclsFormWriter* writer; // null for a form that is only read; FormOfFormat() never returns it
};
constexpr int kSelectsOther = -1; // all numbers that no other form has
constexpr int kSelectsNone = -2;  // only read

const scForm& FormOfFile(const scFileStart& start);
const scForm& FormOfFormat(uint32_t format);

// Writes a list and everything below it. Returns false as soon as something could not be written.
bool ProfWriteList(const clsItemList& list, int depth, clsProfOutput& output, const IclsFormWriter& writer);

} // namespace vxut
