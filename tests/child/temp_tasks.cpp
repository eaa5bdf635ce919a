#include "files/path.h"
#include "files/temp_file.h"
#include "tests/child/tasks.h"
#include "util/temp_file.h"

#include <windows.h>
// After windows.h, which they need:
#include <oleauto.h>
#include <tlhelp32.h>

#include <cstdio>

namespace vxut::test {
namespace {

String NewFile(const wchar_t* prefix) {
    BSTR path = nullptr;
    UtilTempFileMgrCreateFile(prefix, L"tmp", 0, &path);
    const String result(path);
    SysFreeString(path);
    return result;
}

bool IsThere(const String& path) { return GetFileAttributesW(path.Text()) != INVALID_FILE_ATTRIBUTES; }

int CountThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    int count = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL found = Thread32First(snapshot, &entry); found; found = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return count;
}

// Dies with a file in the list and prints its name.
const AddChildTask die("temp-die", [] {
    const String path = NewFile(L"dead");
    UtilTempFileMgrOpen();
    UtilTempFileMgrAdd(path.Text());
    std::printf("%s", FilePart(path).Narrow());
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 1);
    return 0;
});

// Lives for one cycle, of two users of the manager.
const AddChildTask work("temp-work", [] {
    const String path = NewFile(L"work");
    const int before = CountThreads();
    UtilTempFileMgrOpen();
    UtilTempFileMgrOpen();
    std::printf(CountThreads() == before + 1 ? "one thread, " : "other threads, ");
    UtilTempFileMgrClose();
    UtilTempFileMgrAdd(path.Text());
    for (int tenths = 0; IsThere(path) && tenths < 300; ++tenths) Sleep(100);
    std::printf(IsThere(path) ? "there" : "deleted");
    UtilTempFileMgrClose();
    return 0;
});

// Ends with an open manager and a file in its list.
const AddChildTask leave("temp-leave", [] {
    const String path = TempFolder(kSharedTempFolder) + L"_21_left.tmp";
    CloseHandle(CreateFileW(path.Text(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    UtilTempFileMgrOpen();
    UtilTempFileMgrAdd(path.Text());
    std::printf("left");
    return 0;
});

// Unloads the DLL with an open manager, then closes that.
const AddChildTask unload("temp-unload", [] {
    TempFolder(kSharedTempFolder);
    const auto call = [](HMODULE library, const char* name) {
        const auto address = reinterpret_cast<void*>(GetProcAddress(library, name));
        if (address) reinterpret_cast<void (*)()>(address)();
    };
    const HMODULE library = LoadLibraryW(L"vxut21.dll");
    call(library, "UtilTempFileMgrOpen");
    FreeLibrary(library);
    std::printf(GetModuleHandleW(L"vxut21.dll") ? "held, " : "gone, ");
    const HMODULE again = LoadLibraryW(L"vxut21.dll");
    call(again, "UtilTempFileMgrClose");
    FreeLibrary(again);
    std::printf(GetModuleHandleW(L"vxut21.dll") ? "held" : "gone");
    return 0;
});

} // namespace
} // namespace vxut::test
