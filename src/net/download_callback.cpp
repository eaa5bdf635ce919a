#include "net/download_callback.h"

#include "base/shielded_read.h"

#include <windows.h>

namespace vxut {
namespace {

constexpr DWORD kExecutable =
    PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;

bool IsCode(const void* address) {
    MEMORY_BASIC_INFORMATION region;
    return VirtualQuery(address, &region, sizeof region) == sizeof region && region.State == MEM_COMMIT &&
           (region.Protect & kExecutable) != 0;
}

} // namespace

// A call through a wild pointer would end the process, as it is made on a thread of the library.
bool clsDownloadCallback::IsCallable(const UtilDownloadCallback* host) {
    if (!host) return true;
    uintptr_t table = 0;
    uintptr_t function = 0;
    return ReadShielded(table, host) && ReadShielded(function, reinterpret_cast<const void*>(table)) &&
           IsCode(reinterpret_cast<const void*>(function));
}

void clsDownloadCallback::Report(uint32_t kind, int32_t value, const wchar_t* text) {
    if (host_) host_->table->Report(host_, kind, value, text);
}

void clsDownloadCallback::ReportProgress(int32_t percent, const wchar_t* text) {
    if (!Enter()) return;
    Report(UTIL_DOWNLOAD_PROGRESS, percent, text);
    Leave();
}

void clsDownloadCallback::Close() {
    const clsCriticalSectionScope scope(lock_);
    isOpen_ = false;
}

bool clsDownloadCallback::IsBusy() {
    const clsCriticalSectionScope scope(lock_);
    return calls_ > 0;
}

bool clsDownloadCallback::Enter() {
    const clsCriticalSectionScope scope(lock_);
    if (isOpen_) ++calls_;
    return isOpen_;
}

void clsDownloadCallback::Leave() {
    const clsCriticalSectionScope scope(lock_);
    --calls_;
}

} // namespace vxut
