#include "prof/job.h"

#include "base/default_code_page.h"
#include "base/library_version.h"
#include "profile/export_support.h"
#include "profile/save.h"

#include <iterator>

using namespace vxut;

namespace {

// A handle of a new job that open(job) has filled, with the reason of a failure as the thread's last error.
template <class Open>
HPROF OpenJob(const wchar_t* rootName, Open open) {
    auto job = std::make_unique<ProfJob>(rootName);
    open(*job);
    SetLastError(job->SystemError());
    return HandleOf(job.release());
}

// Calls a function that opens a job. Null if there is no memory for one.
template <class Open>
HPROF GuardedOpen(Open open) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return Guarded<HPROF>(nullptr, open);
}

template <class Unit>
HPROF OpenShared(const Unit* name) {
    return GuardedOpen(
        [=] { return OpenJob(L"/", [&](ProfJob& job) { job.OpenShared(clsWideArgument(name)); }); });
}

template <class Unit>
HPROF OpenExclusive(const Unit* name) {
    return GuardedOpen(
        [=] { return OpenJob(L"/", [&](ProfJob& job) { job.OpenExclusive(clsWideArgument(name)); }); });
}

template <class Unit>
HPROF OpenStream(IStream* stream, const Unit* name, uint32_t level) {
    return GuardedOpen([=] {
        const clsWideArgument wide(name);
        return OpenJob(name ? wide : L"/", [&](ProfJob& job) { job.OpenStream(stream, level); });
    });
}

template <class Unit>
int32_t Save(HPROF job, const Unit* name, uint32_t format) {
    if (!job) return PROF_OK;
    return GuardedOutcome(PROF_ERR_SAVE,
                          [=] { return SaveProfile(*JobOf(job), clsWideArgument(name), format); });
}

} // namespace

VXUT_API HPROF ProfJobOpenW(const wchar_t* fileName) { return OpenShared(fileName); }
VXUT_API HPROF ProfJobOpenA(const char* fileName) { return OpenShared(fileName); }

VXUT_API HPROF ProfJobOpenExclusiveW(const wchar_t* fileName) { return OpenExclusive(fileName); }
VXUT_API HPROF ProfJobOpenExclusiveA(const char* fileName) { return OpenExclusive(fileName); }

VXUT_API HPROF ProfJobOpenStream(IStream* stream) { return OpenStream(stream, L"/", 0); }

VXUT_API HPROF ProfJobOpenStreamObjectW(IStream* stream, const wchar_t* name, uint32_t level) {
    return OpenStream(stream, name, level);
}
VXUT_API HPROF ProfJobOpenStreamObjectA(IStream* stream, const char* name, uint32_t level) {
    return OpenStream(stream, name, level);
}

VXUT_API void ProfJobAddRef(HPROF job) {
    if (job) JobOf(job)->AddReference();
}

VXUT_API void ProfJobClose(HPROF job) {
    Guarded([=] {
        if (job && JobOf(job)->DropReference()) clsGenericAutoDelete<ProfJob>(JobOf(job)).reset();
    });
}

VXUT_API int32_t ProfGetError(HPROF job) { return job ? JobOf(job)->LastError() : PROF_ERR_JOB; }

VXUT_API int32_t ProfSaveW(HPROF job, const wchar_t* fileName, uint32_t format) {
    return Save(job, fileName, format);
}
VXUT_API int32_t ProfSaveA(HPROF job, const char* fileName, uint32_t format) {
    return Save(job, fileName, format);
}

VXUT_API int32_t ProfSaveToStream(HPROF job, IStream* stream, uint32_t format) {
    if (!job) return PROF_OK;
    return GuardedOutcome(PROF_ERR_WRITE, [=] { return SaveProfileToStream(*JobOf(job), stream, format); });
}

VXUT_API uint32_t ProfGetOption(uint32_t option) {
    return option == PROF_OPTION_CODE_PAGE ? DefaultCodePage() : 0;
}

VXUT_API void ProfSetOption(uint32_t option, uint32_t value) {
    if (option == PROF_OPTION_CODE_PAGE) SetDefaultCodePage(value);
}

VXUT_API void ProfSetDebug(void) {}

VXUT_API uint32_t ProfGetVersion(uint32_t selector) {
    constexpr uint32_t kAnswers[] = {kMajorVersion << 8 | kMinorVersion, kMajorVersion, kMinorVersion};
    return selector < std::size(kAnswers) ? kAnswers[selector] : 0xFFFFFFFF;
}
