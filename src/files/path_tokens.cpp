// Expansion of %NAME% in folder paths.
#include "files/path.h"

#include "base/grow_buffer.h"
#include "base/path_limits.h"
#include "text/regex.h"
#include "text/settings.h"

#include <windows.h>

namespace vxut {
namespace {

// Replaces a match by the shell folder that group 1 names; a match that names none stays.
class clsShellFolderReplace : public IclsRegExGSubCB {
public:
    String Replace(const String& match, const clsRegExMatchList& matches) override {
        const String& name = matches.get(1).text;
        String folder;
        for (const SettingRoot root : {SettingRoot::kCurrentUser, SettingRoot::kMachine})
            if (FindSettingString({root, kShellFoldersKey, name.Text()}, folder)) return folder;
        return match;
    }
};

bool ExpandEnvironment(const String& text, String& result) {
    clsGrowBuffer<wchar_t, kPathUnits> expanded;
    const DWORD units = expanded.Fill([&](wchar_t* target, DWORD capacity) {
        return ExpandEnvironmentStringsW(text.Text(), target, capacity);
    });
    if (units > 0) result = expanded.Get();
    return units > 0;
}

} // namespace

bool ExpandTokens(const String& text, String& result) {
    if (Find(text.Text(), L"%") < 0) {
        result = text;
        return true;
    }
    String expanded;
    if (!ExpandEnvironment(text, expanded)) return false;
    if (Find(expanded.Text(), L"%") >= 0) {
        clsShellFolderReplace folders;
        expanded = clsRegEx(L"%([A-Z0-9_ ]+)%", kRegExCaseless | kRegExUngreedy).GSub(expanded, folders);
    }
    result.Take(expanded);
    return true;
}

} // namespace vxut
