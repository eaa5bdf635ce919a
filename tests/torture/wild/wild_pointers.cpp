// vxut_wild: calls every export with every pointer argument wild in turn, handles the structured exceptions
// as a host does, and sees to it that no lock stays held: a second thread goes on using the library
// meanwhile.
//
//     vxut_wild [EXPORT]    with an export: tries only that one, and looks for held locks after each argument
#include "../../support/trace_viewer.h"
#include "bystander.h"
#include "wild_values.h"

#include "prof.h"
#include "util.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>

namespace vxut::test {
namespace {

constexpr uint64_t kCallPatience =
    30000; // milliseconds; a call that waits for a file takes 10 s by its contract

// What differs for some exports.
struct Row {
    std::string_view name;
    int number = 16; // for all its numbers: sizes and capacities among them
    const wchar_t* text = nullptr;
    const char* leftOutBecause = nullptr;
};
constexpr Row kRows[] = {
    {.name = "UtilAssert", .leftOutBecause = "it shows a message box and ends the process"},
    {.name = "UtilSetCBTHook", .leftOutBecause = "the system calls its callback, on other threads too"},
    {.name = "UtilDebug", .text = L"%s %s"},
    {.name = "UtilDebugExt", .number = 0, .text = L"%s %s"},
    {.name = "UtilDebugExtV", .number = 0, .text = L"%s %s"},
    {.name = "UtilSafeSprintf", .text = L"%s %s"},
    {.name = "UtilJobOpen", .number = static_cast<int>(UTIL_JOB_TRACE)},
    {.name = "UtilStuff", .number = 1},
    {.name = "UtilSubstr", .number = 1},
    {.name = "ProfSaveA", .number = PROF_FORMAT_TEXT},
    {.name = "ProfSaveW", .number = PROF_FORMAT_TEXT},
    {.name = "ProfSaveToStream", .number = PROF_FORMAT_TEXT},
    {.name = "ProfSaveToClipboard", .number = PROF_FORMAT_TEXT},
    {.name = "ProfJobOpenStreamObjectA", .number = 0},
    {.name = "ProfJobOpenStreamObjectW", .number = 0},
};

// The engine's job is an object whose pointer is followed.
constexpr std::string_view kMayFault = "UtilDebugHelp";
// Families whose contract takes any pointer, by the beginning of their names.
constexpr std::string_view kNeverFault[] = {"UtilJob", "UtilHeap",  "UtilDebug",     "PasDebug",
                                            "UtilIs",  "UtilError", "UtilStackTrace"};

// What a call gets where it gets nothing wild: one live object of each kind.
struct SaneArguments {
    HUTILJOB job = UtilJobOpen(L"WILD", UTIL_JOB_TRACE | UTIL_JOB_DEBUG_HEAPS);
    HUTILHEAP heap = UtilHeapCreate(job, L"WILD", 0);
    HPROF profile = ProfJobOpenW(nullptr);
    IStream* stream = nullptr;
    std::wstring path;
    std::string narrowPath;
    const wchar_t* text = nullptr;
    int number = 0;
    alignas(16) std::array<char, 4096> memory = {};

    // A callback of the type of the argument.
    template <class Result, class... Arguments>
    static auto AnyCallback(Result (*)(Arguments...)) -> Result (*)(Arguments...) {
        return [](Arguments...) { return static_cast<Result>(1); };
    }

    template <class T>
    T Get() {
        using Target = std::remove_pointer_t<T>;
        if constexpr (!std::is_pointer_v<T>)
            return static_cast<T>(number);
        else if constexpr (std::is_same_v<T, HUTILJOB>)
            return job;
        else if constexpr (std::is_same_v<T, HUTILHEAP>)
            return heap;
        else if constexpr (std::is_same_v<T, HPROF>)
            return profile;
        else if constexpr (std::is_same_v<T, HPROFLIST> || std::is_same_v<T, HWND>)
            return nullptr;
        else if constexpr (std::is_same_v<T, IStream*>)
            return stream;
        else if constexpr (std::is_same_v<Target, const wchar_t>)
            return text ? text : path.c_str();
        else if constexpr (std::is_same_v<Target, const char>)
            return narrowPath.c_str();
        else if constexpr (std::is_function_v<Target>)
            return AnyCallback(T{});
        else
            return reinterpret_cast<T>(memory.data());
    }
};

class Attack {
public:
    Attack(std::wstring folder, std::string_view only)
        : folder_(std::move(folder)), only_(only), bystander_(folder_) {
        sane_.path = folder_ + L"wild.prf";
        for (const wchar_t unit : sane_.path) sane_.narrowPath += static_cast<char>(unit);
        CreateStreamOnHGlobal(nullptr, TRUE, &sane_.stream);
    }
    ~Attack() {
        isOver_ = true;
        watch_.join();
        ProfJobClose(sane_.profile);
        UtilJobClose(sane_.job);
        sane_.stream->Release();
    }
    Attack(const Attack&) = delete;
    Attack& operator=(const Attack&) = delete;

    template <class Result, class... Arguments>
    void Try(const char* name, Result (*function)(Arguments...)) {
        Try<Arguments...>(name, [=](Arguments... arguments) {
            // A job that an exclusive open returns, or an archive, would keep its file open, and a help
            // object its hook.
            if constexpr (std::is_same_v<Result, HPROF>)
                ProfJobClose(function(arguments...));
            else if constexpr (std::is_same_v<Result, HUTILZIP>)
                UtilZIPClose(function(arguments...));
            else if constexpr (std::is_same_v<Result, HUTILHELP>)
                UtilHelpClose(function(arguments...));
            else
                function(arguments...);
        });
    }
    // Two more pointers, for a format that takes them.
    template <class Result, class... Arguments>
    void Try(const char* name, Result (*function)(Arguments..., ...)) {
        Try<Arguments..., const wchar_t*, const wchar_t*>(
            name, [=](Arguments... arguments, const wchar_t* first, const wchar_t* second) {
                function(arguments..., first, second);
            });
    }

