// Settings and environment variables as text.
#pragma once

#include "base/registry.h"
#include "text/string.h"

namespace vxut {

// Returns false, and leaves text alone, if there is no such value.
bool FindSettingString(const scSetting& setting, String& text);
String ReadSettingString(const scSetting& setting, const wchar_t* fallback = L"");

// Returns the value of an environment variable, an empty text if it is not set.
String EnvironmentText(const wchar_t* name);

} // namespace vxut
