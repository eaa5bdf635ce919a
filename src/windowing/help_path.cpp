#include "windowing/help_path.h"

#include "base/late_load.h"
#include "base/path_limits.h"

#include <windows.h>

namespace vxut {
namespace {

// The companion library. It is used where the host has loaded it, which may be at any time, and is never
// loaded by this library.
class CompanionControls : public CLateLoadBase {
public:
    static CompanionControls& Instance() {
        static CompanionControls controls;
        controls.SetLibrary(kName, true);
        return controls;
    }

    clsLateFunction<int WINAPI(const wchar_t*, wchar_t*, uint32_t)> CtlXlatPath{*this, "CtlXlatPath", 12};

protected:
    HMODULE Load(const wchar_t* name) override { return GetModuleHandleW(name); }

private:
    static constexpr wchar_t kName[] = L"VLMRCTL";

    CompanionControls() : CLateLoadBase(kName) { SetFreeAtEnd(false); }
};

} // namespace

String TranslatedHelpPath(const String& path) {
    auto& translate = CompanionControls::Instance().CtlXlatPath;
    wchar_t translated[kPathUnits] = L"";
    if (!translate.IsAvailable() || !translate(path.Text(), translated, kPathUnits)) return path;
    translated[kPathUnits - 1] = L'\0';
    return translated;
}

} // namespace vxut
