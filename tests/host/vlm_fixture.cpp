#include "tests/host/vlm_fixture.h"

#include <fstream>
#include <system_error>

namespace vlm::test {

namespace fs = std::filesystem;

void VlmTest::SetUp() {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    folder_ = fs::temp_directory_path() / ("vlm-" + test + "-" + std::to_string(GetCurrentProcessId()));
    fs::remove_all(folder_);
    ASSERT_TRUE(fs::create_directories(folder_));
}

// The system closes the files of a program later than it signals the program's end; on a machine that is
// loaded many times over, much later.
void VlmTest::TearDown() {
    std::error_code error;
    for (int tries = 0; tries < 1200; ++tries) {
        fs::remove_all(folder_, error);
        if (!error) return;
        Sleep(50);
    }
    ADD_FAILURE() << "cannot remove " << folder_ << ": " << error.message();
}

Answer VlmTest::Run(const std::wstring& words, HANDLE output) const {
    return RunningProgram(L"vlm.exe", words, folder_, L"vlm", output).Wait();
}

// The bytes fit into the pipe, so that nobody has to write them meanwhile.
Answer VlmTest::RunWithInput(const std::wstring& words, const std::string& bytes) const {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    const auto size = static_cast<DWORD>(bytes.size());
    vxut::clsAutoCloseHandle input, source;
    EXPECT_TRUE(CreatePipe(input.Receive(), source.Receive(), &inheritable, size + 1));
    SetHandleInformation(source.Get(), HANDLE_FLAG_INHERIT, 0);
    DWORD written = 0;
    EXPECT_TRUE(::WriteFile(source.Get(), bytes.data(), size, &written, nullptr) && written == size);
    source.Reset();
    return RunningProgram(L"vlm.exe", words, folder_, L"vlm", nullptr, input.Get()).Wait();
}

void VlmTest::Expect(const Call& call) const {
    SCOPED_TRACE(testing::Message() << "vlm " << call.words);
    const Answer answer = Run(call.words);
    EXPECT_EQ(answer.exitCode, call.exitCode) << answer.errors;
    EXPECT_EQ(answer.out, call.out);
    if (call.exitCode == 2) EXPECT_PRED_FORMAT2(testing::IsSubstring, "\nUsage: vlm", answer.errors);
    if (call.errors.empty())
        EXPECT_EQ(answer.errors, "");
    else
        EXPECT_PRED_FORMAT2(testing::IsSubstring, call.errors, answer.errors);
}

void VlmTest::Expect(std::initializer_list<Call> calls) const {
    for (const Call& call : calls) Expect(call);
}

void VlmTest::WriteFile(const std::wstring& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
}

std::string VlmTest::ReadFile(const std::wstring& name) const { return BytesOfFile(folder_ / name); }

} // namespace vlm::test
