// Runs a program of the build beside the test, with its output in files of a folder.
#pragma once

#include "base/owners.h"

#include <windows.h>

#include <filesystem>
#include <string>

namespace vlm::test {

struct Answer {
    int exitCode = -1;
    std::string out = {};
    std::string errors = {};
};

class RunningProgram {
public:
    // The program is a file name in the folder of the tests; words are the rest of the command line. Standard
    // error goes to NAME.err; standard output to the given handle, or to NAME.out; standard input is the
    // other handle, if there is one.
    RunningProgram(const std::wstring& program, const std::wstring& words,
                   const std::filesystem::path& folder, const std::wstring& name, HANDLE output = nullptr,
                   HANDLE input = nullptr);
    // Terminates the program if it still runs.
    ~RunningProgram();

    // Waits for the end of the program, for at most a minute, and returns its exit code and output.
    Answer Wait();

private:
    std::filesystem::path outPath_;
    std::filesystem::path errorsPath_;
    vxut::clsAutoCloseHandle process_;
};

// The bytes of a file; empty if it is missing.
std::string BytesOfFile(const std::filesystem::path& path);

} // namespace vlm::test
