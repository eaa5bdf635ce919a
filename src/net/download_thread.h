// The thread that downloads one file, and what the system tells it about the transfer.
#pragma once

#include "base/owners.h"
#include "base/unknown.h"
#include "net/download_callback.h"
#include "net/http_answer.h"
#include "threads/event.h"
#include "threads/thread.h"

#include <windows.h>
// After windows.h, which it needs:
#include <urlmon.h>

#include <atomic>
#include <cstdint>

namespace vxut {

// Created with MakeCounted(). Its last reference must not be released before the thread has ended: whoever
// cannot wait for that leaves the object to AbandonDownload().
class clsDownloadThread final : public clsThreadBase,
                                public clsIUnknownImpl,
                                public IBindStatusCallback,
                                public IHttpNegotiate {
public:
    // How long, in milliseconds, a server may send nothing.
    static constexpr uint64_t kPatience = 45000;

    clsDownloadThread(const String& url, const String& path, UtilDownloadCallback* callback,
                      uint64_t patience = kPatience);
    ~clsDownloadThread() override;

    // Set when the transfer is over.
    const clsEvent& Done() const noexcept { return done_; }
    // The result of the transfer, once Done() is set.
    HRESULT Status() const noexcept { return status_; }
    // Whether the server has been silent for too long, or the system goes on with a transfer that is refused.
    bool HasStalled() const;
    // Why the transfer is refused, though the system goes on; S_OK if it is not.
    HRESULT Refusal() const noexcept { return refusal_; }
    clsDownloadCallback& Callback() noexcept { return callback_; }
    const String& Path() const noexcept { return path_; }
    // Ends what the thread shares with the thread that started it.
    void DetachInput();

    // IUnknown. AddRef() and Release() may be called on any thread.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return clsIUnknownImpl::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return clsIUnknownImpl::Release(); }

    // IBindStatusCallback, for the system.
    HRESULT STDMETHODCALLTYPE OnStartBinding(DWORD reserved, IBinding* binding) override;
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* priority) override;
    HRESULT STDMETHODCALLTYPE OnLowResource(DWORD reserved) override;
    HRESULT STDMETHODCALLTYPE OnProgress(ULONG progress, ULONG maximum, ULONG code, LPCWSTR text) override;
    HRESULT STDMETHODCALLTYPE OnStopBinding(HRESULT result, LPCWSTR text) override;
    HRESULT STDMETHODCALLTYPE GetBindInfo(DWORD* flags, BINDINFO* info) override;
    HRESULT STDMETHODCALLTYPE OnDataAvailable(DWORD flags, DWORD bytes, FORMATETC* format,
                                              STGMEDIUM* medium) override;
    HRESULT STDMETHODCALLTYPE OnObjectAvailable(REFIID id, IUnknown* object) override;

    // IHttpNegotiate, for the system.
    HRESULT STDMETHODCALLTYPE BeginningTransaction(LPCWSTR url, LPCWSTR headers, DWORD reserved,
                                                   LPWSTR* additionalHeaders) override;
    HRESULT STDMETHODCALLTYPE OnResponse(DWORD status, LPCWSTR headers, LPCWSTR requestHeaders,
                                         LPWSTR* additionalHeaders) override;

protected:
    uint32_t ThreadBody() override;
    uint32_t ThreadStackSize() const override;

private:
    HRESULT Transfer();
    HRESULT Judge(HRESULT result) const;
    bool IsComplete() const;
    void NoteActivity();
    void NoteRedirect(const wchar_t* target);
    void Refuse(HRESULT reason);
    bool IsToStop() const;

    const String url_;
    const String path_;
    clsEvent done_{EventReset::kManual};
    clsDownloadCallback callback_;
    const uint64_t patience_;
    std::atomic<uint64_t> lastActivity_;
    std::atomic<HRESULT> refusal_{S_OK};
    std::atomic<bool> isInputAttached_{false};

    // Written and read by the thread; status_ by others once done_ is set.
    clsAutoRelease<IBinding*> binding_;
    HRESULT status_ = S_OK;
    bool hasStopped_ = false;
    bool isAnswered_ = false;
    scHttpAnswer answer_;
    ULONG bytes_ = 0;
    int redirects_ = 0;
    int requests_ = 0;
};

} // namespace vxut
