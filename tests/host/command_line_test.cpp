#include "base/owners.h"
#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {

using CommandLine = VlmTest;

} // namespace

TEST_F(CommandLine, UsageErrorsEndWithTwo) {
    Expect({
        {L"", 2, "", "vlm: missing command"},
        {L"profile nonsense", 2, "", "vlm profile: unknown command: nonsense"},
        {L"profile get a.prf", 2, "", "too few arguments"},
        {L"profile get a.prf b --packed", 2, "", "unknown option --packed"},
        {L"profile get a.prf b --as", 2, "", "option --as requires a value: TYPE"},
        {L"profile get a.prf b --as=float", 2, "", "unknown type: float"},
        {L"profile get a.prf b --encoding nonsense", 2, "", "unknown code page: nonsense"},
        {L"profile convert a.prf b.prf --packed=yes", 2, "", "option --packed takes no value"},
        {L"profile delete a.prf /", 2, "", "the path is empty"},
        {L"charset text", 2, "", "specify a text, or a file"},
    });
}

TEST_F(CommandLine, HelpIsPrintedForEveryLevel) {
    for (const wchar_t* words :
         {L"--help", L"profile --help", L"profile get --help", L"charset text --help"}) {
        const Answer answer = Run(words);
        EXPECT_EQ(answer.exitCode, 0) << words;
        EXPECT_EQ(answer.errors + answer.out.substr(0, 10), "Usage: vlm") << words;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "\nExit codes:\n", answer.out) << words;
    }
}

TEST_F(CommandLine, OptionsMayAppearAnywhereUntilTwoDashes) {
    Expect({
        {L"profile set --as=int a.prf n -- -5"},
        {L"profile get a.prf --as int n", 0, "-5\n"},
    });
}

TEST_F(CommandLine, EnvPrintsTheEnvironment) {
    const Answer answer = Run(L"env");
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    for (const char* part : {"Environment           interactive session\n", "User interaction      allowed\n",
                             "Code page             1252\n", "\\vlm.exe\n", "\\vxut21.dll\n"})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, part, answer.out);
}

TEST_F(CommandLine, OutputThatCannotBeWrittenIsAFailure) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    const vxut::clsAutoCloseFile closed(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ, &inheritable,
                                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const Answer answer = Run(L"path split a.txt", closed.Get());
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "cannot write the output", answer.errors);
}

} // namespace vlm::test
