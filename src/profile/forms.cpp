#include "profile/forms.h"

#include "profile/forms/text_form.h"
#include "profile/forms/xfdf_form.h"
#include "profile/forms/xml_form.h"
#include "profile/tree_walk.h"

namespace vxut {
namespace {

constexpr uint32_t kSelectorMask = 0xF;

// The line may be shorter than the form's own first line.
bool StartsXml(const scFileStart& start) { return kXmlFirstLine.starts_with(start.firstLine); }
bool StartsXfdf(const scFileStart& start) { return kXfdfFirstLine.starts_with(start.firstLine); }
bool StartsSections(const scFileStart& start) {
    return start.rootName == L"/" && start.firstLine.starts_with(L'[') && start.firstLine != L"[/]";
}
bool StartsText(const scFileStart&) { return true; }

// In the order in which a file is tested.
constexpr scForm kForms[] = {
    {StartsXml, ProfReadXml, kSelectsOther, 1, &kXmlWriter},
    {StartsXfdf, ProfReadXfdf, 2, 1, &kXfdfWriter},
    {StartsSections, ProfReadSections, kSelectsNone, 0, nullptr},
    {StartsText, ProfReadList, 0, 0, &kTextWriter},
};

template <class Test>
const scForm* FirstForm(Test test) {
    for (const scForm& form : kForms)
        if (test(form)) return &form;
    return nullptr;
}

} // namespace

const scForm& FormOfFile(const scFileStart& start) {
    return *FirstForm([&](const scForm& form) { return form.matches(start); });
}

const scForm& FormOfFormat(uint32_t format) {
    const auto selector = static_cast<int>(format & kSelectorMask);
    const scForm* const form = FirstForm([&](const scForm& row) { return row.selector == selector; });
    return form ? *form : *FirstForm([](const scForm& row) { return row.selector == kSelectsOther; });
}

bool ProfWriteList(const clsItemList& list, int depth, clsProfOutput& output, const IclsFormWriter& writer) {
    writer.OpenList(list, depth, output);
    int entryDepth = depth + writer.DepthStep(list);
    clsTreeWalk walk(list);
    while (const auto step = walk.Next()) {
        if (output.HasFailed()) return false;
        if (step == clsTreeWalk::kItem) {
            writer.WriteItem(walk.Item(), entryDepth, output);
        } else if (step == clsTreeWalk::kEnter) {
            writer.OpenList(walk.List(), entryDepth, output);
            entryDepth += writer.DepthStep(walk.List());
        } else {
            entryDepth -= writer.DepthStep(walk.List());
            writer.CloseList(walk.List(), entryDepth, output);
        }
    }
    writer.CloseList(list, depth, output);
    return !output.HasFailed();
}

} // namespace vxut
