// A program of the build that runs beside the test, its output in files of a folder.
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
    // The program is a file name beside the tests; words are the command line behind it. Output other than
    // the file NAME.out can be given.
    RunningProgram(const std::wstring& program, const std::wstring& words,
                   const std::filesystem::path& folder, const std::wstring& name, HANDLE output = nullptr);
    // Ends the program if it still runs.
    ~RunningProgram();

    // What the program says up to its end, for which it has a minute.
    Answer Wait();

private:
    std::filesystem::path outPath_;
    std::filesystem::path errorsPath_;
    vxut::clsAutoCloseHandle process_;
};

// The bytes of a file; empty if there is none.
std::string BytesOfFile(const std::filesystem::path& path);

} // namespace vlm::test
