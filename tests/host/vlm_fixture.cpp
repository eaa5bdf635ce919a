#include "tests/host/vlm_fixture.h"

#include "frame/owners.h"

#include <fstream>
#include <iterator>

namespace vlm::test {

namespace fs = std::filesystem;

namespace {

constexpr DWORD kPatience = 60000;
constexpr wchar_t kOutName[] = L"vlm.out";
constexpr wchar_t kErrorsName[] = L"vlm.err";

fs::path OwnFolder() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path();
}

vxut::clsAutoCloseFile InheritableFile(const fs::path& path) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    return vxut::clsAutoCloseFile(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                              &inheritable, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

int RunProcess(std::wstring commandLine, const fs::path& folder, HANDLE output, HANDLE errors) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = errors;
    PROCESS_INFORMATION information = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(),
                        &startup, &information))
        return -1;
    const vxut::clsAutoCloseHandle process(information.hProcess), thread(information.hThread);
    if (WaitForSingleObject(process.Get(), kPatience) != WAIT_OBJECT_0) TerminateProcess(process.Get(), 1);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.Get(), &exitCode);
    return static_cast<int>(exitCode);
}

} // namespace

void VlmTest::SetUp() {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    folder_ = fs::temp_directory_path() / ("vlm-" + test + "-" + std::to_string(GetCurrentProcessId()));
    fs::remove_all(folder_);
    ASSERT_TRUE(fs::create_directories(folder_));
}

void VlmTest::TearDown() { fs::remove_all(folder_); }

Answer VlmTest::Run(const std::wstring& words, HANDLE output) const {
    Answer answer;
    const std::wstring commandLine = L"\"" + (OwnFolder() / L"vlm.exe").wstring() + L"\" " + words;
    {
        const auto out = InheritableFile(folder_ / kOutName);
        const auto errors = InheritableFile(folder_ / kErrorsName);
        answer.exitCode = RunProcess(commandLine, folder_, output ? output : out.Get(), errors.Get());
    }
    answer.out = ReadFile(kOutName);
    answer.errors = ReadFile(kErrorsName);
    return answer;
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

std::string VlmTest::ReadFile(const std::wstring& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace vlm::test
