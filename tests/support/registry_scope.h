// Sets or removes a registry value for a scope, and puts back what was there.
#pragma once

#include "frame/owners.h"
#include "frame/settings.h"

#include <string>
#include <vector>

namespace vxut::test {

class RegistryScope {
public:
    explicit RegistryScope(const scSetting& setting) : value_(setting.value) {
        const HKEY root = setting.root == SettingRoot::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
        RegCreateKeyExW(root, setting.key, 0, nullptr, 0, KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr,
                        key_.Receive(), nullptr);
        DWORD bytes = 0;
        wasThere_ =
            RegQueryValueExW(key_.Get(), value_, nullptr, &oldType_, nullptr, &bytes) == ERROR_SUCCESS;
        old_.resize(bytes);
        RegQueryValueExW(key_.Get(), value_, nullptr, nullptr, old_.data(), &bytes);
        Remove();
    }
    ~RegistryScope() {
        if (wasThere_) {
            Set(oldType_, old_.data(), old_.size());
        } else {
            Remove();
        }
    }
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
    bool wasThere_ = false;
    DWORD oldType_ = REG_NONE;
    std::vector<BYTE> old_;
};

} // namespace vxut::test