    int Finish() {
        if (!bystander_.AwaitRound()) Fail("the other thread has failed");
        std::printf(
            "vxut_wild: %d exports with %d pointers, %d calls, %d faults reached the host, the slowest call "
            "took "
            "%llu ms; the other thread made %llu rounds, its slowest call took %llu ms\n",
            exports_, pointers_, calls_, faults_, slowest_, bystander_.Rounds(), bystander_.LongestCall());
        return calls_ > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }

private:
    template <class... Arguments, class Function>
    void Try(const char* name, Function function) {
        Begin(name);
        if (row_.leftOutBecause || (!only_.empty() && only_ != name)) return;
        ++exports_;
        constexpr std::array<bool, sizeof...(Arguments)> isPointer = {std::is_pointer_v<Arguments>...};
        for (size_t i = 0; i < isPointer.size(); ++i) {
            if (!isPointer[i]) continue;
            TryPointer<Arguments...>(i, function, std::index_sequence_for<Arguments...>());
            if (!only_.empty()) LookForTraces();
        }
        LookForTraces();
    }

    template <class... Arguments, class Function, size_t... Index>
    void TryPointer(size_t wildIndex, Function& function, std::index_sequence<Index...>) {
        ++pointers_;
        argument_ = wildIndex + 1;
        for (const WildValue& wild : memory_.Values()) {
            memory_.Reset();
            sane_.memory.fill(0);
            value_ = wild.name;
            Call([&] { function(Pick<Arguments>(Index == wildIndex, wild.pointer)...); });
        }
    }

    void LookForTraces() {
        if (!bystander_.AwaitRound()) Fail("the other thread does not get on");
        if (!IsFileFree()) Fail("a file stays open");
    }

    template <class T>
    T Pick(bool isWild, void* wild) {
        if constexpr (std::is_pointer_v<T>) {
            if (isWild) return reinterpret_cast<T>(wild);
        }
        return sane_.Get<T>();
    }

    void Begin(const char* name) {
        row_ = {.name = name};
        for (const Row& row : kRows) {
            if (row.name == name) row_ = row;
        }
        sane_.number = row_.number;
        sane_.text = row_.text;
    }

    template <class Function>
    void Call(Function&& function) {
        const uint64_t start = GetTickCount64();
        callStart_ = start;
        const bool hasFaulted = Faults(function);
        callStart_ = 0;
        slowest_ = std::max<uint64_t>(slowest_, GetTickCount64() - start);
        ++calls_;
        if (!hasFaulted) return;
        ++faults_;
        if (row_.name.starts_with(kMayFault)) return;
        for (const std::string_view family : kNeverFault) {
            if (row_.name.starts_with(family)) Fail("a fault reached the host");
        }
    }

    template <class Function>
    [[gnu::noinline]] static void Run(Function& function) {
        function();
    }
    template <class Function>
    [[gnu::noinline]] static bool Faults(Function& function) {
        __try {
            Run(function);
            return false;
        } __except (EXCEPTION_EXECUTE_HANDLER) {
            return true;
        }
    }

    // What a call has left open is found out by opening it alone.
    bool IsFileFree() const {
        const HANDLE file = CreateFileW(sane_.path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
        return CloseHandle(file) != FALSE;
    }

    // Ends the process at once: what is held would keep it from an orderly end.
    [[noreturn]] void Fail(const char* reason) const {
        std::printf("vxut_wild: FAILED at %.*s, argument %zu, last value %s: %s; the other thread is in %s\n",
                    static_cast<int>(row_.name.size()), row_.name.data(), argument_, value_.load(), reason,
                    bystander_.Step());
        std::fflush(stdout);
        TerminateProcess(GetCurrentProcess(), EXIT_FAILURE);
        std::abort();
    }

    // Ends a run whose own call does not return.
    void Watch() const {
        while (!isOver_) {
            const uint64_t start = callStart_;
            if (start != 0 && GetTickCount64() - start > kCallPatience) Fail("the call does not return");
            Sleep(50);
        }
    }

    const std::wstring folder_;
    const std::string_view only_;
    WildMemory memory_;
    SaneArguments sane_;
    Row row_;
    size_t argument_ = 0;
    std::atomic<const char*> value_{""};
    int exports_ = 0, pointers_ = 0, calls_ = 0, faults_ = 0;
    uint64_t slowest_ = 0;
    std::atomic<uint64_t> callStart_{0};
    std::atomic<bool> isOver_{false};
    Bystander bystander_;
    std::thread watch_{[this] { Watch(); }};
};

} // namespace
} // namespace vxut::test

int main(int count, char** arguments) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("vxut-wild-" + std::to_string(GetCurrentProcessId()));
    std::filesystem::create_directory(folder);
    // A wild text can be the name of a file, which then is made in the current folder.
    const auto startFolder = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    int result = EXIT_FAILURE;
    {
        vxut::test::TraceViewer viewer; // somebody listens, so that lines are formatted
        vxut::test::Attack attack(folder.wstring() + L"\\", count > 1 ? arguments[1] : "");
#define EXPORT(function)             \
    attack.Try(#function, function); \
    viewer.Take();
#include "export_rows.h"
#undef EXPORT
        result = attack.Finish();
    }
    std::filesystem::current_path(startFolder);
    std::filesystem::remove_all(folder);
    return result;
}
