#include "prof.h"
#include "scenario.h"
#include "util.h"

#include <objbase.h>

#include <cwchar>
#include <iterator>

namespace torture {
namespace {

bool ProfileWorks() {
    const HPROF job = ProfJobOpenW(nullptr);
    ProfSetIntW(job, nullptr, L"List/Number", 42);
    int32_t number = 0;
    const bool isRead = ProfGetIntW(job, nullptr, L"List/Number", &number, 0) == PROF_OK && number == 42;
    const bool isCopied = ProfCopyList(job, ProfAppendListW(job, nullptr, L"Copy"), job,
                                       ProfGetListW(job, nullptr, L"List")) == PROF_OK;
    ProfJobClose(job);
    return isRead && isCopied;
}

bool SaveWorks() {
    const HPROF job = ProfJobOpenW(nullptr);
    ProfSetStringW(job, nullptr, L"Name", L"value");
    const bool isSaved = ProfSaveW(job, L"works.prf", PROF_FORMAT_TEXT) == PROF_OK;
    ProfJobClose(job);
    const HPROF loaded = ProfJobOpenW(L"works.prf");
    const bool isLoaded =
        ProfGetError(loaded) == PROF_OK && ProfGetStringLengthW(loaded, nullptr, L"Name") == 5;
    ProfJobClose(loaded);
    DeleteFileW(L"works.prf");
    return isSaved && isLoaded;
}

bool HeapWorks() {
    const HUTILJOB job = UtilJobOpen(L"WORKS", 0);
    const HUTILHEAP heap = UtilHeapCreate(job, L"WORKS", UTIL_HEAP_DEBUG);
    void* const object = UtilHeapObjectAlloc(heap, 10, 0);
    const bool isFreed = object && UtilHeapObjectFree(heap, object) == UTIL_OK;
    return isFreed && UtilHeapDelete(heap) == UTIL_OK && UtilJobClose(job) == UTIL_OK;
}

bool TextWorks() {
    wchar_t text[16] = L"";
    UtilSafeSprintf(text, 16, L"%d", 12);
    return std::wcscmp(text, L"12") == 0 && UtilGetLikelyCharsetFromString(L"\x3B1") == GREEK_CHARSET;
}

bool PathWorks() {
    BSTR expanded = nullptr;
    const bool isExpanded = UtilExpandDefaultTokensOfFolderPath(L"%WINDIR%", &expanded) == 1 && expanded &&
                            std::wcschr(expanded, L'%') == nullptr;
    SysFreeString(expanded);
    return isExpanded;
}

// That the line arrives is for the scenarios with a listener to say; here it is enough that no lock is held.
bool DebugWorks() {
    UtilDebug(L"still %s", L"here");
    return UtilGetFlags() == 0 || UtilGetFlags() == 1;
}

struct Family {
    const char* name;
    bool (*works)();
};
constexpr Family kFamilies[] = {{"the profile", ProfileWorks}, {"a save", SaveWorks},
                                {"a heap", HeapWorks},         {"text", TextWorks},
                                {"a path", PathWorks},         {"the debug channel", DebugWorks}};

} // namespace

std::string FirstBroken() {
    for (const Family& family : kFamilies) {
        if (!family.works()) return family.name;
    }
    return {};
}

} // namespace torture
