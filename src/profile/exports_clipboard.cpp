#include "prof/clipboard.h"

#include "profile/clipboard.h"
#include "profile/export_support.h"

using namespace vxut;

VXUT_API HPROF ProfJobOpenClipboard(HWND window) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY); // stays if there is no memory for the job
    return Guarded<HPROF>(nullptr, [=] {
        auto job = std::make_unique<ProfJob>();
        LoadFromClipboard(*job, window);
        SetLastError(job->SystemError());
        return HandleOf(job.release());
    });
}

VXUT_API int32_t ProfSaveToClipboard(HPROF job, HWND window, uint32_t format) {
    if (!job) return PROF_OK;
    return Guarded<int32_t>(PROF_ERR_WRITE, [=] { return SaveToClipboard(*JobOf(job), window, format); });
}

VXUT_API int ProfIsClipboardDataAvailable(void) {
    return IsClipboardFormatAvailable(ProfileClipboardFormat());
}
