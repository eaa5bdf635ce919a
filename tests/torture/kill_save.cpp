// Kills processes while they save: the file has to hold the old or the new contents whole.
//
//   vxut_kill_save [KILLS] [--kept]
//
// A child saves two profiles of 20 MB in turn under one name, or to the file that it keeps. It is killed at a
// random moment, KILLS times. In the end one more save has to leave nothing but its file in the folder.
#include "prof.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr int kDefaultKills = 200;
constexpr int kItems = 20000;
constexpr int kUnitsOfValue = 500; // 20 MB in all
constexpr wchar_t kFile[] = L"saved.prf";
constexpr const wchar_t* kImages[] = {L"image0.prf", L"image1.prf"};
constexpr char kSaveOption[] = "--save";
constexpr char kKeptOption[] = "--kept";
constexpr DWORD kPatience = 120000;

HPROF MakeProfile(int number) {
    const HPROF job = ProfJobOpenW(nullptr);
    const std::wstring value(kUnitsOfValue + static_cast<size_t>(number),
                             static_cast<wchar_t>(L'a' + number));
    for (int i = 0; i < kItems; ++i)
        ProfAppendStringW(job, nullptr, (L"Item" + std::to_wstring(i)).c_str(), value.c_str());
    return job;
}

void MakeImages() {
    for (int number = 0; number < 2; ++number) {
        const HPROF job = MakeProfile(number);
        ProfSaveW(job, kImages[number], PROF_FORMAT_TEXT);
        ProfJobClose(job);
    }
}

std::string BytesOf(const wchar_t* name) {
    std::ifstream file(fs::path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The child: says that it is ready, and saves until it is killed. Returns only if a save fails.
int SaveForEver(bool isKept, const char* eventName) {
    const HPROF jobs[] = {MakeProfile(0), MakeProfile(1)};
    const HPROF kept = isKept ? ProfJobOpenExclusiveW(kFile) : nullptr;
    const HANDLE ready = OpenEventA(EVENT_MODIFY_STATE, FALSE, eventName);
    SetEvent(ready);
    for (int round = 0;; ++round) {
        const HPROF source = jobs[round % 2];
        if (isKept) {
            ProfEmptyList(kept, nullptr);
            ProfCopyList(kept, nullptr, source, nullptr);
        }
        const int32_t code = ProfSaveW(isKept ? kept : source, isKept ? nullptr : kFile, PROF_FORMAT_TEXT);
        if (code == PROF_OK) continue;
        std::printf("a save that nothing disturbs: the code %d\n", code);
        return 1;
    }
}

// Starts a child and kills it a while after its saves have begun. False if it ended by itself.
bool KillOne(bool isKept, DWORD milliseconds) {
    const std::string eventName = "vxut-kill-save-" + std::to_string(GetCurrentProcessId());
    const HANDLE ready = CreateEventA(nullptr, TRUE, FALSE, eventName.c_str());
    ResetEvent(ready);
    char program[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string line =
        "\"" + std::string(program) + "\" " + kSaveOption + " " + eventName + (isKept ? " --kept" : "");
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child = {};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &child))
        return false;
    const HANDLE either[] = {ready, child.hProcess};
    const bool isReady = WaitForMultipleObjects(2, either, FALSE, kPatience) == WAIT_OBJECT_0;
    if (isReady) Sleep(milliseconds);
    const bool ended = WaitForSingleObject(child.hProcess, 0) == WAIT_OBJECT_0;
    TerminateProcess(child.hProcess, 1);
    WaitForSingleObject(child.hProcess, kPatience);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    CloseHandle(ready);
    return isReady && !ended;
}

// The names in the folder other than the saved file and the two images.
std::string OtherNames() {
    std::string names;
    for (const auto& entry : fs::directory_iterator(".")) {
        const std::wstring name = entry.path().filename().wstring();
        if (name != kFile && name != kImages[0] && name != kImages[1])
            names += " " + entry.path().filename().string();
    }
    return names;
}

int KillAll(int kills, bool isKept) {
    MakeImages();
    const std::string images[] = {BytesOf(kImages[0]), BytesOf(kImages[1])};
    if (images[0].size() < 20000000 || images[0] == images[1]) {
        std::printf("the images are wrong\n");
        return 1;
    }
    fs::copy_file(kImages[0], kFile);
    std::mt19937 random(1);
    int seen[2] = {};
    int torn = 0;
    int strays = 0;
    for (int kill = 0; kill < kills; ++kill) {
        if (!KillOne(isKept, random() % 400)) {
            std::printf("kill %d: the child ended by itself\n", kill);
            return 1;
        }
        const std::string now = BytesOf(kFile);
        const auto* image = std::find(std::begin(images), std::end(images), now);
        if (image == std::end(images)) {
            ++torn;
            std::printf("kill %d: the file has %zu bytes and is neither the old nor the new one\n", kill,
                        now.size());
            CopyFileW(kImages[0], kFile, FALSE);
        } else {
            ++seen[image - images];
        }
        strays += !OtherNames().empty();
        std::fflush(stdout);
    }
    const HPROF job = MakeProfile(0);
    const int32_t code = ProfSaveW(job, kFile, PROF_FORMAT_TEXT);
    ProfJobClose(job);
    const std::string others = OtherNames();
    std::printf(
        "%d kills%s: %d and %d times one of the two contents, %d torn; other files beside it %d times, after "
        "the next save:%s\n",
        kills, isKept ? " (kept)" : "", seen[0], seen[1], torn, strays,
        others.empty() ? " none" : others.c_str());
    return torn == 0 && code == PROF_OK && others.empty() ? 0 : 1;
}

} // namespace

int main(int count, char** arguments) {
    const bool isKept = count > 1 && std::strcmp(arguments[count - 1], kKeptOption) == 0;
    if (count > 2 && std::strcmp(arguments[1], kSaveOption) == 0) return SaveForEver(isKept, arguments[2]);
    const int number = count > 1 ? std::atoi(arguments[1]) : 0;
    const fs::path folder =
        fs::temp_directory_path() / ("vxut-kill-save-" + std::to_string(GetCurrentProcessId()));
    fs::create_directories(folder);
    fs::current_path(folder);
    const int result = KillAll(number > 0 ? number : kDefaultKills, isKept);
    fs::current_path(folder.parent_path());
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    return result;
}
