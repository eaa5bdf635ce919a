// A stream in memory whose methods can be made to fail, as calls of the domain "stream". It lives in a
// scenario and counts its references.
#pragma once

#include "faults.h"

#include <objbase.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace torture {

class MemoryStream final : public IStream {
public:
    explicit MemoryStream(const std::string& content = {}) : bytes(content) {}

    std::string bytes;
    ULONG references = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IStream)) return E_NOINTERFACE;
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* done) override {
        if (Fails("IStream::Read", done)) return STG_E_READFAULT;
        const size_t moved = std::min<size_t>(count, bytes.size() - std::min(position_, bytes.size()));
        if (moved > 0) std::memcpy(buffer, bytes.data() + position_, moved);
        return Moved(moved, done);
    }
    // A write that fails has written half of its bytes.
    HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG count, ULONG* done) override {
        const bool fails = Fails("IStream::Write", done);
        const ULONG moved = fails ? count / 2 : count;
        bytes.resize(std::max(bytes.size(), position_ + moved));
        if (moved > 0) std::memcpy(bytes.data() + position_, buffer, moved);
        const HRESULT result = Moved(moved, done);
        return fails ? STG_E_MEDIUMFULL : result;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER offset, DWORD origin, ULARGE_INTEGER* reached) override {
        if (Fails("IStream::Seek", nullptr)) return STG_E_SEEKERROR;
        const int64_t bases[] = {0, static_cast<int64_t>(position_), static_cast<int64_t>(bytes.size())};
        if (origin > STREAM_SEEK_END || bases[origin] + offset.QuadPart < 0) return STG_E_INVALIDFUNCTION;
        position_ = static_cast<size_t>(bases[origin] + offset.QuadPart);
        if (reached) reached->QuadPart = position_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override {
        if (Fails("IStream::SetSize", nullptr)) return STG_E_MEDIUMFULL;
        bytes.resize(static_cast<size_t>(size.QuadPart));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* target, DWORD) override {
        *target = {};
        if (Fails("IStream::Stat", nullptr)) return STG_E_ACCESSDENIED;
        target->type = STGTY_STREAM;
        target->cbSize.QuadPart = bytes.size();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION; // as streams in memory answer
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override {
        return Fails("IStream::Commit", nullptr) ? STG_E_MEDIUMFULL : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    static bool Fails(const char* method, ULONG* done) {
        if (done) *done = 0;
        return ShallFail(Domain::kStream, method);
    }
    HRESULT Moved(size_t count, ULONG* done) {
        position_ += count;
        if (done) *done = static_cast<ULONG>(count);
        return S_OK;
    }

    size_t position_ = 0;
};

} // namespace torture
