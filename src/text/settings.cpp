#include "text/settings.h"

namespace vxut {

bool FindSettingString(const scSetting& setting, String& text) {
    const clsSettingText value(setting);
    if (value.Exists()) text.Assign(value.Text());
    return value.Exists();
}

String ReadSettingString(const scSetting& setting, const wchar_t* fallback) {
    String text(fallback);
    FindSettingString(setting, text);
    return text;
}

String EnvironmentText(const wchar_t* name) {
    wchar_t local[MAX_PATH] = L"";
    clsAutoDeleteBytes<wchar_t> allocated;
    wchar_t* text = local;
    DWORD capacity = MAX_PATH;
    // Repeated when another thread lengthens the variable between two calls.
    for (DWORD length; (length = GetEnvironmentVariableW(name, text, capacity)) >= capacity;) {
        capacity = length + 1;
        allocated.reset(new wchar_t[capacity]());
        text = allocated.get();
    }
    return String(text);
}

} // namespace vxut
