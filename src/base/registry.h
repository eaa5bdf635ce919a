// The registry values that the library reads and writes, with all key and value names, and the names of its
// environment variables. Uses no String: the debug channel reads its settings here.
//
// A value is read if it has the wanted type: REG_SZ for text, REG_DWORD for numbers. Any thread may call
// these functions; none takes a lock.
#pragma once

#include "base/grow_buffer.h"
#include "base/owners.h"

#include <cstdint>

namespace vxut {

// The root of per-user settings. If the machine is configured for it, this is the root of the user whom the
// calling thread impersonates, else HKEY_CURRENT_USER.
class clsUserRoot {
public:
    // Opens the root for reading, or for all access. Falls back to HKEY_CURRENT_USER if it cannot be opened.
    explicit clsUserRoot(bool readOnly);

    // Valid as long as the object.
    HKEY Get() const noexcept { return opened_ ? opened_.Get() : HKEY_CURRENT_USER; }

private:
    clsAutoCloseKey opened_;
};

enum class SettingRoot {
    kMachine,     // HKEY_LOCAL_MACHINE
    kUser,        // clsUserRoot
    kCurrentUser, // HKEY_CURRENT_USER
};

// The place of a setting.
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

inline constexpr scSetting kSettingForceUseGpfHandler = {SettingRoot::kUser, L"SOFTWARE\\Velmora",
                                                         L"ForceUseGPFHandler"};
inline constexpr scSetting kSettingUseGpfHandler = {SettingRoot::kUser, L"SOFTWARE\\Velmora",
                                                    L"UseGPFHandler"};
inline constexpr scSetting kSettingMiniDumpMode = {SettingRoot::kCurrentUser, L"Software\\Velmora",
                                                   L"GPFMiniDumpMode"};
// Followed by the name of the process.
inline constexpr wchar_t kGpfInfoKey[] = L"Software\\Velmora\\";
inline constexpr wchar_t kGpfInfoValue[] = L"GenerateFullGPFInfo";

// The key of the shell folders, each a value named for its folder, for the user and for the machine.
inline constexpr wchar_t kShellFoldersKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

inline constexpr wchar_t kEnvironmentUser[] = L"user";
inline constexpr wchar_t kEnvironmentTemp[] = L"TEMP";

// The text of a value. Texts below 256 units are read without an allocation.
class clsSettingText {
public:
    // Throws std::bad_alloc.
    explicit clsSettingText(const scSetting& setting);

    // Whether the value exists and is a text.
    bool Exists() const noexcept { return exists_; }
    // Zero-terminated even if the value in the registry is not. Valid as long as the object.
    const wchar_t* Text() const noexcept { return text_.Get(); }

private:
    bool exists_ = false;
    clsGrowBuffer<wchar_t, 256> text_;
};

// Returns the first unit of a text, 0 if the text is empty, or the fallback if there is none.
wchar_t ReadSettingFirstUnit(const scSetting& setting, wchar_t fallback);

// Returns false, with number unchanged, if the value is missing or has another type.
bool FindSettingNumber(const scSetting& setting, uint32_t& number);
uint32_t ReadSettingNumber(const scSetting& setting, uint32_t fallback);

// Creates the key if it is missing. Returns the result of opening the key, ERROR_SUCCESS or an error code;
// callers rely on a failed write of the value not being reported.
LSTATUS WriteSettingNumber(const scSetting& setting, uint32_t number);

// Returns whether the user's settings can be opened. Some service accounts have none.
bool IsUserRootReadable();

} // namespace vxut
