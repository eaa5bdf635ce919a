#include "prof/embedded.h"

#include "prof/codes.h"
#include "profile/embedded_data.h"
#include "profile/embedded_files.h"
#include "profile/export_support.h"

using namespace vxut;

// The arguments are copied before a file is opened: a host's pointer may be invalid.
namespace {

template <class Unit>
String TextOf(const Unit* text) {
    return String(clsWideArgument(text));
}

// An addition without a result leaves the thread's last error only.
template <class Append>
void GuardedAppend(Append append) {
    GuardedOutcome(PROF_OK, [&]() -> scOutcome { return {PROF_OK, append()}; });
}

template <class Unit>
void AppendFile(HPROF job, HPROFLIST list, const Unit* name, const Unit* password, const Unit* fileName) {
    if (!job) return;
    GuardedAppend([=] {
        return AppendFile(PlaceOf(job, list), clsWideArgument(name), TextOf(password), TextOf(fileName));
    });
}

template <class Unit>
int32_t GetFile(HPROF job, HPROFLIST list, const Unit* name, const Unit* password, const Unit* fileName) {
    if (!job) return PROF_OK;
    return GuardedOutcome(PROF_ERR_MEMORY, [=] {
        return GetFile(FindItem(job, list, name), TextOf(password), TextOf(fileName));
    });
}

template <class Unit>
void AppendStream(HPROF job, HPROFLIST list, const Unit* name, const Unit* password, IStream* stream) {
    if (!job) return;
    GuardedAppend(
        [=] { return AppendStream(PlaceOf(job, list), clsWideArgument(name), TextOf(password), stream); });
}

template <class Unit>
int32_t GetStream(HPROF job, HPROFLIST list, const Unit* name, const Unit* password, IStream* stream) {
    if (!job) return PROF_OK;
    return GuardedOutcome(PROF_ERR_MEMORY,
                          [=] { return GetStream(FindItem(job, list, name), TextOf(password), stream); });
}

template <class Unit>
int32_t AppendFiles(HPROF job, HPROFLIST list, const Unit* pattern, const Unit* password) {
    if (!job) return 0;
    return GuardedOutcome(0,
                          [=] { return AppendFiles(ListOf(job, list), TextOf(pattern), TextOf(password)); });
}

template <class Unit>
int32_t ExtractFiles(HPROF job, HPROFLIST list, const Unit* folder, const Unit* password) {
    if (!job) return PROF_OK;
    return GuardedOutcome(PROF_ERR_MEMORY,
                          [=] { return ExtractFiles(ListOf(job, list), TextOf(folder), TextOf(password)); });
}

} // namespace

VXUT_API void ProfAppendFileW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                              const wchar_t* fileName) {
    AppendFile(job, list, name, password, fileName);
}
VXUT_API void ProfAppendFileA(HPROF job, HPROFLIST list, const char* name, const char* password,
                              const char* fileName) {
    AppendFile(job, list, name, password, fileName);
}

VXUT_API int32_t ProfGetFileW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                              const wchar_t* fileName) {
    return GetFile(job, list, name, password, fileName);
}
VXUT_API int32_t ProfGetFileA(HPROF job, HPROFLIST list, const char* name, const char* password,
                              const char* fileName) {
    return GetFile(job, list, name, password, fileName);
}

VXUT_API void ProfAppendStreamW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                                IStream* stream) {
    AppendStream(job, list, name, password, stream);
}
VXUT_API void ProfAppendStreamA(HPROF job, HPROFLIST list, const char* name, const char* password,
                                IStream* stream) {
    AppendStream(job, list, name, password, stream);
}

VXUT_API int32_t ProfGetStreamW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                                IStream* stream) {
    return GetStream(job, list, name, password, stream);
}
VXUT_API int32_t ProfGetStreamA(HPROF job, HPROFLIST list, const char* name, const char* password,
                                IStream* stream) {
    return GetStream(job, list, name, password, stream);
}

VXUT_API int32_t ProfAppendFilesW(HPROF job, HPROFLIST list, const wchar_t* pattern,
                                  const wchar_t* password) {
    return AppendFiles(job, list, pattern, password);
}
VXUT_API int32_t ProfAppendFilesA(HPROF job, HPROFLIST list, const char* pattern, const char* password) {
    return AppendFiles(job, list, pattern, password);
}

VXUT_API int32_t ProfExtractFilesW(HPROF job, HPROFLIST list, const wchar_t* folder,
                                   const wchar_t* password) {
    return ExtractFiles(job, list, folder, password);
}
VXUT_API int32_t ProfExtractFilesA(HPROF job, HPROFLIST list, const char* folder, const char* password) {
    return ExtractFiles(job, list, folder, password);
}
