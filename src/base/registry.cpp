#include "base/registry.h"

#include <atomic>
#include <optional>

namespace vxut {
namespace {

// Read once in the life of the process. Takes no lock: racing threads store the same value.
bool IsImpersonationAware() {
    enum { kUnknown, kOff, kOn };
    static std::atomic<int> answer{kUnknown};
    if (answer == kUnknown)
        answer = ReadSettingFirstUnit(kSettingImpersonationAware, L'F') == L'T' ? kOn : kOff;
    return answer == kOn;
}

// The root key of a setting.
class Root {
public:
    Root(SettingRoot root, bool readOnly) : root_(root) {
        if (root == SettingRoot::kUser) user_.emplace(readOnly);
    }

    HKEY Get() const {
        if (user_) return user_->Get();
        return root_ == SettingRoot::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    }

private:
    SettingRoot root_;
    std::optional<clsUserRoot> user_;
};

// Opens the key of a setting for reading. Returns null if the key is missing.
clsAutoCloseKey OpenKey(const scSetting& setting) {
    clsAutoCloseKey key;
    const Root root(setting.root, true);
    RegOpenKeyExW(root.Get(), setting.key, 0, KEY_QUERY_VALUE, key.Receive());
    return key;
}

// Reads a value if it has the wanted type.
LSTATUS QueryValue(HKEY key, const wchar_t* value, DWORD wantedType, void* data, DWORD& bytes) {
    DWORD type = 0;
    const LSTATUS status = RegQueryValueExW(key, value, nullptr, &type, static_cast<BYTE*>(data), &bytes);
    const bool isWanted = type == wantedType || (status != ERROR_SUCCESS && status != ERROR_MORE_DATA);
    return isWanted ? status : ERROR_UNSUPPORTED_TYPE;
}

} // namespace

clsUserRoot::clsUserRoot(bool readOnly) {
    if (IsImpersonationAware()) RegOpenCurrentUser(readOnly ? KEY_READ : KEY_ALL_ACCESS, opened_.Receive());
}

clsSettingText::clsSettingText(const scSetting& setting) {
    const clsAutoCloseKey key = OpenKey(setting);
    if (!key) return;
    LSTATUS status = ERROR_SUCCESS;
    text_.Fill([&](wchar_t* target, DWORD capacity) {
        DWORD bytes = capacity * sizeof(wchar_t);
        status = QueryValue(key.Get(), setting.value, REG_SZ, target, bytes);
        return status == ERROR_MORE_DATA ? static_cast<DWORD>(bytes / sizeof(wchar_t)) + 1 : 0;
    });
    exists_ = status == ERROR_SUCCESS;
}

wchar_t ReadSettingFirstUnit(const scSetting& setting, wchar_t fallback) {
    const clsSettingText value(setting);
    return value.Exists() ? value.Text()[0] : fallback;
}

bool FindSettingNumber(const scSetting& setting, uint32_t& number) {
    const clsAutoCloseKey key = OpenKey(setting);
    DWORD value = 0;
    DWORD bytes = sizeof value;
    if (!key || QueryValue(key.Get(), setting.value, REG_DWORD, &value, bytes) != ERROR_SUCCESS) return false;
    if (bytes != sizeof value) return false;
    number = value;
    return true;
}

uint32_t ReadSettingNumber(const scSetting& setting, uint32_t fallback) {
    uint32_t number = fallback;
    FindSettingNumber(setting, number);
    return number;
}

LSTATUS WriteSettingNumber(const scSetting& setting, uint32_t number) {
    const Root root(setting.root, false);
    wchar_t keyClass[] = L"";
    clsAutoCloseKey key;
    const LSTATUS status = RegCreateKeyExW(root.Get(), setting.key, 0, keyClass, 0, KEY_SET_VALUE, nullptr,
                                           key.Receive(), nullptr);
    if (status != ERROR_SUCCESS) return status;
    RegSetValueExW(key.Get(), setting.value, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                   sizeof number);
    return ERROR_SUCCESS;
}

bool IsUserRootReadable() {
    clsAutoCloseKey key;
    return RegOpenKeyW(clsUserRoot(true).Get(), L"Software", key.Receive()) == ERROR_SUCCESS;
}

} // namespace vxut
