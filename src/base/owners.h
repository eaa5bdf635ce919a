// The owners of resources. CloseHandle, FreeLibrary, Release and similar functions are called here and
// nowhere else.
#pragma once

#include <objbase.h>
#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <memory>
#include <utility>

namespace vxut {

// Owns one resource that Traits describe: its Type, the value Null() that means none, and Close().
template <class Traits>
class clsAutoClose {
public:
    using Type = typename Traits::Type;

    clsAutoClose() noexcept = default;
    explicit clsAutoClose(Type resource) noexcept : resource_(resource) {}
    clsAutoClose(clsAutoClose&& other) noexcept : resource_(other.Detach()) {}
    clsAutoClose& operator=(clsAutoClose&& other) noexcept {
        if (this != &other) Reset(other.Detach());
        return *this;
    }
    ~clsAutoClose() { Reset(); }

    Type Get() const noexcept { return resource_; }
    explicit operator bool() const noexcept { return resource_ != Traits::Null(); }

    // Closes the resource that is owned and takes ownership of another. Keeps the thread's last error.
    void Reset(Type resource = Traits::Null()) noexcept {
        const Type old = std::exchange(resource_, resource);
        if (old == Traits::Null()) return;
        const DWORD lastError = GetLastError();
        Traits::Close(old);
        SetLastError(lastError);
    }

    // Passes the ownership to the caller.
    [[nodiscard]] Type Detach() noexcept { return std::exchange(resource_, Traits::Null()); }

    // Closes the resource, and returns the address for a function that returns another through a pointer.
    Type* Receive() noexcept {
        Reset();
        return &resource_;
    }

private:
    Type resource_ = Traits::Null();
};

struct scFileHandleTraits {
    using Type = HANDLE;
    static Type Null() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Type handle) noexcept { CloseHandle(handle); }
};

// A resource that may belong to somebody else, who closes it then.
template <class Traits>
struct scBorrowableTraits {
    struct Type {
        typename Traits::Type resource = Traits::Null();
        bool isOwned = true;
        friend bool operator==(const Type& one, const Type& other) noexcept {
            return one.resource == other.resource;
        }
    };
    static Type Null() noexcept { return {}; }
    static void Close(const Type& borrowable) noexcept {
        if (borrowable.isOwned) Traits::Close(borrowable.resource);
    }
};

struct scKernelHandleTraits {
    using Type = HANDLE;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type handle) noexcept { CloseHandle(handle); }
};

struct scFindHandleTraits {
    using Type = HANDLE;
    static Type Null() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Type handle) noexcept { FindClose(handle); }
};

struct scModuleTraits {
    using Type = HMODULE;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type module) noexcept { FreeLibrary(module); }
};

struct scRegistryKeyTraits {
    using Type = HKEY;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type key) noexcept { RegCloseKey(key); }
};

struct scSidTraits {
    using Type = PSID;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type sid) noexcept { FreeSid(sid); }
};

struct scViewTraits {
    using Type = void*;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type view) noexcept { UnmapViewOfFile(view); }
};

struct scActivationContextTraits {
    using Type = HANDLE;
    static Type Null() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Type context) noexcept { ReleaseActCtx(context); }
};

struct scLocalMemoryTraits {
    using Type = wchar_t*;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type memory) noexcept { LocalFree(memory); }
};

struct scGlobalMemoryTraits {
    using Type = HGLOBAL;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type memory) noexcept { GlobalFree(memory); }
};

struct scBStrTraits {
    using Type = BSTR;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type text) noexcept { SysFreeString(text); }
};

struct scCursorTraits {
    using Type = HCURSOR;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type cursor) noexcept { DestroyCursor(cursor); }
};

using clsAutoCloseFile = clsAutoClose<scFileHandleTraits>;
using clsAutoCloseHandle = clsAutoClose<scKernelHandleTraits>; // events, threads, processes, mappings
using clsAutoCloseFind = clsAutoClose<scFindHandleTraits>;
using clsAutoFreeLibrary = clsAutoClose<scModuleTraits>;
using clsAutoCloseKey = clsAutoClose<scRegistryKeyTraits>;
using clsAutoFreeSid = clsAutoClose<scSidTraits>; // identifiers of AllocateAndInitializeSid
using clsAutoUnmap = clsAutoClose<scViewTraits>;
using clsAutoReleaseActivationContext = clsAutoClose<scActivationContextTraits>;
using clsAutoGlobalFree = clsAutoClose<scGlobalMemoryTraits>;
using clsAutoFreeBSTR = clsAutoClose<scBStrTraits>;
using clsAutoDestroyCursor = clsAutoClose<scCursorTraits>;
using clsAutoLocalFree = clsAutoClose<scLocalMemoryTraits>; // text that FormatMessageW allocated

// Owns one reference of a counted object. Pointer is the pointer type, such as IStream*.
template <class Pointer>
class clsAutoRelease {
public:
    clsAutoRelease() noexcept = default;
    // Takes over the caller's reference.
    explicit clsAutoRelease(Pointer object) noexcept : object_(object) {}
    clsAutoRelease(const clsAutoRelease& other) noexcept : object_(other.object_) {
        if (object_) object_->AddRef();
    }
    clsAutoRelease(clsAutoRelease&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    clsAutoRelease& operator=(clsAutoRelease other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~clsAutoRelease() {
        if (object_) object_->Release();
    }

    // Adds a reference to an object that another owner holds.
    static clsAutoRelease Share(Pointer object) noexcept {
        if (object) object->AddRef();
        return clsAutoRelease(object);
    }

    Pointer Get() const noexcept { return object_; }
    Pointer operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    void Reset() noexcept { *this = clsAutoRelease(); }
    [[nodiscard]] Pointer Detach() noexcept { return std::exchange(object_, nullptr); }
    Pointer* Receive() noexcept {
        Reset();
        return &object_;
    }

private:
    Pointer object_ = nullptr;
};

// Owns an object made with new.
template <class T>
using clsGenericAutoDelete = std::unique_ptr<T>;

// Owns an array of bytes or units.
template <class T>
using clsAutoDeleteBytes = std::unique_ptr<T[]>;

} // namespace vxut
