// The other process of tests of the clipboard: "clipboard-put FORMAT" puts a profile on it, "clipboard-get"
// prints the one that is there, each value on a line.
#include "profile/clipboard.h"
#include "profile/job.h"
#include "tests/child/tasks.h"

#include <cstdio>
#include <cstdlib>

namespace vxut::test {
namespace {

const AddChildTask clipboardPut("clipboard-put", [] {
    ProfJob job;
    job.Root().AppendItem(L"a", L"from the child \u65E5");
    job.Root().AppendList(L"List").AppendItem(L"b", L"2");
    return SaveToClipboard(job, nullptr, static_cast<uint32_t>(std::atoi(__argv[2])));
});

const AddChildTask clipboardGet("clipboard-get", [] {
    ProfJob job;
    LoadFromClipboard(job, nullptr);
    for (const clsItem* const item : job.Root()) std::printf("%ls\n", item->ValueText());
    return job.LastError();
});

} // namespace
} // namespace vxut::test
