#include "crash/dump_archive.h"

#include "base/debug.h"
#include "crash/abort_dialog.h"
#include "encoding/zip_file.h"
#include "files/path.h"
#include "files/temp_file.h"
#include "trace/line_ring.h"

#include <iterator>

namespace vxut {
namespace {

constexpr wchar_t kArchiveName[] = L"Velmora.dmp.zip";
constexpr wchar_t kArchiveComment[] = L"Velmora Crash Information File";
constexpr wchar_t kDumpCategory[] = L"DumpFile";
constexpr wchar_t kDumpName[] = L"velmora64.dmp";
constexpr wchar_t kLogCategory[] = L"LogFile";
constexpr wchar_t kLogName[] = L"trcwin.log"; // of all logs
constexpr wchar_t kTraceName[] = L"trace.log";
constexpr DWORD kLogPause = 2000;
constexpr const wchar_t* kLogs[] = {L"%TEMP%\\TRCWIN.LOG", L"%WINDIR%\\TRCWIN.LOG",
                                    L"%APPDATA%\\VELMORA.LOG"};

uint64_t Ticks(const FILETIME& time) {
    return ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart;
}

uint64_t Now() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return Ticks(now);
}

bool LastWritten(const clsFile& file, uint64_t& time) {
    FILETIME written;
    if (!GetFileTime(file.Handle(), nullptr, nullptr, &written)) return false;
    time = Ticks(written);
    return true;
}

// Waits until nobody writes to a log any more, however long that takes.
bool WaitUntilQuiet(const clsFile& file, uint64_t& time) {
    for (uint64_t before;;) {
        before = time;
        Sleep(kLogPause);
        if (!LastWritten(file, time)) return false;
        if (time == before) return true;
    }
}

bool IsWorthPacking(const String& path, uint64_t now) {
    clsFile file;
    if (file.Open(path, kAccessRead, kDispositionOpenExisting, kShareReadWrite) != 0) return false;
    uint64_t time;
    return LastWritten(file, time) && IsRecentLog(time, now) && WaitUntilQuiet(file, time);
}

void AddLogs(clsZIPFile& zip, clsAbortDialog& dialog) {
    const uint64_t now = Now();
    constexpr int kCount = static_cast<int>(std::size(kLogs));
    for (int i = 0; i < kCount && dialog.MayGoOn(); ++i) {
        String path;
        if (ExpandTokens(kLogs[i], path) && IsWorthPacking(path, now))
            zip.AppendFile(path, kLogCategory, kLogName);
        dialog.SetProgress(25 + MulDiv(50, i + 1, kCount));
    }
}

// Adds the lines of the debug channel that were kept in memory, if any were.
void AddTraceRing(clsZIPFile& zip) {
    clsFileRWTemp file(L"TRC");
    ForEachRingLine(
        [](void* target, const wchar_t* line) {
            const String text = String(line) + L"\r\n";
            static_cast<clsFile*>(target)->WriteText(text.Text(), text.Length());
        },
        &file);
    if (file.GetPosition() <= 0 || file.SetPosition(0) != 0) return;
    zip.Append(file, kLogCategory, kTraceName);
}

enum class Packing { kDone, kStopped, kFailed };

Packing Pack(const String& dump, const String& archive) {
    clsAbortDialog dialog;
    DeleteFileW(archive.Text());
    clsZIPFile zip;
    if (!zip.Create(archive, kArchiveComment)) {
        DebugWrite(L"ERR: cannot create '%s': %s", archive.Text(), String::FromError(GetLastError()).Text());
        return Packing::kFailed;
    }
    if (!dialog.MayGoOn()) {
        zip.Close();
        return Packing::kStopped;
    }
    const bool hasDump = zip.AppendFile(dump, kDumpCategory, kDumpName) == kZipOk;
    dialog.SetProgress(25);
    AddLogs(zip, dialog);
    AddTraceRing(zip);
    return zip.Close() == kZipOk && hasDump ? Packing::kDone : Packing::kFailed;
}

} // namespace

bool WritePackedDump(clsDBGHelpWrapper& job, String& name, EXCEPTION_POINTERS* exception) {
    const clsTraceRingPause pause;
    DebugWriteIndented(1, L">pJob->WriteMiniDump()");
    const bool isTemporary = name.IsEmpty();
    if (isTemporary)
        name = CreateTempFile(TempFolder(kSharedTempFolder) + L"mdmp", L"dmp", kTempLongDirectory);
    if (!job.WriteMiniDump(name, exception)) {
        if (isTemporary && !name.IsEmpty()) DeleteFileW(name.Text());
        DebugWriteIndented(-1, L"<pJob->WriteMiniDump() failed");
        return false;
    }
    const String dump = name;
    const String archive = DirectoryPart(dump) + kArchiveName;
    const Packing packing = Pack(dump, archive);
    if (packing == Packing::kDone) name = archive;
    // Deleted also if the packing was stopped, which callers rely on, but not if there is no archive to
    // replace it.
    if (packing != Packing::kFailed) DeleteFileW(dump.Text());
    DebugWriteIndented(-1, L"<pJob->WriteMiniDump() succeeded");
    return true;
}

} // namespace vxut
