#include "crash/engine_access.h"

#include "base/library_version.h"
#include "base/loader_lock.h"
#include "crash/abort_dialog.h"
#include "threads/deadline.h"

#include <cstdio>

namespace vxut {
namespace {

constexpr int32_t kLoaderPatience = 5000; // milliseconds
constexpr const wchar_t* kPrefix = sizeof(void*) == 8 ? L"vx" : L"vm";

bool WaitForLoader() {
    const clsDeadline deadline(kLoaderPatience);
    for (; !IsLoaderFree(); Sleep(10))
        if (deadline.HasPassed()) return false;
    return true;
}

struct LibraryFile {
    wchar_t name[32] = L"";
    LibraryFile() { _snwprintf(name, std::size(name) - 1, L"%sut%02d.dll", kPrefix, kMajorVersion); }
};

} // namespace

// Not freed: the loader may be blocked then, and the process ends.
clsUTILForDebugHelpWrapper::clsUTILForDebugHelpWrapper() : CLateLoadBase(LibraryFile().name) {
    SetFreeAtEnd(false);
}

bool clsUTILForDebugHelpWrapper::IsLoaded() {
    return WaitForLoader() && SetLibrary(LibraryFile().name, true);
}

clsUtilDebugHelpWrapper::clsUtilDebugHelpWrapper() : isPresent_(library_.IsLoaded()) {
    if (!isPresent_) return;
    // All at once: behind the start of the job's thread, the loader may be blocked.
    library_.ResolveAll();
    PrepareAbortDialog();
    if (library_.UtilDebugHelpJobOpen.IsAvailable()) job_ = library_.UtilDebugHelpJobOpen();
    if (!job_ || !library_.UtilDebugHelpSetOption.IsAvailable()) return;
    constexpr uint32_t kMostFrames = 100;
    library_.UtilDebugHelpSetOption(job_, UTIL_DEBUGHELP_MOST_FRAMES, kMostFrames);
    library_.UtilDebugHelpSetOption(job_, UTIL_DEBUGHELP_USE_THREAD,
                                    static_cast<uint32_t>(UtilGetUIInteractionAllowed()));
}

clsUtilDebugHelpWrapper::~clsUtilDebugHelpWrapper() {
    if (job_ && library_.UtilDebugHelpJobClose.IsAvailable()) library_.UtilDebugHelpJobClose(job_);
}

clsAutoRelease<IDBGStackTraceList*> clsUtilDebugHelpWrapper::StackTrace(const CONTEXT* context) {
    clsAutoRelease<IDBGStackTraceList*> list;
    if (job_ && library_.UtilDebugHelpGetStackTrace.IsAvailable())
        library_.UtilDebugHelpGetStackTrace(job_, list.Receive(), context);
    return list;
}

clsAutoRelease<IDBGModuleList*> clsUtilDebugHelpWrapper::ModuleList() {
    clsAutoRelease<IDBGModuleList*> list;
    if (job_ && library_.UtilDebugHelpGetModuleList.IsAvailable())
        library_.UtilDebugHelpGetModuleList(job_, list.Receive());
    return list;
}

bool clsUtilDebugHelpWrapper::WriteMiniDump(wchar_t* fileName, uint32_t size, EXCEPTION_POINTERS* exception) {
    return job_ && library_.UtilDebugHelpWriteMiniDump.IsAvailable() &&
           library_.UtilDebugHelpWriteMiniDump(job_, fileName, size, exception) != 0;
}

} // namespace vxut
