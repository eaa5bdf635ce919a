// Saves without end, for tests that kill the process meanwhile: "save-forever FILE" saves by name,
// "save-kept-forever FILE" into a file that the job keeps.
#include "profile/job.h"
#include "profile/save.h"
#include "tests/child/tasks.h"
#include "tests/support/generations.h"

#include <windows.h>
// After windows.h, which it needs:
#include <shellapi.h>

namespace vxut::test {
namespace {

// The file that the command line names.
String TargetFile() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    return count > 2 ? String(arguments[2]) : String();
}

// Ends only when a save fails.
int SaveForever(bool isKept) {
    const String path = TargetFile();
    ProfJob job;
    if (isKept) job.OpenExclusive(path.Text());
    if (job.LastError() != PROF_OK) return 1;
    for (int generation = 0;; generation ^= 1) {
        FillGeneration(job, generation);
        if (SaveProfile(job, isKept ? nullptr : path.Text(), PROF_FORMAT_TEXT).code != PROF_OK) return 2;
    }
}

const AddChildTask saveForever("save-forever", [] { return SaveForever(false); });
const AddChildTask saveKeptForever("save-kept-forever", [] { return SaveForever(true); });

} // namespace
} // namespace vxut::test
