#include "base/guard.h"
#include "base/shield.h"
#include "base/shielded_read.h"
#include "crash/dump_archive.h"
#include "util/debug_help.h"

#include <tuple>

namespace {

using namespace vxut;

clsDBGHelpWrapperGPFProt* JobOf(HUTILDEBUGHELP handle) {
    return reinterpret_cast<clsDBGHelpWrapperGPFProt*>(handle);
}

// Copies a name into the buffer of a host, cut to its size.
void StoreName(const String& name, wchar_t* target, uint32_t size) {
    if (!target || size == 0) return;
    const String cut = name.Left(size - 1);
    WriteShielded(target, cut.Text(), static_cast<size_t>(cut.Length() + 1) * sizeof(wchar_t));
}

// The name in the buffer of a host, which need not be terminated.
String ReadName(const wchar_t* source, uint32_t size) {
    if (!source || size == 0) return {};
    String name;
    wchar_t* const text = name.GetBuffer(size);
    if (!ReadTextShielded(text, size + size_t{1}, source)) return {};
    name.SetLengthByScan();
    return name;
}

template <class List>
bool StorePointer(List** target, List* list) {
    return Shielded([=] { *target = list; });
}

// Stores the list that make() returns, for the host to release; null if there is none.
template <class List, class Make>
int StoreList(HUTILDEBUGHELP job, List** target, Make make) {
    if (!target || !StorePointer<List>(target, nullptr) || !job) return 0;
    return Guarded(0, [&] {
        auto list = make(*JobOf(job));
        if (!list || !StorePointer<List>(target, list.Get())) return 0;
        std::ignore = list.Detach();
        return 1;
    });
}

} // namespace

HUTILDEBUGHELP UtilDebugHelpJobOpen(void) {
    return Guarded<HUTILDEBUGHELP>(nullptr, [] {
        auto job = std::make_unique<clsDBGHelpWrapperGPFProt>();
        job->Open();
        return reinterpret_cast<HUTILDEBUGHELP>(job.release());
    });
}

void UtilDebugHelpJobClose(HUTILDEBUGHELP job) {
    Guarded([&] { const clsGenericAutoDelete<clsDBGHelpWrapperGPFProt> owner(JobOf(job)); });
}

void UtilDebugHelpSetOption(HUTILDEBUGHELP job, uint32_t option, uint32_t value) {
    if (job) Guarded([&] { JobOf(job)->SetOption(option, value); });
}

int UtilDebugHelpGetStackTrace(HUTILDEBUGHELP job, IDBGStackTraceList** list, const CONTEXT* context) {
    return StoreList(job, list,
                     [context](clsDBGHelpWrapperGPFProt& engine) { return engine.WalkStack(context); });
}

int UtilDebugHelpGetModuleList(HUTILDEBUGHELP job, IDBGModuleList** list) {
    return StoreList(job, list, [](clsDBGHelpWrapperGPFProt& engine) { return engine.ListModules(); });
}

int UtilDebugHelpWriteMiniDump(HUTILDEBUGHELP job, wchar_t* fileName, uint32_t size,
                               EXCEPTION_POINTERS* exception) {
    if (!job) return 0;
    return Guarded(0, [&] {
        String name = ReadName(fileName, size);
        const bool isWritten = WritePackedDump(*JobOf(job), name, exception);
        StoreName(name, fileName, size);
        return isWritten;
    });
}
