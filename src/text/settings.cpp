#include "text/settings.h"

#include "base/grow_buffer.h"

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
    clsGrowBuffer<wchar_t, MAX_PATH> value;
    value.Fill([name](wchar_t* target, DWORD capacity) {
        const DWORD length = GetEnvironmentVariableW(name, target, capacity);
        return length < capacity ? length : length + 1;
    });
    return String(value.Get());
}

} // namespace vxut
