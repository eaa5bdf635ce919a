// The one place where the registry and the environment are read, with every key and value name.
#pragma once

#include "frame/owners.h"
#include "frame/string.h"

#include <cstdint>

namespace vxut {

// The root of per-user settings: the user's own one while a thread impersonates, if the machine is set up so.
class clsUserRoot {
public:
    explicit clsUserRoot(bool readOnly);

    HKEY Get() const noexcept { return opened_ ? opened_.Get() : HKEY_CURRENT_USER; }

private:
    clsAutoCloseKey opened_;
};

enum class SettingRoot {
    kMachine,     // HKEY_LOCAL_MACHINE
    kUser,        // clsUserRoot
    kCurrentUser, // HKEY_CURRENT_USER
};

// Where a setting lives.
struct scSetting {
    SettingRoot root;
    const wchar_t* key;
    const wchar_t* value;
};

inline constexpr scSetting kSettingImpersonationAware = {SettingRoot::kMachine, L"software\\Velmora",
                                                         L"Registry.ImpersonationAware"};
inline constexpr scSetting kSettingEnableMapStringEx = {SettingRoot::kMachine, L"software\\Velmora\\",
                                                        L"EnableMapStringEx"};
inline constexpr scSetting kSettingNonInteractiveApps = {SettingRoot::kMachine, L"Software\\Velmora",
                                                         L"NonInteractiveApps"};
inline constexpr scSetting kSettingForceUsePerfCounters = {SettingRoot::kUser, L"SOFTWARE\\Velmora",
                                                           L"ForceUsePerfCounters"};
inline constexpr scSetting kSettingDebugLogFilename = {SettingRoot::kMachine, L"software\\Velmora",
                                                       L"Debug.LogFilename"};
inline constexpr scSetting kSettingDebugLogFileFlush = {SettingRoot::kMachine, L"software\\Velmora",
                                                        L"Debug.LogFile.Flush"};
inline constexpr scSetting kSettingLanguage = {SettingRoot::kUser, L"Software\\Velmora\\Appearance\\",
                                               L"Language"};

// The key of the shell folders, each a value named for its folder, for the user and for the machine.
inline constexpr wchar_t kShellFoldersKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

inline constexpr wchar_t kEnvironmentUser[] = L"user";
inline constexpr wchar_t kEnvironmentTemp[] = L"TEMP";

// Each gives the fallback when the value is absent or of another type: text is REG_SZ, a number REG_DWORD.
String ReadSettingString(const scSetting& setting, const wchar_t* fallback = L"");
uint32_t ReadSettingNumber(const scSetting& setting, uint32_t fallback);
// The first unit of a text, 0 of an empty one. Uses no String: the debug channel reads its settings with it.
wchar_t ReadSettingFirstUnit(const scSetting& setting, wchar_t fallback);

// False when the value is absent or of another type.
bool FindSettingString(const scSetting& setting, String& text);
bool FindSettingNumber(const scSetting& setting, uint32_t& number);

// Makes the key if need be. Gives the result code of opening it; callers rely on it that a failed write goes
// unnoticed.
LSTATUS WriteSettingNumber(const scSetting& setting, uint32_t number);

// Whether the settings of the user can be reached at all: not so for some accounts of services.
bool IsUserRootReadable();

// The text of an environment variable, empty if there is none.
String EnvironmentText(const wchar_t* name);

// Whether the named-locale mapping may be used where the system's is young.
bool IsMapStringExEnabled();

} // namespace vxut
