#include "files/debug_log.h"

#include "base/tick_count.h"
#include "files/path.h"
#include "text/settings.h"

namespace vxut {
namespace {

constexpr uint64_t kLastPatience = 1000; // milliseconds
// The most that is kept while the file cannot be written.
constexpr int64_t kMostKeptUnits = int64_t{256} * 1024;

// Other processes may read the file at the same time, but not write to it.
bool OpenInTurn(clsFile& file, const String& name, uint64_t patience) {
    const uint64_t limit = TickCount64() + patience;
    while (file.Open(name, kAccessWrite, kDispositionOpenAlways, kShareRead) != 0) {
        if (file.Reason() == kReasonNameReserved || TickCount64() >= limit) return false;
        Sleep(0);
    }
    return true;
}

// An open that fails asks for the text of its error, for which the system may load a library. It does so now:
// a thread that sends a line must not wait for the loader's lock.
void PrepareToWait() { String::FromError(ERROR_SHARING_VIOLATION); }

// Serves the channel until the statics are torn down.
class InstalledLog {
public:
    InstalledLog() { SetDebugLog(&log_); }
    ~InstalledLog() { SetDebugLog(nullptr); }
    InstalledLog(const InstalledLog&) = delete;
    InstalledLog& operator=(const InstalledLog&) = delete;

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
    if (WriteKept(waits_.MayWait(TickCount64()) ? kPatience : 0)) return;
    MessageBeep(static_cast<UINT>(-1));
    if (kept_.Length() > kMostKeptUnits) kept_.Delete(before, kept_.Length() - before);
}

void clsDebugLogFile::Finish() {
    if (!kept_.IsEmpty()) WriteKept(kLastPatience);
}

bool clsDebugLogFile::WriteKept(uint64_t patience) {
    UndoInterruptedAppend();
    if (!OpenInTurn(file_, name_, patience)) {
        if (patience > 0) waits_.Spend(patience, TickCount64());
        return false;
    }
    waits_.Refill();
    const bool isWritten = AppendKept();
    // Before the file is closed: see UndoInterruptedAppend().
    if (isWritten) kept_.Empty();
    CloseFile();
    return isWritten;
}

// Appends all lines, or none.
bool clsDebugLogFile::AppendKept() {
    appendAt_ = file_.GetSize();
    if (appendAt_ < 0 || file_.SetPosition(appendAt_) != appendAt_) return false;
    if (file_.WriteText(kept_.Text(), kept_.Length()) != kept_.Length()) {
        file_.SetPosition(appendAt_);
        file_.SetEOF();
        return false;
    }
    if (flush_) FlushFileBuffers(file_.Handle());
    return true;
}

// A thread that is terminated while it writes leaves the file open, which would keep everybody else from
// writing. The lines that it has appended are still kept, and are written again.
void clsDebugLogFile::UndoInterruptedAppend() {
    if (!file_.IsOpen()) return;
    if (!kept_.IsEmpty() && appendAt_ >= 0 && file_.SetPosition(appendAt_) == appendAt_) file_.SetEOF();
    CloseFile();
}

void clsDebugLogFile::CloseFile() {
    file_.Close();
    appendAt_ = -1;
}

void InstallDebugLogFile() { static const InstalledLog installed; }

} // namespace vxut
