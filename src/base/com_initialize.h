// COM on the calling thread as long as an object lives.
#pragma once

#include <objbase.h>
#include <windows.h>

namespace vxut {

class clsCOMorOLEInitialize {
public:
    clsCOMorOLEInitialize(const clsCOMorOLEInitialize&) = delete;
    clsCOMorOLEInitialize& operator=(const clsCOMorOLEInitialize&) = delete;

    // False also if the thread is in an apartment of another kind; COM serves it all the same then.
    bool Succeeded() const noexcept { return SUCCEEDED(result_); }

protected:
    explicit clsCOMorOLEInitialize(HRESULT result) noexcept : result_(result) {}
    ~clsCOMorOLEInitialize() = default;

private:
    const HRESULT result_;
};

class clsCOMInitialize : public clsCOMorOLEInitialize {
public:
    clsCOMInitialize() noexcept : clsCOMorOLEInitialize(CoInitialize(nullptr)) {}
    ~clsCOMInitialize() {
        if (Succeeded()) CoUninitialize();
    }
};

} // namespace vxut
