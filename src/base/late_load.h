// Late binding: a library that is loaded when it is first needed, and functions of it that may be missing.
//
// A wrapper derives from CLateLoadBase and declares each function in one line:
//     clsLateFunction<decltype(::GetTickCount64)> GetTickCount64{*this, "GetTickCount64", 0};
// Callers test whether it is available and have a fallback:
//     if (Kernel32().GetTickCount64.IsAvailable()) return Kernel32().GetTickCount64();
//
// Threads: wrappers may be used by any thread. The first call of IsAvailable() for a function takes the
// wrapper's lock and may load a library, which takes the loader's lock. Code that runs under a lock of its
// own must call functions only that are resolved before, as library/load.cpp does for those it knows.
//
// Ownership: a wrapper that lives as long as the library pins what it loads (SetFreeAtEnd(false)), since its
// destructor runs under the loader's lock, where no library may be freed. The system keeps one pinned copy,
// however often this library is loaded. Other wrappers free the library in their destructors.
#pragma once

#include "base/critical_section.h"

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <utility>

namespace vxut {

enum LateStatus : uint32_t { kLateNotAsked = 0, kLateAbsent = 1, kLatePresent = 2 };

// Loads a library of the system, never one of the same name from another folder, and finds the libraries that
// it needs there too. The name may lack ".dll". Returns null, with the reason as last error, if there is
// none.
HMODULE LoadFromSystemFolder(const wchar_t* name);

class clsLateFunctionBase;

class CLateLoadBase {
public:
    using Resolver = FARPROC(WINAPI*)(HMODULE, LPCSTR);

    CLateLoadBase(const CLateLoadBase&) = delete;
    CLateLoadBase& operator=(const CLateLoadBase&) = delete;

    // Returns the address of a function under one of its four spellings, or null. The status is kLateNotAsked
    // if the library cannot be loaded, which is tried once only. A leading "p_" of the name is left out.
    // Keeps the last error.
    FARPROC Resolve(const char* name, LateStatus& status, int argumentBytes);

    // Sets the library's name and allows one more attempt to load it, unless one is loaded already. Returns
    // whether one is loaded.
    bool SetLibrary(const wchar_t* name, bool loadNow);

    // Resolves all functions of the wrapper, and returns how many of them are missing.
    int ResolveAll();

    // Replaces GetProcAddress.
    void SetResolver(Resolver resolver) { resolver_ = resolver; }

    clsCriticalSection& Lock() noexcept { return *lock_; }

protected:
    // familyLock, if given, is shared by several wrappers and must outlive them.
    explicit CLateLoadBase(const wchar_t* library, clsCriticalSection* familyLock = nullptr);

    // Loads the library, by default from the system folder.
    virtual HMODULE Load(const wchar_t* name);
    // Writes a report of the wrapper, by default to the debug channel.
    virtual void WriteDebugLine(const wchar_t* text);

public:
    virtual ~CLateLoadBase();

protected:
    void SetNameOffset(uint32_t units) { nameOffset_ = units; }
    // A library that the wrapper does not free is pinned when it is loaded, and stays until the process ends.
    void SetFreeAtEnd(bool freeAtEnd) { freeAtEnd_ = freeAtEnd; }

private:
    friend clsLateFunctionBase;

    void SetName(const wchar_t* name);
    bool LoadOnce();
    static void Pin(HMODULE module);
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
    clsLateFunctionBase* lastFunction_ = nullptr;
};

// One function of a wrapper, whatever its type. A result is final once the library is loaded: the test then
// takes no lock.
class clsLateFunctionBase {
public:
    clsLateFunctionBase(const clsLateFunctionBase&) = delete;
    clsLateFunctionBase& operator=(const clsLateFunctionBase&) = delete;

    bool IsAvailable() {
        LateStatus status = status_.load(std::memory_order_acquire);
        if (status == kLateNotAsked) status = Ask();
        return status == kLatePresent;
    }

protected:
    clsLateFunctionBase(CLateLoadBase& library, const char* name, int argumentBytes) noexcept
        : library_(library),
          previous_(std::exchange(library.lastFunction_, this)),
          name_(name),
          argumentBytes_(argumentBytes) {}
    ~clsLateFunctionBase() = default;

    void* Address() const noexcept { return address_; }

private:
    friend CLateLoadBase;

    LateStatus Ask();

    CLateLoadBase& library_;
    clsLateFunctionBase* const previous_; // of the same library
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
    // argumentBytes is the number with which a 32-bit library decorates the name.
    clsLateFunction(CLateLoadBase& library, const char* name, int argumentBytes) noexcept
        : clsLateFunctionBase(library, name, argumentBytes) {}

    // Only after IsAvailable() has returned true.
    Result operator()(Arguments... arguments) const { return Get()(arguments...); }

    // The function, for calls that take one. Only after IsAvailable() has returned true.
    auto Get() const noexcept {
        using Function = Result(WINAPI*)(Arguments...);
        return reinterpret_cast<Function>(Address());
    }
};

} // namespace vxut
