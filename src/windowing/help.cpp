#include "windowing/help.h"

#include "base/debug.h"
#include "base/identity.h"
#include "files/path.h"
#include "windowing/help_number.h"
#include "windowing/help_path.h"

namespace vxut {
namespace {

constexpr wchar_t kCursorName[] = L"HelpCrs";
constexpr wchar_t kEmptyKey[] = L"";

bool IsNumberWanted() { return IsKeyDown(VK_SHIFT) && IsKeyDown(VK_CONTROL) && IsKeyDown(VK_MENU); }

bool IsFile(const String& path) {
    const DWORD attributes = GetFileAttributesW(path.Text());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsUserGerman() { return PRIMARYLANGID(GetUserDefaultLangID()) == LANG_GERMAN; }

void ShowNumber(HWND window, int32_t number) {
    String text;
    text.Format(L"Context# %d", number);
    MessageBoxW(window, text.Text(), L"Help", MB_ICONINFORMATION);
}

void ReportMissingFile(HWND window, const String& file) {
    String text;
    text.Format(IsUserGerman() ? L"Die Hilfe-Datei '%s' konnte nicht gefunden werden!"
                               : L"The help file '%s' could not be found!",
                file.Text());
    MessageBoxW(window, text.Text(), L"Problem", MB_ICONWARNING);
}

HelpViewerMode ModeOf(uint32_t command) {
    switch (command) {
        case kHelpPage:
            return HelpViewerMode::kPage;
        case kHelpIndex:
            return HelpViewerMode::kIndex;
        default:
            return HelpViewerMode::kContents;
    }
}

} // namespace

clsHelp::clsHelp(HWND window, IUtilHelp* host, uint32_t message, const String& file)
    : host_(clsAutoRelease<IUtilHelp*>::Share(host)),
      message_(message),
      window_(window),
      cursor_(static_cast<HCURSOR>(LoadImageW(Identity().library, kCursorName, IMAGE_CURSOR, 0, 0, 0))),
      file_(file) {}

void clsHelp::Pop() {
    if (numbers_.isEmpty()) return DebugWrite(L"VLMRUTIL(Help): Min Help Depth reached, too many POPs\n");
    numbers_.pop();
}

bool clsHelp::Display(int32_t number) {
    if (number == UTIL_HELP_FIND_NUMBER) number = FindHelpNumber(*this);
    if (IsNumberWanted()) {
        ShowNumber(window_, number);
        return true;
    }
    if (number == UTIL_HELP_FIND_NUMBER) return ShowContents();
    return Ask(kHelpPage, static_cast<ULONG_PTR>(number));
}

bool clsHelp::ShowIndex() { return Ask(kHelpIndex, reinterpret_cast<ULONG_PTR>(kEmptyKey)); }

// The window comes first; what it does not show is shown from the file.
bool clsHelp::Ask(uint32_t command, ULONG_PTR data) {
    if (message_ != 0 && SendMessageW(window_, message_, command, static_cast<LPARAM>(data)) != 0)
        return true;
    return Show(window_, File(), command, data) != 0;
}

String clsHelp::File() {
    if (!file_.IsEmpty() || !host_) return file_;
    clsAutoFreeBSTR name;
    if (SUCCEEDED(host_->GetHelpFileName(name.Receive())) && name) file_ = TranslatedHelpPath(name.Get());
    return file_;
}

int clsHelp::Show(HWND window, const String& file, uint32_t command, ULONG_PTR data) {
    if (!IsFile(file)) {
        ReportMissingFile(window, file);
        viewer_.Close();
        return 0;
    }
    if (!(IString(Extension(file)) == L".chm")) {
        hasUsedEngine_ = true;
        return WinHelpW(window, file.Text(), command, data);
    }
    return viewer_.Start(window, file, ModeOf(command), static_cast<uint32_t>(data)) ? 1 : 0;
}

void clsHelp::Close() {
    if (hasUsedEngine_ && IsFile(file_)) WinHelpW(window_, file_.Text(), kHelpQuit, 0);
    viewer_.Close();
}

} // namespace vxut
