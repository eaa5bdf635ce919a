#include "frame/owners.h"
#include "tests/host/vlm_fixture.h"

#include <sstream>
#include <vector>

namespace vlm::test {

namespace {

using CommandLine = VlmTest;

// The names that a help lists under "Commands:".
std::vector<std::wstring> CommandsOf(const std::string& help) {
    std::vector<std::wstring> names;
    std::istringstream lines(help.substr(std::min(help.find("\nCommands:\n"), help.size())));
    bool isInside = false;
    for (std::string line; std::getline(lines, line);) {
        if (isInside && line.empty()) break;
        const size_t end = line.find(' ', 2);
        if (isInside) names.emplace_back(line.begin() + 2, line.begin() + end);
        isInside |= line == "Commands:";
    }
    return names;
}

} // namespace

TEST_F(CommandLine, UsageErrorsEndWithTwo) {
    Expect({
        {L"", 2, "", "vlm: a command is missing"},
        {L"nonsense", 2, "", "vlm: unknown command: nonsense"},
        {L"profile", 2, "", "vlm profile: a command is missing"},
        {L"profile nonsense", 2, "", "vlm profile: unknown command: nonsense"},
        {L"profile get a.prf", 2, "", "too few arguments"},
        {L"profile get a.prf b c", 2, "", "unexpected argument: c"},
        {L"profile get a.prf b --packed", 2, "", "unknown option --packed"},
        {L"profile get a.prf b --as", 2, "", "option --as needs a value: TYPE"},
        {L"profile get a.prf b --as=float", 2, "", "unknown type: float"},
        {L"profile get a.prf b --encoding nonsense", 2, "", "no such code page: nonsense"},
        {L"profile convert a.prf b.prf --form yaml", 2, "", "unknown form: yaml"},
        {L"profile convert a.prf b.prf --packed=yes", 2, "", "option --packed takes no value"},
        {L"profile delete a.prf /", 2, "", "the path is empty"},
        {L"charset text", 2, "", "give a text, or a file"},
    });
}

TEST_F(CommandLine, EveryListedCommandHasHelp) {
    std::vector<std::wstring> paths = {L""};
    for (size_t index = 0; index < paths.size(); ++index) {
        const std::wstring path = paths[index];
        const Answer answer = Run(path + L" --help");
        EXPECT_EQ(answer.exitCode, 0) << path;
        EXPECT_EQ(answer.errors, "");
        const std::string usage = "Usage: vlm" + std::string(path.begin(), path.end());
        EXPECT_EQ(answer.out.substr(0, usage.size()), usage);
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "\nExit codes:\n", answer.out) << path;
        for (const std::wstring& name : CommandsOf(answer.out)) paths.push_back(path + L" " + name);
    }
    EXPECT_GT(paths.size(), 15u);
}

TEST_F(CommandLine, OptionsStandAnywhereAndEndWithTwoDashes) {
    Expect({
        {L"profile set --as=int a.prf n -- -5"},
        {L"profile get a.prf --as int n", 0, "-5\n"},
        {L"profile set a.prf s -- --help"},
        {L"profile get a.prf s", 0, "--help\n"},
    });
}

TEST_F(CommandLine, VersionTellsTheLoadedLibrary) {
    const Answer answer = Run(L"version");
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Library               21.1\n", answer.out);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Profile store         21.1\n", answer.out);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "\\vxut21.dll\n", answer.out);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "\nFileVersion ", answer.out);
}

TEST_F(CommandLine, OutputThatCannotBeWrittenIsAFailure) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    const vxut::clsAutoCloseFile closed(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ, &inheritable,
                                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const Answer answer = Run(L"path split a.txt", closed.Get());
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "the output could not be written", answer.errors);
}

} // namespace vlm::test
