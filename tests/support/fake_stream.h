// A memory stream that misbehaves on request. It lives on the test's stack and counts its references.
#pragma once

#include "failure_counter.h"

#include <objbase.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace vxut::test {

class FakeStream final : public IStream {
public:
    explicit FakeStream(const std::string& content = {}) : bytes(content) {}

    std::string bytes;
    size_t position = 0;
    ULONG references = 1;
    std::vector<std::string> calls; // of the lock methods
    ULONG maxPiece = 0xFFFFFFFF;    // what one call moves at most
    ULONG boast = 0;                // added to each count that is handed back
    HRESULT transferResult = S_OK;  // of Read and Write
    HRESULT setSizeResult = S_OK;
    std::optional<uint64_t> claimedSize;
    bool movesOnSetSize = false;
    HRESULT readResult = S_OK;
    size_t capacity = SIZE_MAX; // what fits into the stream, though its size may be set to more
    HRESULT lockResult = STG_E_INVALIDFUNCTION;

    // Makes the call of that number fail, from 1, counted from now; with andAllLater the later ones fail too.
    // The calls are those of Read, Write, Seek, SetSize and Stat.
    void FailCall(unsigned number, bool andAllLater) { counter_.Arm(number, andAllLater); }
    bool HasStruck() const { return counter_.HasStruck(); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* done) override {
        if (counter_.Strikes()) return STG_E_READFAULT;
        if (FAILED(readResult)) return readResult;
        const size_t start = std::min(position, bytes.size());
        const size_t moved = std::min<size_t>({count, maxPiece, bytes.size() - start});
        std::memcpy(buffer, bytes.data() + start, moved);
        return Moved(moved, done);
    }
    HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG count, ULONG* done) override {
        if (counter_.Strikes()) return STG_E_WRITEFAULT;
        const size_t space = capacity - std::min(position, capacity);
        const size_t wanted = FAILED(transferResult) ? 0 : std::min(count, maxPiece);
        const size_t moved = std::min(wanted, space);
        bytes.resize(std::max(bytes.size(), position + moved));
        std::memcpy(bytes.data() + position, buffer, moved);
        const HRESULT result = Moved(moved, done);
        return moved < wanted ? STG_E_MEDIUMFULL : result;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER offset, DWORD origin, ULARGE_INTEGER* reached) override {
        if (counter_.Strikes()) return STG_E_SEEKERROR;
        const int64_t bases[] = {0, static_cast<int64_t>(position), static_cast<int64_t>(bytes.size())};
        if (origin > STREAM_SEEK_END || bases[origin] + offset.QuadPart < 0) return STG_E_INVALIDFUNCTION;
        position = static_cast<size_t>(bases[origin] + offset.QuadPart);
        if (reached) reached->QuadPart = position;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override {
        if (counter_.Strikes()) return STG_E_MEDIUMFULL;
        if (FAILED(setSizeResult)) return setSizeResult;
        bytes.resize(static_cast<size_t>(size.QuadPart));
        if (movesOnSetSize) position = bytes.size();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* target, DWORD) override {
        if (counter_.Strikes()) return STG_E_READFAULT;
        *target = {};
        target->cbSize.QuadPart = claimedSize.value_or(bytes.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD type) override {
        calls.push_back("LockRegion " + std::to_string(type));
        return lockResult;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        calls.emplace_back("UnlockRegion");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    HRESULT Moved(size_t count, ULONG* done) {
        position += count;
        if (done) *done = static_cast<ULONG>(count) + boast;
        return transferResult;
    }

    FailureCounter counter_;
};

} // namespace vxut::test
