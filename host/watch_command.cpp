// vlm watch: runs a program as its debugger and packs a dump of each fault that nothing in it has handled.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/owners.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>
// After windows.h, which it needs:
#include <dbghelp.h>

#include <cstdio>
#include <string>

namespace vlm {

namespace {

constexpr wchar_t kFull[] = L"full";
constexpr uint64_t kTenMinutes = 6'000'000'000; // of 100 ns
constexpr DWORD kLogPause = 2000;
constexpr const wchar_t* kLogs[] = {L"%TEMP%\\TRCWIN.LOG", L"%WINDIR%\\TRCWIN.LOG",
                                    L"%APPDATA%\\VELMORA.LOG"};

// One word of a command line, quoted as run-times read it.
std::wstring Quoted(const std::wstring& word) {
    if (!word.empty() && word.find_first_of(L" \t\"") == std::wstring::npos) return word;
    std::wstring text = L"\"";
    size_t slashes = 0;
    for (const wchar_t unit : word) {
        if (unit == L'"') text.append(slashes + 1, L'\\');
        slashes = unit == L'\\' ? slashes + 1 : 0;
        text += unit;
    }
    return text.append(slashes, L'\\') + L'"';
}

std::wstring Expanded(const wchar_t* text) {
    std::wstring result(ExpandEnvironmentStringsW(text, nullptr, 0), L'\0');
    result.resize(ExpandEnvironmentStringsW(text, result.data(), static_cast<DWORD>(result.size())));
    if (!result.empty()) result.pop_back(); // the terminator
    return result;
}

bool LastWritten(const std::wstring& path, uint64_t& time) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return false;
    time = uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime;
    return true;
}

// Whether a log was written lately; waits until it stands still.
bool IsWorthPacking(const std::wstring& path) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    uint64_t time, before;
    if (!LastWritten(path, time) ||
        time + kTenMinutes < (uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime))
        return false;
    do {
        before = time;
        Sleep(kLogPause);
    } while (LastWritten(path, time) && time != before);
    return true;
}

// The folder of dumps, with a backslash at its end.
std::wstring DumpFolder() {
    wchar_t temp[MAX_PATH + 1] = L"";
    GetTempPathW(MAX_PATH, temp);
    const std::wstring folder = std::wstring(temp) + L"Velmora";
    if (!CreateDirectoryW(folder.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
        Fail(folder + L": " + SystemMessage(GetLastError()));
    return folder + L"\\";
}

// A running program that this process debugs.
class Watched {
public:
    Watched(std::wstring commandLine, MINIDUMP_TYPE type, Output& out) : type_(type), out_(out) {
        // Without this the system gives a debugged process another heap.
        SetEnvironmentVariableW(L"_NO_DEBUG_HEAP", L"1");
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION information;
        if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, DEBUG_ONLY_THIS_PROCESS,
                            nullptr, nullptr, &startup, &information))
            Fail(commandLine + L": " + SystemMessage(GetLastError()));
        process_ = Own(information.hProcess);
        thread_ = Own(information.hThread);
        processId_ = information.dwProcessId;
    }

    // Returns the exit code of the program.
    DWORD Run() {
        DEBUG_EVENT event;
        while (WaitForDebugEvent(&event, INFINITE)) {
            DWORD status = DBG_CONTINUE;
            if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT)
                status = OnException(event.dwThreadId, event.u.Exception);
            else if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT)
                Own(event.u.CreateProcessInfo.hFile);
            else if (event.dwDebugEventCode == LOAD_DLL_DEBUG_EVENT)
                Own(event.u.LoadDll.hFile);
            const bool isOver = event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT;
            ContinueDebugEvent(event.dwProcessId, event.dwThreadId, status);
            if (isOver) return event.u.ExitProcess.dwExitCode;
        }
        Fail(L"the program cannot be watched any more: " + SystemMessage(GetLastError()));
    }

