// Processes that are killed while they save.
#include "profile/job.h"
#include "profile/save.h"
#include "tests/support/child_process.h"
#include "tests/support/generations.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace vxut {
namespace {

using test::FreshFolder;

// What was seen after a number of kills.
struct Outcome {
    int whole = 0;    // one generation or the other
    int broken = 0;   // anything else
    int siblings = 0; // left until the next save: the kill came between the last two steps of a save
    int remains = 0;  // left by the next save
};

int CountOthers(const FreshFolder& folder, const String& path) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path().Text()))
        count += entry.path() != path.Text();
    return count;
}

Outcome KillWhileSaving(const std::wstring& task, int kills) {
    const FreshFolder folder;
    const String path = folder.At(L"saved");
    ProfJob job;
    test::FillGeneration(job, 0);
    EXPECT_EQ(SaveProfile(job, path.Text(), PROF_FORMAT_TEXT).code, PROF_OK);
    std::mt19937 random(1);
    Outcome outcome;
    for (int i = 0; i < kills; ++i) {
        const test::ChildHandle child = test::StartChild(task + L" \"" + path.Text() + L"\"");
        // Until it saves: the file has been written since the child was started.
        const auto written = [&] { return std::filesystem::last_write_time(path.Text()); };
        const auto before = written();
        for (int waited = 0; waited < 1000 && written() == before; ++waited) Sleep(10);
        Sleep(std::uniform_int_distribution<DWORD>(0, 150)(random));
        EXPECT_TRUE(child.IsRunning()) << "its saves succeed";
        child.Kill();
        ProfJob found;
        found.OpenShared(path.Text());
        ++(test::IsGeneration(found) && found.LastError() == PROF_OK ? outcome.whole : outcome.broken);
        outcome.siblings += CountOthers(folder, path);
        EXPECT_EQ(SaveProfile(job, path.Text(), PROF_FORMAT_TEXT).code, PROF_OK);
        outcome.remains += CountOthers(folder, path);
    }
    return outcome;
}

TEST(SaveKillTest, AFileIsWholeAndAloneWhenItsWriterWasKilled) {
    for (const wchar_t* task : {L"save-forever", L"save-kept-forever"}) {
        const char* const asked = std::getenv("VXUT_KILLS");
        const Outcome outcome = KillWhileSaving(task, asked ? std::atoi(asked) : 6);
        std::printf("%ls: whole %d, broken %d, siblings %d, remains %d\n", task, outcome.whole,
                    outcome.broken, outcome.siblings, outcome.remains);
        EXPECT_EQ(outcome.broken, 0) << task;
        EXPECT_EQ(outcome.remains, 0) << task;
    }
}

} // namespace
} // namespace vxut
