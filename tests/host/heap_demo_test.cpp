#include "tests/host/vlm_fixture.h"

namespace vlm::test {

using HeapDemo = VlmTest;

TEST_F(HeapDemo, MakesItsMistakes) {
    const Answer answer = Run(L"heap-demo");
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_NE(answer.out.find("UtilHeapObjectFree returns -6: bad object\n"), std::string::npos);
    EXPECT_NE(answer.out.find("UtilHeapDelete returns -5: carried out, but objects were left\n"),
              std::string::npos);
    const bool isHeard =
        answer.out.find("    Warning: deleting heap, but objects are left:\n") != std::string::npos;
    const bool isExplained = answer.out.find("The lines of the library are not shown: ") != std::string::npos;
    EXPECT_NE(isHeard, isExplained) << answer.out; // another viewer may run meanwhile
}

} // namespace vlm::test
