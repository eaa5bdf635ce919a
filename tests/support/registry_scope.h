// A registry value for the time of a test: absent at first, and removed in the end. Tests run in a registry
// of their own, where nothing is lost by that.
#pragma once

#include "base/owners.h"
#include "text/settings.h"

#include <string>

namespace vxut::test {

class RegistryScope {
public:
    explicit RegistryScope(const scSetting& setting) : value_(setting.value) {
        const HKEY root = setting.root == SettingRoot::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
        RegCreateKeyExW(root, setting.key, 0, nullptr, 0, KEY_SET_VALUE, nullptr, key_.Receive(), nullptr);
        Remove();
    }
    ~RegistryScope() { Remove(); }
    RegistryScope(const RegistryScope&) = delete;
    RegistryScope& operator=(const RegistryScope&) = delete;

    void Remove() { RegDeleteValueW(key_.Get(), value_); }
    void Set(DWORD type, const void* data, size_t bytes) {
        RegSetValueExW(key_.Get(), value_, 0, type, static_cast<const BYTE*>(data),
                       static_cast<DWORD>(bytes));
    }
    void SetText(const std::wstring& text) { Set(REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t)); }
    void SetNumber(DWORD number) { Set(REG_DWORD, &number, sizeof number); }

private:
    const wchar_t* value_;
    clsAutoCloseKey key_;
};

} // namespace vxut::test
