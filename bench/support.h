// What the benchmark programs share. Names of benchmarks are GROUP/CANDIDATE or GROUP/CANDIDATE/SIZE: the
// candidate of the library is "vxut", one that begins with "floor:" is a lower bound, every other one a peer.
#pragma once

#include <benchmark/benchmark.h>

#include <windows.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace bench {

inline std::wstring TemporaryName(const wchar_t* name) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + L"vxut-bench-" + name;
}

// The whole of a file; empty on failure.
std::vector<char> ReadBytes(const std::wstring& name);
bool WriteBytes(const std::wstring& name, const void* bytes, size_t count);
// The same into a second file, which is written out to the disk and put in the place of the first.
bool WriteBytesSafely(const std::wstring& name, const void* bytes, size_t count);

// Seconds between two points of the performance counter.
class Stopwatch {
public:
    Stopwatch() { QueryPerformanceCounter(&start_); }
    double Seconds() const {
        LARGE_INTEGER now, frequency;
        QueryPerformanceCounter(&now);
        QueryPerformanceFrequency(&frequency);
        return static_cast<double>(now.QuadPart - start_.QuadPart) / static_cast<double>(frequency.QuadPart);
    }

private:
    LARGE_INTEGER start_;
};

// A piece of work that is measured in a process of its own, which has allocated and loaded nothing before.
struct FreshTask {
    const char* name;
    void (*run)(const std::wstring& argument); // only this is timed
};

// Runs the task that the command line asks for, and ends the process. Returns if it asks for none. Call it
// first.
void RunFreshTask(std::initializer_list<FreshTask> tasks);

// Runs a task in new processes, one for each iteration of a benchmark with manual time.
void MeasureFresh(benchmark::State& state, const std::string& task, const std::wstring& argument);

} // namespace bench
