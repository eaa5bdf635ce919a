#include "net/download_thread.h"

#include "base/guard.h"
#include "base/system_libraries.h"
#include "base/tick_count.h"
#include "files/file.h"

#include <algorithm>
#include <cwchar>

namespace vxut {
namespace {

constexpr uint32_t kStackBytes = 1024 * 1024; // the system's stack of protocols needs that much
constexpr int kMostRedirects = 10;
constexpr int kMostRequests = 2 * kMostRedirects; // some systems follow redirects without a word
constexpr uint64_t kPatienceAfterRefusal = 2000;
constexpr const wchar_t* kHttpSchemes[] = {L"http:", L"https:"};

bool IsHttp(const wchar_t* url) {
    return std::ranges::any_of(kHttpSchemes, [=](const wchar_t* scheme) {
        return _wcsnicmp(url, scheme, std::wcslen(scheme)) == 0;
    });
}

int32_t Percent(ULONG progress, ULONG maximum) {
    if (maximum == 0) return 0;
    return static_cast<int32_t>(std::min(progress * 100.0 / maximum + 0.5, 100.0));
}

class ComScope {
public:
    ComScope() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComScope() {
        if (SUCCEEDED(result_)) CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    const HRESULT result_;
};

} // namespace

clsDownloadThread::clsDownloadThread(const String& url, const String& path, UtilDownloadCallback* callback,
                                     uint64_t patience)
    : clsThreadBase("Viewer::clsDownloadThread"),
      url_(url),
      path_(path),
      callback_(callback),
      patience_(patience),
      lastActivity_(TickCount64()) {}

clsDownloadThread::~clsDownloadThread() { ThreadEnd(false, -1, false); }

uint32_t clsDownloadThread::ThreadStackSize() const { return kStackBytes; }

uint32_t clsDownloadThread::ThreadBody() {
    {
        const ComScope com;
        isInputAttached_ = ThreadAttachInput(true);
        status_ = Guarded(E_OUTOFMEMORY, [this] { return Judge(Transfer()); });
        binding_.Reset();
        DetachInput();
    }
    done_.Set();
    return 0;
}

HRESULT clsDownloadThread::Transfer() {
    auto& download = UrlMon().URLDownloadToFile;
    if (!download.IsAvailable()) return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
    NoteActivity();
    return download(nullptr, url_.Text(), path_.Text(), 0, this);
}

// The system takes some refusals and torn transfers for successes.
HRESULT clsDownloadThread::Judge(HRESULT result) const {
    if (FAILED(refusal_)) return refusal_;
    if (hasStopped_ && FAILED(status_)) return status_;
    if (FAILED(result)) return result;
    if (answer_.isRedirect) return INET_E_REDIRECT_FAILED;
    return IsComplete() ? status_ : INET_E_DOWNLOAD_FAILURE;
}

// What a server sends behind the announced length does not belong to the file.
bool clsDownloadThread::IsComplete() const {
    if (IsHttp(url_.Text()) && !isAnswered_) return false;
    if (answer_.announcedBytes < 0) return true;
    clsFileRW file(path_, kAccessReadWrite, kDispositionOpenExisting, kShareNone);
    const int64_t size = file.GetSize();
    if (size <= answer_.announcedBytes) return size == answer_.announcedBytes;
    return file.SetPosition(answer_.announcedBytes) == answer_.announcedBytes && file.SetEOF();
}

bool clsDownloadThread::HasStalled() const {
    const uint64_t silence = TickCount64() - lastActivity_;
    return silence > (FAILED(refusal_) ? std::min(patience_, kPatienceAfterRefusal) : patience_);
}

void clsDownloadThread::NoteActivity() { lastActivity_ = TickCount64(); }

void clsDownloadThread::Refuse(HRESULT reason) {
    if (FAILED(refusal_)) return;
    NoteActivity();
    refusal_ = reason;
}

void clsDownloadThread::NoteRedirect(const wchar_t* target) {
    NoteActivity();
    if (++redirects_ > kMostRedirects || (target && !IsHttp(target))) Refuse(INET_E_REDIRECT_FAILED);
}

bool clsDownloadThread::IsToStop() const {
    int32_t ignored = 0;
    return FAILED(refusal_) || !ThreadWait(0, ignored);
}

void clsDownloadThread::DetachInput() {
    if (isInputAttached_.exchange(false)) ThreadAttachInput(false);
}

HRESULT clsDownloadThread::QueryInterface(REFIID id, void** object) {
    if (!object) return E_POINTER;
    if (IsEqualIID(id, IID_IBindStatusCallback))
        *object = static_cast<IBindStatusCallback*>(this);
    else if (IsEqualIID(id, IID_IHttpNegotiate))
        *object = static_cast<IHttpNegotiate*>(this);
    else
        return clsIUnknownImpl::QueryInterface(id, object);
    AddRef();
    return S_OK;
}

HRESULT clsDownloadThread::OnStartBinding(DWORD, IBinding* binding) {
    binding_ = clsAutoRelease<IBinding*>::Share(binding);
    return S_OK;
}

HRESULT clsDownloadThread::GetPriority(LONG*) { return E_NOTIMPL; }

HRESULT clsDownloadThread::OnLowResource(DWORD) { return E_NOTIMPL; }

HRESULT clsDownloadThread::OnProgress(ULONG progress, ULONG maximum, ULONG code, LPCWSTR text) {
    return Guarded(E_ABORT, [&] {
        if (code == BINDSTATUS_REDIRECTING) NoteRedirect(text);
        if (code == BINDSTATUS_SENDINGREQUEST && ++requests_ > kMostRequests) Refuse(INET_E_REDIRECT_FAILED);
        if (code == BINDSTATUS_USINGCACHEDCOPY) isAnswered_ = true;
        if (progress != bytes_) NoteActivity();
        bytes_ = progress;
        if (IsToStop()) return E_ABORT;
        callback_.ReportProgress(Percent(progress, maximum), text);
        return S_OK;
    });
}

HRESULT clsDownloadThread::OnStopBinding(HRESULT result, LPCWSTR) {
    status_ = result;
    hasStopped_ = true;
    binding_.Reset();
    return S_OK;
}

HRESULT clsDownloadThread::GetBindInfo(DWORD*, BINDINFO*) { return E_NOTIMPL; }

HRESULT clsDownloadThread::OnDataAvailable(DWORD, DWORD, FORMATETC*, STGMEDIUM*) { return S_OK; }

HRESULT clsDownloadThread::OnObjectAvailable(REFIID, IUnknown*) { return S_OK; }

HRESULT clsDownloadThread::BeginningTransaction(LPCWSTR, LPCWSTR, DWORD, LPWSTR* additionalHeaders) {
    if (additionalHeaders) *additionalHeaders = nullptr;
    return S_OK;
}

HRESULT clsDownloadThread::OnResponse(DWORD status, LPCWSTR headers, LPCWSTR, LPWSTR* additionalHeaders) {
    return Guarded(E_ABORT, [&] {
        if (additionalHeaders) *additionalHeaders = nullptr;
        NoteActivity();
        isAnswered_ = true;
        answer_ = JudgeAnswer(status, headers);
        if (SUCCEEDED(answer_.refusal)) return S_OK;
        Refuse(answer_.refusal);
        return E_ABORT;
    });
}

} // namespace vxut
