// Expansion of %NAME% in folder paths.
#include "files/path.h"

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
    wchar_t scratch[kPathBufferUnits];
    const DWORD needed = ExpandEnvironmentStringsW(text.Text(), scratch, kPathUnits);
    if (needed == 0) return false;
    if (needed < kPathUnits) {
        result = scratch;
        return true;
    }
    const DWORD length = ExpandEnvironmentStringsW(text.Text(), result.GetBuffer(needed), needed);
    const bool complete = length > 0 && length <= needed;
    result.SetLength(complete ? length - 1 : 0);
    return complete;
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
