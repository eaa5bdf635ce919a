#include "files/temp_manager.h"

#include "base/debug.h"
#include "base/guard.h"
#include "base/tick_count.h"
#include "checks/validate.h"
#include "files/path.h"
#include "files/temp_file.h"
#include "files/temp_sweep.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace vxut {
namespace {

constexpr int32_t kLongestPause = 10'000;
constexpr int32_t kPauseStep = 100;   // that each waiting file shortens the pause by
constexpr int32_t kMostCounted = 90;  // files that shorten it
constexpr uint64_t kTimePerFile = 10; // that the lock is held for
constexpr uint64_t kSweepInterval = 24 * 60 * 60 * 1000;
constexpr int32_t kPatienceAtEnd = 10'000;
constexpr uint32_t kStopped = 1;

bool IsFolder(const String& path) {
    const DWORD attributes = GetFileAttributesW(path.Text());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// Adds a reference to the module that this code is linked into.
clsAutoFreeLibrary HoldLibrary() {
    clsAutoFreeLibrary library;
    const auto address = reinterpret_cast<const wchar_t*>(&HoldLibrary);
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, address, library.Receive());
    return library;
}

bool DeleteLater(const String& path) {
    const DWORD error = DeleteTempFile(path);
    if (error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND) return false;
    if (IsDeveloperLogin()) DebugWrite(L" ...trying again later");
    return true;
}

void DeleteNowOrNever(const String& path) {
    if (DeleteFileW(path.Text())) return;
    if (GetLastError() == ERROR_FILE_NOT_FOUND)
        DebugWrite(L"oops, temp file '%s' is gone!", path.Text());
    else
        DebugWrite(L"cannot delete '%s', file will most likely remain as dead corpse in your system",
                   path.Text());
}

// Not destroyed at the end of the process: a manager that was left open deletes nothing then.
clsCriticalSection managerLock; // guards the pointer, and is held across opening, closing and adding
constinit clsTempFileRemover* manager = nullptr;

} // namespace

clsTempFileRemover::clsTempFileRemover(const String& folder) : clsThreadBase("clsTempFileRemover") {
    if (IsFolder(folder))
        activityPath_ = ActivityFile(folder);
    else
        DebugWrite(L"WRN: UTIL: path '%s' does not exist", folder.Text());
}

// Takes no lock: a thread that had to be terminated may have kept it.
clsTempFileRemover::~clsTempFileRemover() {
    Guarded([this] { ThreadEnd(false, kPatienceAtEnd, true); });
    for (const IString& path : pending_) Guarded([&] { DeleteNowOrNever(path); });
}

void clsTempFileRemover::Begin() {
    const clsCriticalSectionScope scope(lock_);
    if (!activityPath_.IsEmpty()) StartOnce();
}

void clsTempFileRemover::Add(const IString& path) {
    const clsCriticalSectionScope scope(lock_);
    if (!pending_.append(path)) DeleteTempFile(path);
    StartOnce();
}

void clsTempFileRemover::StartOnce() {
    if (isStarted_) return;
    if (!library_) library_ = HoldLibrary();
    isStarted_ = library_ && ThreadStart();
}

// A short-lived process does nothing: the first pause is a long one. A cycle that runs out of memory is given
// up, and the next one tries again.
uint32_t clsTempFileRemover::ThreadBody() {
    int32_t pause = kLongestPause;
    for (int32_t index; ThreadWait(pause, index) && index != kWaitFailed;)
        pause = Guarded(kLongestPause, [this] { return RunCycle(); });
    return kStopped;
}

int32_t clsTempFileRemover::RunCycle() {
    if (!activityPath_.IsEmpty()) ShowActivity();
    return DeletePending();
}

// The sweep is tested for before the activity file is rewritten, which would hide that nobody was at work. So
// only the first cycle of a process sweeps in practice: later ones find the file that it writes itself.
void clsTempFileRemover::ShowActivity() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    const uint64_t tick = TickCount64();
    if (tick > nextSweepTick_) {
        nextSweepTick_ = tick + kSweepInterval;
        if (IsSweepDue(activityPath_, now)) SweepTempFolder(DirectoryPart(activityPath_), now);
    }
    SignalActivity(activityPath_, now);
}

// The limit of time keeps many files that cannot be deleted from holding the lock for long.
int32_t clsTempFileRemover::DeletePending() {
    const clsCriticalSectionScope scope(lock_);
    const int count = pending_.entries();
    const uint64_t deadline = TickCount64() + static_cast<uint64_t>(count) * kTimePerFile;
    bool isOver = false;
    pending_.removeIf([&](const IString& path) {
        isOver = isOver || TickCount64() >= deadline;
        return !isOver && !DeleteLater(path);
    });
    return kLongestPause - std::min(count, kMostCounted) * kPauseStep;
}

void OpenTempFileManager() {
    const clsCriticalSectionScope scope(managerLock);
    if (manager) return manager->AddUser();
    auto remover = std::make_unique<clsTempFileRemover>(TempDirectory(true) + kSharedTempFolder);
    remover->Begin();
    manager = remover.release();
}

// The pointer is cleared first: the wait for the thread dispatches messages, and a window procedure that
// calls the manager must not meet one that is being destroyed.
void CloseTempFileManager() {
    const clsCriticalSectionScope scope(managerLock);
    if (!manager || !manager->RemoveUser()) return;
    const std::unique_ptr<clsTempFileRemover> last(std::exchange(manager, nullptr));
}

void AddToTempFileManager(const IString& path) {
    {
        const clsCriticalSectionScope scope(managerLock);
        if (manager) return manager->Add(path);
    }
    DeleteFileW(path.Text());
}

} // namespace vxut
