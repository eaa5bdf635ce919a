#include "net/download.h"

#include "base/last_error.h"
#include "base/shield.h"
#include "containers/list.h"
#include "files/path.h"
#include "files/temp_file.h"
#include "net/download_error.h"

#include <cwchar>

namespace vxut {
namespace {

constexpr DWORD kHeartbeat = 100;
constexpr int32_t kPatienceOfEnd = 2000;
constexpr int64_t kMostExtensionUnits = 30;
constexpr int32_t kComplete = 100;

using ThreadOwner = clsAutoRelease<clsDownloadThread*>;

HRESULT LastFailure() { return HRESULT_FROM_WIN32(ErrorOfFailedCall()); }

// The downloads whose threads hang in the system. A thread that is killed would leave the system's locks
// held, so each keeps its object, and this library, until it ends by itself.
class AbandonedDownloads {
public:
    static AbandonedDownloads& Instance() {
        static AbandonedDownloads downloads;
        return downloads;
    }
    AbandonedDownloads() = default;
    // The end of the process, as the library is pinned: the system's objects may be gone.
    ~AbandonedDownloads() {
        for (ThreadOwner& thread : threads_) static_cast<void>(thread.Detach());
    }
    AbandonedDownloads(const AbandonedDownloads&) = delete;
    AbandonedDownloads& operator=(const AbandonedDownloads&) = delete;

    void Add(ThreadOwner thread) {
        HMODULE pinned = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<const wchar_t*>(&DownloadFile), &pinned);
        const clsCriticalSectionScope scope(lock_);
        if (!threads_.append(thread))
            static_cast<void>(thread.Detach()); // lost, but never destroyed too early
    }

    void RemoveEnded() {
        const clsCriticalSectionScope scope(lock_);
        threads_.removeIf([](const ThreadOwner& thread) { return thread->State() != kThreadRunning; });
    }

private:
    clsCriticalSection lock_;
    WCValSList<ThreadOwner> threads_;
};

// Whatever the host's callback does, nobody calls it afterwards.
void End(ThreadOwner& thread) {
    clsDownloadCallback& callback = thread->Callback();
    callback.Close();
    thread->ThreadEnd(false, kPatienceOfEnd, false);
    while (callback.IsBusy()) thread->ThreadEnd(false, kHeartbeat, false);
    if (thread->State() != kThreadRunning) return thread.Reset();
    thread->DetachInput();
    AbandonedDownloads::Instance().Add(std::exchange(thread, ThreadOwner()));
}

// Waits for the end of the transfer, or until the thread has stalled.
void Attend(clsDownloadThread& thread) {
    const HANDLE done = thread.Done().Get();
    while (!thread.HasStalled()) {
        const DWORD result = MsgWaitForMultipleObjects(1, &done, FALSE, kHeartbeat, QS_ALLINPUT);
        if (result == WAIT_OBJECT_0) return;
        if (result != WAIT_OBJECT_0 + 1 && result != WAIT_TIMEOUT) {
            thread.Done().Wait(kHeartbeat); // a failure that lasts must not become a busy loop
            continue;
        }
        GetQueueStatus(QS_ALLINPUT); // messages that the host leaves unread wake the next wait no more
        thread.Callback().Report(UTIL_DOWNLOAD_PROGRESS, -1, nullptr);
        if (thread.Done().IsSet()) return;
    }
}

HRESULT StatusOf(const clsDownloadThread& thread) {
    if (thread.Done().IsSet()) return thread.Status();
    return FAILED(thread.Refusal()) ? thread.Refusal() : INET_E_CONNECTION_TIMEOUT;
}

HRESULT Transfer(const String& url, const String& path, UtilDownloadCallback* callback, uint64_t patience) {
    AbandonedDownloads::Instance().RemoveEnded();
    ThreadOwner thread = MakeCounted<clsDownloadThread>(url, path, callback, patience);
    if (!thread->Done().IsHeld()) return LastFailure();
    GetQueueStatus(QS_ALLINPUT); // makes a message queue, which the thread attaches to
    if (!thread->ThreadStart(THREAD_PRIORITY_BELOW_NORMAL)) return LastFailure();
    HRESULT status = E_ABORT;
    RunThen(
        [&] {
            Attend(*thread.Get());
            status = StatusOf(*thread.Get());
        },
        [&] { End(thread); });
    return status;
}

} // namespace

String ExtensionOfUrl(const String& url) {
    String path = url.Left(static_cast<int64_t>(std::wcscspn(url.Text(), L"?#")));
    if (const int64_t server = Find(path.Text(), L"://"); server >= 0) {
        path = path.Mid(server + 3);
        const int64_t root = Find(path.Text(), L"/");
        if (root < 0) return String();
        path = path.Mid(root);
    }
    const String extension = Extension(path);
    const bool isUsable = extension.Length() > 1 && extension.Length() <= kMostExtensionUnits &&
                          IsFileNameAllowed(String(L"x") + extension);
    return isUsable ? extension : String();
}

HRESULT DownloadFile(const String& url, UtilDownloadCallback* callback, uint64_t patience) {
    HRESULT status = INET_E_INVALID_URL;
    String path;
    if (!url.IsEmpty()) {
        path = CreateTempFile(L"DL", ExtensionOfUrl(url), kTempLongDirectory);
        path.TrimRight(L'.'); // the system ignores it, but not everybody who checks names
        status = path.IsEmpty() ? LastFailure() : Transfer(url, path, callback, patience);
    }
    clsDownloadCallback host(callback);
    if (SUCCEEDED(status))
        host.Report(UTIL_DOWNLOAD_DONE, kComplete, path.Text());
    else
        host.Report(UTIL_DOWNLOAD_FAILED, kComplete, DownloadErrorText(status).Text());
    return status;
}

} // namespace vxut
