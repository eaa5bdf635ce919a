// Late binding: a library that is loaded when it is first needed, and functions of it that may be missing.
//
// A wrapper derives from CLateLoadBase and declares each function in one line:
//     clsLateFunction<decltype(::GetTickCount64)> GetTickCount64{*this, "GetTickCount64", 0};
// Callers ask for it and have a way of their own without it:
//     if (Kernel32().GetTickCount64.IsAvailable()) return Kernel32().GetTickCount64();
// Wrappers are for use by all threads.
#pragma once

#include "base/critical_section.h"

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace vxut {

enum LateStatus : uint32_t { kLateNotAsked = 0, kLateAbsent = 1, kLatePresent = 2 };

class CLateLoadBase {
public:
    using Resolver = FARPROC(WINAPI*)(HMODULE, LPCSTR);

    CLateLoadBase(const CLateLoadBase&) = delete;
    CLateLoadBase& operator=(const CLateLoadBase&) = delete;

    // The address of a function under one of its four spellings, or null. The status is kLateNotAsked without
    // a library, which is sought once only. A name's first two characters are left out if they are "p_".
    FARPROC Resolve(const char* name, LateStatus& status, int argumentBytes);

    // Names the library, of which one attempt to load it may be made anew, unless one is loaded already. True
    // if one is.
    bool SetLibrary(const wchar_t* name, bool loadNow);

    // Replaces GetProcAddress.
    void SetResolver(Resolver resolver) { resolver_ = resolver; }

    clsCriticalSection& Lock() noexcept { return *lock_; }

protected:
    // A family of wrappers may share a lock, which must live longer.
    explicit CLateLoadBase(const wchar_t* library, clsCriticalSection* familyLock = nullptr);

    // Turns the library's name into a module.
    virtual HMODULE Load(const wchar_t* name);
    // Where a wrapper's own reports go.
    virtual void WriteDebugLine(const wchar_t* text);

public:
    virtual ~CLateLoadBase();

protected:
    void SetNameOffset(uint32_t units) { nameOffset_ = units; }
    // A library that the wrapper does not free stays loaded.
    void SetFreeAtEnd(bool freeAtEnd) { freeAtEnd_ = freeAtEnd; }

private:
    void SetName(const wchar_t* name);
    bool LoadOnce();
    bool PrefersWide() const;
    const char* StripName(const char* name) const;

    HMODULE module_ = nullptr;
    bool triedToLoad_ = false;
    bool freeAtEnd_ = true;
    wchar_t libraryName_[MAX_PATH] = L"";
    uint32_t nameOffset_ = 0;
    clsCriticalSection ownLock_;
    clsCriticalSection* lock_;
    Resolver resolver_ = GetProcAddress;
};

// One function of a wrapper, whatever its type. Once found it is there for good, and asking costs no lock.
class clsLateFunctionBase {
public:
    bool IsAvailable() {
        LateStatus status = status_.load(std::memory_order_acquire);
        if (status == kLateNotAsked) status = Ask();
        return status == kLatePresent;
    }

protected:
    clsLateFunctionBase(CLateLoadBase& library, const char* name, int argumentBytes) noexcept
        : library_(library), name_(name), argumentBytes_(argumentBytes) {}

    void* Address() const noexcept { return address_; }

private:
    LateStatus Ask();

    CLateLoadBase& library_;
    const char* name_;
    int argumentBytes_;
    std::atomic<LateStatus> status_{kLateNotAsked};
    void* address_ = nullptr;
};

template <class Signature>
class clsLateFunction;

template <class Result, class... Arguments>
class clsLateFunction<Result WINAPI(Arguments...)> : public clsLateFunctionBase {
public:
    // argumentBytes is what a 32-bit library decorates the name with.
    clsLateFunction(CLateLoadBase& library, const char* name, int argumentBytes) noexcept
        : clsLateFunctionBase(library, name, argumentBytes) {}

    // Only when IsAvailable() has said yes.
    Result operator()(Arguments... arguments) const {
        using Function = Result(WINAPI*)(Arguments...);
        return reinterpret_cast<Function>(Address())(arguments...);
    }
};

} // namespace vxut
