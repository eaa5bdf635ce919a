// Mutates valid inputs, keeps those that reach new code, and stops at the first input that crashes or hangs.
//
//   vxut_fuzz [--target NAME] [--seconds N] [--seed N] [FILE...]
//   vxut_fuzz --list
//
// Files are run once each instead. An input that crashes or hangs is written to fuzz-failure.bin.
#include "coverage.h"
#include "library/load.h"
#include "target.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

namespace fuzz {
namespace {

constexpr size_t kMaxInput = 64 * 1024;
constexpr DWORD kHangMilliseconds = 20000;
constexpr int kFailureExitCode = 77;

struct Options {
    std::string target;
    unsigned seconds = 5;
    unsigned seed = 1;
    bool isList = false;
    std::vector<std::string> files;
};

// The running input, for the exception filter and the thread that looks for hangs.
const Target* currentTarget = nullptr;
const Input* currentInput = nullptr;
volatile LONG64 startedAt = 0; // tick count; 0 between inputs

void EndWithFailure(const char* what) {
    std::fprintf(stderr, "fuzz: %s in target %s (%zu bytes); input written to fuzz-failure.bin\n", what,
                 currentTarget ? currentTarget->name : "?", currentInput ? currentInput->size() : 0);
    std::fflush(stderr);
    HANDLE file = CreateFileW(L"fuzz-failure.bin", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    if (currentInput)
        WriteFile(file, currentInput->data(), static_cast<DWORD>(currentInput->size()), &written, nullptr);
    CloseHandle(file);
    TerminateProcess(GetCurrentProcess(), kFailureExitCode);
}

LONG WINAPI OnFault(EXCEPTION_POINTERS* pointers) {
    std::fprintf(stderr, "fuzz: exception %08lx at %p\n", pointers->ExceptionRecord->ExceptionCode,
                 pointers->ExceptionRecord->ExceptionAddress);
    EndWithFailure("a crash");
    return EXCEPTION_EXECUTE_HANDLER;
}

DWORD WINAPI WatchForHangs(void*) {
    for (;;) {
        Sleep(500);
        const LONG64 started = startedAt;
        if (started != 0 && static_cast<LONG64>(GetTickCount64()) - started > kHangMilliseconds)
            EndWithFailure("a hang");
    }
}

void RunInput(const Target& target, const Input& input) {
    currentTarget = &target;
    currentInput = &input;
    BeginInput();
    startedAt = static_cast<LONG64>(GetTickCount64());
    target.run(input.data(), input.size());
    startedAt = 0;
}

class Mutator {
public:
    Mutator(const Target& target, unsigned seed) : target_(target), random_(seed) {}

    Input Mutate(const std::vector<Input>& corpus) {
        Input input = corpus[Below(corpus.size())];
        for (size_t steps = 1 + Below(6); steps > 0; --steps) Step(input, corpus);
        if (input.size() > kMaxInput) input.resize(kMaxInput);
        return input;
    }

private:
    size_t Below(size_t limit) { return limit ? random_() % limit : 0; }
    size_t Place(const Input& input) { return Below(input.size() + 1); }

    void Step(Input& input, const std::vector<Input>& corpus) {
        switch (Below(8)) {
            case 0:
                if (!input.empty()) input[Below(input.size())] ^= static_cast<uint8_t>(1u << Below(8));
                break;
            case 1:
                if (!input.empty()) input[Below(input.size())] = static_cast<uint8_t>(random_());
                break;
            case 2: {
                const size_t from = Place(input);
                const size_t length = Below(input.size() - from + 1);
                input.erase(At(input, from), At(input, from + length));
                break;
            }
            case 3:
                InsertAt(input, Place(input), Input(1 + Below(16), static_cast<uint8_t>(random_())));
                break;
            case 4:
            case 5:
                if (!target_.tokens.empty())
                    InsertAt(input, Place(input), target_.tokens[Below(target_.tokens.size())]);
                break;
            case 6: {
                const Input& other = corpus[Below(corpus.size())];
                const size_t from = Place(other);
                const size_t length = Below(other.size() - from + 1);
                InsertAt(input, Place(input),
                         Input(other.begin() + static_cast<ptrdiff_t>(from),
                               other.begin() + static_cast<ptrdiff_t>(from + length)));
                break;
            }
            default:
                input.resize(Place(input));
                break;
        }
    }

    static Input::iterator At(Input& input, size_t place) {
        return input.begin() + static_cast<ptrdiff_t>(place);
    }
    static void InsertAt(Input& input, size_t place, const Input& piece) {
        input.insert(At(input, place), piece.begin(), piece.end());
    }

    const Target& target_;
    std::mt19937 random_;
};

void Fuzz(const Target& target, const Options& options) {
    std::vector<Input> corpus = target.seeds;
    corpus.emplace_back();
    for (const Input& seed : corpus) {
        RunInput(target, seed);
        FoundNewCoverage();
    }
    Mutator mutator(target, options.seed);
    const ULONGLONG end = GetTickCount64() + options.seconds * 1000ULL;
    unsigned long runs = 0;
    for (; GetTickCount64() < end; ++runs) {
        Input input = mutator.Mutate(corpus);
        RunInput(target, input);
        if (FoundNewCoverage()) corpus.push_back(std::move(input));
    }
    std::printf("%-16s %8lu inputs, %5zu kept, %6u edges\n", target.name, runs, corpus.size(),
                CoveredEdges());
    std::fflush(stdout);
}

void RunFile(const Target& target, const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    const Input input((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    RunInput(target, input);
    std::printf("%s: %s passed\n", target.name, name.c_str());
}

Options ParseOptions(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string name = arguments[i];
        const char* value = i + 1 < count ? arguments[i + 1] : "";
        if (name == "--target") {
            options.target = value;
            ++i;
        } else if (name == "--seconds") {
            options.seconds = static_cast<unsigned>(std::atoi(value));
            ++i;
        } else if (name == "--seed") {
            options.seed = static_cast<unsigned>(std::atoi(value));
            ++i;
        } else if (name == "--list") {
            options.isList = true;
        } else {
            options.files.push_back(name);
        }
    }
    return options;
}

} // namespace

Input Bytes(const std::string& text) { return {text.begin(), text.end()}; }

Input Utf16(const std::wstring& text) {
    Input input = {0xFF, 0xFE};
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    input.insert(input.end(), bytes, bytes + text.size() * sizeof(wchar_t));
    return input;
}

int Main(int count, char** arguments) {
    const Options options = ParseOptions(count, arguments);
    if (options.isList) {
        for (const Target& target : Targets()) std::printf("%s\n", target.name);
        return 0;
    }
    SetUnhandledExceptionFilter(OnFault);
    CloseHandle(CreateThread(nullptr, 0, WatchForHangs, nullptr, 0, nullptr));
    vxut::Attach(GetModuleHandleW(nullptr));
    int ran = 0;
    for (const Target& target : Targets()) {
        if (!options.target.empty() && options.target != target.name) continue;
        ++ran;
        if (options.files.empty()) Fuzz(target, options);
        for (const std::string& file : options.files) RunFile(target, file);
    }
    vxut::Detach();
    if (ran == 0) std::fprintf(stderr, "fuzz: unknown target '%s'\n", options.target.c_str());
    return ran > 0 ? 0 : 2;
}

} // namespace fuzz

int main(int count, char** arguments) { return fuzz::Main(count, arguments); }
