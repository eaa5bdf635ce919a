#include "bystander.h"

#include "prof.h"
#include "util.h"

#include <algorithm>
#include <cwchar>
#include <utility>

namespace vxut::test {
namespace {

constexpr uint64_t kRoundsForEachSave = 16; // a save waits for the disk

} // namespace

Bystander::Bystander(std::wstring folder) : folder_(std::move(folder)), thread_([this] { Run(); }) {}

Bystander::~Bystander() {
    isOver_ = true;
    thread_.join();
}

bool Bystander::AwaitRound() const {
    const uint64_t wanted = rounds_ + 2; // the one that has begun may be past what matters
    while (rounds_ < wanted && !hasFailed_) {
        if (GetTickCount64() - stepStart_ > kPatience) return false;
        std::this_thread::yield();
    }
    return !hasFailed_;
}

void Bystander::Run() {
    while (!isOver_ && !hasFailed_) {
        UseHeaps();
        UseDebugChannel();
        UseProfiles();
        if (rounds_ % kRoundsForEachSave == 0) {
            UseFiles();
            UseClipboard();
        }
        UseTheRest();
        ++rounds_;
    }
}

template <class Call>
void Bystander::Do(const char* step, Call&& call) {
    if (hasFailed_) return;
    const uint64_t start = GetTickCount64();
    stepStart_ = start;
    step_ = step;
    if (!call()) hasFailed_ = true;
    const uint64_t end = GetTickCount64();
    longest_ = std::max<uint64_t>(longest_, end - start);
    stepStart_ = end;
}

void Bystander::UseHeaps() {
    HUTILJOB job = nullptr;
    HUTILHEAP heap = nullptr;
    void *debug = nullptr, *plain = nullptr;
    Do("UtilJobOpen", [&] { return (job = UtilJobOpen(L"BYSTANDER", 0)) != nullptr; });
    Do("UtilHeapCreate", [&] { return (heap = UtilHeapCreate(job, L"WORK", UTIL_HEAP_DEBUG)) != nullptr; });
    Do("UtilHeapObjectAlloc", [&] { return (debug = UtilHeapObjectAlloc(heap, 24, 0)) != nullptr; });
    Do("UtilHeapObjectAlloc",
       [&] { return (plain = UtilHeapObjectAlloc(heap, 24, UTIL_OBJECT_PLAIN)) != nullptr; });
    Do("UtilHeapValidate", [&] { return UtilHeapValidate(heap, debug) == UTIL_OK; });
    Do("UtilHeapSize", [&] { return UtilHeapSize(heap) > 0; });
    Do("UtilHeapObjectSize", [&] { return UtilHeapObjectSize(heap, plain) == 24; });
    for (void* const object : {debug, plain})
        Do("UtilHeapObjectFree", [&] { return UtilHeapObjectFree(heap, object) == UTIL_OK; });
    Do("UtilHeapDelete", [&] { return UtilHeapDelete(heap) == UTIL_OK; });
    Do("UtilJobClose", [&] { return UtilJobClose(job) == UTIL_OK; });
}

void Bystander::UseDebugChannel() {
    Do("UtilDebug", [] { return UtilDebug(L"round"), true; });
    Do("UtilDebugExt", [] { return UtilDebugExt(L"WORK", 1, nullptr), true; });
    Do("UtilDebugExt", [] { return UtilDebugExt(L"WORK", -1, L"done"), true; });
    Do("UtilGetFlags", [] { return UtilGetFlags() == 1; });
}

void Bystander::UseProfiles() {
    HPROF job = nullptr, copy = nullptr;
    int32_t number = 0;
    Do("ProfJobOpenW", [&] { return (job = ProfJobOpenW(nullptr)) != nullptr; });
    Do("ProfJobOpenW", [&] { return (copy = ProfJobOpenW(nullptr)) != nullptr; });
    Do("ProfSetIntW", [&] { return ProfSetIntW(job, nullptr, L"list/number", 42), true; });
    Do("ProfAppendStringA", [&] { return ProfAppendStringA(job, nullptr, "text", "value"), true; });
    Do("ProfCopyList", [&] { return ProfCopyList(copy, nullptr, job, nullptr) == PROF_OK; });
    Do("ProfGetIntW", [&] { return ProfGetIntW(copy, nullptr, L"list/number", &number, 0) == PROF_OK; });
    Do("ProfDeleteListW", [&] { return ProfDeleteListW(copy, nullptr, L"list"), number == 42; });
    for (const HPROF closed : {copy, job}) Do("ProfJobClose", [&] { return ProfJobClose(closed), true; });
}

void Bystander::UseFiles() {
    const std::wstring path = folder_ + L"bystander.prf";
    HPROF job = nullptr;
    Do("ProfJobOpenExclusiveW", [&] { return (job = ProfJobOpenExclusiveW(path.c_str())) != nullptr; });
    Do("ProfSetStringW", [&] { return ProfSetStringW(job, nullptr, L"name", L"value"), true; });
    Do("ProfSaveW", [&] { return ProfSaveW(job, nullptr, PROF_FORMAT_TEXT) == PROF_OK; });
    Do("ProfJobClose", [&] { return ProfJobClose(job), true; });
    Do("ProfJobOpenW", [&] { return ProfGetError(job = ProfJobOpenW(path.c_str())) == PROF_OK; });
    Do("ProfJobClose", [&] { return ProfJobClose(job), DeleteFileW(path.c_str()); });
}

// The clipboard is a lock of the whole session.
void Bystander::UseClipboard() {
    HPROF job = nullptr;
    Do("OpenClipboard", [] { return OpenClipboard(nullptr) && CloseClipboard(); });
    Do("ProfJobOpenClipboard", [&] { return (job = ProfJobOpenClipboard(nullptr)) != nullptr; });
    Do("ProfJobClose", [&] { return ProfJobClose(job), true; });
}

void Bystander::UseTheRest() {
    wchar_t text[MAX_PATH] = L"";
    BSTR expanded = nullptr;
    CRITICAL_SECTION* section = nullptr;
    Do("UtilGetOSEnvironmentType", [] { return UtilGetOSEnvironmentType() != 0; });
    Do("UtilGetUIInteractionAllowed", [] { return UtilGetUIInteractionAllowed() >= 0; });
    Do("UtilLanguageGet", [] { return UtilLanguageGet() < 256; });
    for (const auto get : {UtilGetGDIThreadingCS, UtilGetDBGHELPThreadingCS})
        Do("a threading section", [&] {
            get(&section);
            EnterCriticalSection(section);
            LeaveCriticalSection(section);
            return true;
        });
    Do("UtilFullpath", [&] { return UtilFullpath(text, L"name", MAX_PATH), text[0] != L'\0'; });
    Do("UtilSafeSprintf", [&] { return UtilSafeSprintf(text, MAX_PATH, L"%s", L"name") == 4; });
    Do("UtilExpandDefaultTokensOfFolderPath",
       [&] { return UtilExpandDefaultTokensOfFolderPath(L"%TEMP%", &expanded) != 0; });
    SysFreeString(expanded);
    SYSTEMTIME time;
    Do("UtilLocSystemTimeFromLocaleString",
       [&] { return UtilLocSystemTimeFromLocaleString(1031, L"13.11.2026", &time, 0) == 0; });
    HUTILDOCINFO list = nullptr;
    Do("UtilDocInfoOpen", [&] { return (list = UtilDocInfoOpen(60)) != nullptr; });
    Do("UtilDocInfoGet", [&] { return UtilDocInfoGet(list, L"no such file", nullptr, 1) == 0; });
    Do("UtilDocInfoClose", [&] { return UtilDocInfoClose(list), true; });
}

} // namespace vxut::test
