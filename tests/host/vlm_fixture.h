// Runs vlm.exe in a fresh folder and checks its results.
#pragma once

#include "tests/host/program.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

namespace vlm::test {

// A command line and its expected results. A call with exit code 2 has to print the usage as well. Errors is
// a part of the text on standard error; if it is empty, there must be none.
struct Call {
    std::wstring words = {};
    int exitCode = 0;
    std::string out = {};
    std::string errors = {};
};

class VlmTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Words are the command line after the program's name. Output, if given, replaces standard output.
    Answer Run(const std::wstring& words, HANDLE output = nullptr) const;
    // The same with bytes on standard input, which is a pipe.
    Answer RunWithInput(const std::wstring& words, const std::string& bytes) const;
    void Expect(const Call& call) const;
    // All calls, in order.
    void Expect(std::initializer_list<Call> calls) const;

    void WriteFile(const std::wstring& name, const std::string& bytes) const;
    std::string ReadFile(const std::wstring& name) const;
    bool IsThere(const std::wstring& name) const { return exists(folder_ / name); }
    const std::filesystem::path& Folder() const { return folder_; }

private:
    std::filesystem::path folder_;
};

} // namespace vlm::test
