// A memory stream that can be told to misbehave. It lives on the test's stack and counts its references.
#pragma once

#include <objbase.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace vxut::test {

class FakeStream : public IStream {
public:
    FakeStream() = default;
    explicit FakeStream(const std::string& content) : bytes(content) {}
    virtual ~FakeStream() = default;

    std::string bytes;
    size_t position = 0;
    ULONG references = 1;
    std::vector<std::string> calls; // of the methods without an effect here
    ULONG maxPiece = 0xFFFFFFFF;    // what one call moves at most
    ULONG boast = 0;                // added to each count that is handed back
    HRESULT transferResult = S_OK;  // of Read and Write
    std::optional<uint64_t> claimedSize;
    HRESULT setSizeResult = S_OK;
    bool movesOnSetSize = false;
    HRESULT lockResult = STG_E_INVALIDFUNCTION;
    int lockRefusals = 0; // that many locks fail first

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* done) override {
        if (FAILED(transferResult)) return transferResult;
        const size_t left = position < bytes.size() ? bytes.size() - position : 0;
        const size_t moved = std::min<size_t>({count, maxPiece, left});
        memcpy(buffer, bytes.data() + std::min(position, bytes.size()), moved);
        position += moved;
        if (done) *done = static_cast<ULONG>(moved) + boast;
        return moved < count ? S_FALSE : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG count, ULONG* done) override {
        if (FAILED(transferResult)) return transferResult;
        const size_t moved = std::min<size_t>(count, maxPiece);
        if (bytes.size() < position + moved) bytes.resize(position + moved);
        memcpy(bytes.data() + position, buffer, moved);
        position += moved;
        if (done) *done = static_cast<ULONG>(moved) + boast;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER offset, DWORD origin, ULARGE_INTEGER* reached) override {
        const int64_t bases[] = {0, static_cast<int64_t>(position), static_cast<int64_t>(bytes.size())};
        if (origin > STREAM_SEEK_END || bases[origin] + offset.QuadPart < 0) return STG_E_INVALIDFUNCTION;
        position = static_cast<size_t>(bases[origin] + offset.QuadPart);
        if (reached) reached->QuadPart = position;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override {
        if (FAILED(setSizeResult)) return setSizeResult;
        bytes.resize(static_cast<size_t>(size.QuadPart));
        if (movesOnSetSize) position = bytes.size();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* target, DWORD) override {
        *target = {};
        target->cbSize.QuadPart = claimedSize.value_or(bytes.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD type) override {
        calls.push_back("LockRegion " + std::to_string(type));
        if (lockRefusals == 0) return lockResult;
        --lockRefusals;
        return STG_E_LOCKVIOLATION;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return Note("UnlockRegion");
    }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return Note("CopyTo");
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return Note("Commit"); }
    HRESULT STDMETHODCALLTYPE Revert() override { return Note("Revert"); }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return Note("Clone"); }

private:
    HRESULT Note(const char* method) {
        calls.emplace_back(method);
        return S_OK;
    }
};

} // namespace vxut::test