private:
    // The first breakpoint is the system's, which announces that the program is loaded.
    DWORD OnException(DWORD threadId, const EXCEPTION_DEBUG_INFO& exception) {
        const DWORD code = exception.ExceptionRecord.ExceptionCode;
        if (code == EXCEPTION_BREAKPOINT && !isLoaded_) {
            isLoaded_ = true;
            return DBG_CONTINUE;
        }
        if (exception.dwFirstChance) return DBG_EXCEPTION_NOT_HANDLED;
        try {
            const std::wstring archive = Pack(threadId, exception.ExceptionRecord);
            wchar_t text[64];
            _snwprintf(text, std::size(text), L"exception 0x%08lx: ", code);
            out_.Line(text + archive);
        } catch (const CommandError& error) {
            out_.Line(L"no dump: " + error.message);
        }
        out_.Flush();
        return DBG_EXCEPTION_NOT_HANDLED;
    }

    std::wstring Pack(DWORD threadId, EXCEPTION_RECORD record) {
        const std::wstring folder = DumpFolder();
        const std::wstring dump = folder + L"watch" + std::to_wstring(processId_) + L".dmp";
        WriteDump(dump, threadId, record);
        const std::wstring archive = folder + L"Velmora.dmp.zip";
        const HUTILZIP zip = UtilZIPCreate(archive.c_str(), L"Velmora Crash Information File");
        const bool hasDump = UtilZIPAppend(zip, dump.c_str(), L"DumpFile", L"velmora64.dmp") == UTIL_ZIP_OK;
        for (const wchar_t* log : kLogs) {
            const std::wstring path = Expanded(log);
            if (zip && IsWorthPacking(path)) UtilZIPAppend(zip, path.c_str(), L"LogFile", L"trcwin.log");
        }
        const bool isWritten = UtilZIPClose(zip) == UTIL_ZIP_OK && zip && hasDump;
        if (!isWritten) Fail(L"cannot pack " + dump);
        DeleteFileW(dump.c_str());
        return archive;
    }

    void WriteDump(const std::wstring& path, DWORD threadId, EXCEPTION_RECORD& record) {
        const HandleOwner thread = Own(OpenThread(THREAD_GET_CONTEXT, FALSE, threadId));
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_ALL;
        if (!thread || !GetThreadContext(thread.get(), &context)) Fail(SystemMessage(GetLastError()));
        EXCEPTION_POINTERS pointers = {&record, &context};
        MINIDUMP_EXCEPTION_INFORMATION information = {threadId, &pointers, FALSE};
        const HandleOwner file = Own(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) Fail(path + L": " + SystemMessage(GetLastError()));
        SymSetOptions(SymGetOptions() | SYMOPT_DEFERRED_LOADS); // a dump needs no symbols
        if (!MiniDumpWriteDump(process_.get(), processId_, file.get(), type_, &information, nullptr, nullptr))
            Fail(path + L": " + SystemMessage(GetLastError()));
    }

    const MINIDUMP_TYPE type_;
    Output& out_;
    HandleOwner process_;
    HandleOwner thread_;
    DWORD processId_ = 0;
    bool isLoaded_ = false;
};

ExitCode RunWatch(const Arguments& arguments, Output& out) {
    std::wstring commandLine;
    for (size_t i = 0; arguments.HasOperand(i); ++i)
        commandLine += (i ? L" " : L"") + Quoted(arguments.Operand(i));
    const MINIDUMP_TYPE type = arguments.Has(kFull) ? MiniDumpWithFullMemory : MiniDumpNormal;
    return static_cast<ExitCode>(Watched(commandLine, type, out).Run());
}

constexpr Option kOptions[] = {{kFull, nullptr, L"put all memory of the program into the dump"}};

} // namespace

Command WatchCommand() {
    return {
        .name = L"watch",
        .summary = L"Run a program and pack a dump of each fault that it does not handle",
        .operands = L"PROGRAM [ARGUMENT...]",
        .help =
            L"The program is run under a debugger, which also sees what no filter in the program sees, such\n"
            L"as a fast fail or a corrupted heap. The archive is \"Velmora.dmp.zip\" in the folder "
            L"\"Velmora\" of\n"
            L"the temp folder. The exit code is that of the program. Put \"--\" before arguments that begin "
            L"with\n"
            L"two dashes.\n\n"
            L"A debugger changes the program: the library's tests of pointers are off, and the program is\n"
            L"slower where it raises exceptions. _NO_DEBUG_HEAP=1 is set, so that it has its usual heap. "
            L"Use\n"
            L"the command for tests and support sessions.",
        .options = kOptions,
        .run = RunWatch,
    };
}

} // namespace vlm
