#include "files/debug_log.h"

#include "base/tick_count.h"
#include "files/file.h"
#include "files/path.h"
#include "text/settings.h"

namespace vxut {
namespace {

constexpr uint64_t kPatience = 100; // milliseconds
// What is kept at most for a file that cannot be had.
constexpr int64_t kMostKeptUnits = int64_t{256} * 1024;

// Other processes may read the file at the same time, but not write to it.
bool OpenInTurn(clsFile& file, const String& name) {
    const uint64_t limit = TickCount64() + kPatience;
    while (file.Open(name, kAccessWrite, kDispositionOpenAlways, kShareRead) != 0) {
        if (file.Reason() == kReasonNameReserved || TickCount64() >= limit) return false;
        Sleep(0);
    }
    return true;
}

// All of the text, or nothing of it.
bool AppendWhole(clsFile& file, const String& text) {
    const int64_t end = file.GetSize();
    if (end < 0 || file.SetPosition(end) != end) return false;
    if (file.WriteText(text.Text(), text.Length()) == text.Length()) return true;
    file.SetPosition(end);
    file.SetEOF();
    return false;
}

// An open that has to wait its turn asks for the text of its error. What that is taken from is loaded now:
// while a line is sent the loader must be left alone.
void PrepareToWait() { String::FromError(ERROR_SHARING_VIOLATION); }

// Serves the channel until the statics are torn down.
class clsInstalledLog {
public:
    clsInstalledLog() { SetDebugLog(&log_); }
    ~clsInstalledLog() { SetDebugLog(nullptr); }
    clsInstalledLog(const clsInstalledLog&) = delete;
    clsInstalledLog& operator=(const clsInstalledLog&) = delete;

private:
    clsDebugLogFile log_;
};

} // namespace

void clsDebugLogFile::ReadSettings() {
    name_ = ReadSettingString(kSettingDebugLogFilename);
    if (!name_.IsEmpty() && DirectoryPart(name_).IsEmpty()) name_ = TempDirectory(true) + name_;
    flush_ = ReadSettingFirstUnit(kSettingDebugLogFileFlush, L'F') == L'T';
    if (HasFile()) PrepareToWait();
}

void clsDebugLogFile::Write(const wchar_t* line) {
    const int64_t before = kept_.Length();
    kept_ += String(line) + L"\r\n";
    if (AppendKept()) {
        kept_.Empty();
        return;
    }
    MessageBeep(static_cast<UINT>(-1));
    if (kept_.Length() > kMostKeptUnits) kept_.Delete(before, kept_.Length() - before);
}

void clsDebugLogFile::Finish() {
    if (!kept_.IsEmpty() && AppendKept()) kept_.Empty();
}

bool clsDebugLogFile::AppendKept() const {
    clsFile file;
    if (!OpenInTurn(file, name_) || !AppendWhole(file, kept_)) return false;
    if (flush_) FlushFileBuffers(file.Handle());
    return true;
}

void InstallDebugLogFile() { static const clsInstalledLog installed; }

} // namespace vxut
