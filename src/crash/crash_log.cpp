#include "crash/crash_log.h"

#include "base/debug.h"
#include "base/identity.h"
#include "base/owners.h"
#include "base/shield.h"
#include "files/path.h"

#include <cstdio>
#include <cwchar>

namespace vxut {
namespace {

constexpr wchar_t kLog[] = L"%APPDATA%\\VELMORA.LOG";
constexpr wchar_t kFallbackName[] = L"\\VELMORA.LOG";
constexpr size_t kLineUnits = kReportUnits + kPathUnits + 32;

wchar_t text[kReportUnits];
wchar_t line[kLineUnits];
wchar_t logPath[2 * kPathUnits];

clsAutoCloseFile OpenLog(const wchar_t* path, DWORD flags) {
    return clsAutoCloseFile(
        CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, flags, nullptr));
}

void DecideLogPath() {
    String path;
    if (ExpandTokens(kLog, path) && OpenLog(path.Text(), FILE_ATTRIBUTE_NORMAL)) {
        std::wcsncpy(logPath, path.Text(), std::size(logPath) - 1);
        return;
    }
    // The temp folder's own backslash stays, so that there are two.
    const DWORD length = GetTempPathW(kPathUnits, logPath);
    std::wcscpy(logPath + (length < kPathUnits ? length : 0), kFallbackName);
}

// A line that cannot be written is lost.
void AppendToLog() {
    constexpr DWORD kFlags = FILE_FLAG_WRITE_THROUGH | FILE_FLAG_SEQUENTIAL_SCAN | FILE_ATTRIBUTE_NORMAL;
    const clsAutoCloseFile file = OpenLog(CrashLogPath(), kFlags);
    if (!file) return;
    SYSTEMTIME now;
    GetLocalTime(&now);
    const int units = _snwprintf(line, kLineUnits - 1, L"%04u-%02u-%02u, %02u:%02u.%02u.%03u %s %s\r\n",
                                 now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond,
                                 now.wMilliseconds, Identity().processFileName, text);
    const LARGE_INTEGER end = {};
    DWORD written;
    if (units > 0 && SetFilePointerEx(file.Get(), end, nullptr, FILE_END))
        WriteFile(file.Get(), line, static_cast<DWORD>(units) * sizeof(wchar_t), &written, nullptr);
}

} // namespace

const wchar_t* CrashLogPath() {
    if (!logPath[0]) DecideLogPath();
    return logPath;
}

// An argument that cannot be read ends the line.
void WriteReportLine(uint32_t mode, const wchar_t* format, va_list arguments) {
    text[0] = L'\0';
    Shielded([&] { _vsnwprintf(text, kReportUnits - 1, format, arguments); });
    text[kReportUnits - 1] = L'\0';
    if (mode & kOutputDebug) DebugWrite(L"%s", text);
    if (mode & kOutputLog) AppendToLog();
}

} // namespace vxut
