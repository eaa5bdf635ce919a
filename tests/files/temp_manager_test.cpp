#include "files/temp_manager.h"

#include "files/temp_sweep.h"
#include "locale/system_time.h"
#include "tests/support/child_process.h"
#include "tests/support/debug_listener.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace vxut {
namespace {

using test::FreshFolder;

constexpr SYSTEMTIME kNow = {2026, 3, 0, 1, 1, 30, 0, 0}; // so that the hours before reach into February
constexpr int64_t kSecond = 1000, kHour = 3600 * kSecond;

void SetAge(const String& path, int64_t milliseconds, SYSTEMTIME now = kNow) {
    AddMilliseconds(now, -milliseconds);
    FILETIME time;
    ASSERT_TRUE(SystemTimeToFileTime(&now, &time));
    const clsAutoCloseFile file(CreateFileW(path.Text(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr,
                                            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
}

SYSTEMTIME Now() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    return now;
}

bool IsThere(const String& path) { return GetFileAttributesW(path.Text()) != INVALID_FILE_ATTRIBUTES; }

// A file that cannot be deleted while the object lives.
clsAutoCloseFile Hold(const String& path) {
    return clsAutoCloseFile(
        CreateFileW(path.Text(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
}

TEST(TempSweepTest, TakesOldFilesOfTheVersionOnly) {
    const struct {
        const wchar_t* name;
        int64_t age;
        bool isTaken;
    } rows[] = {
        {L"_21_x.tmp", kHour, false}, // strictly before
        {L"_21_y.tmp", kHour + 1, true},    {L"_21_z", 90 * 24 * kHour, true},
        {L"_21_new.tmp", -kHour, false},    {L"_20_x.tmp", 9 * kHour, false},
        {L"_21x.tmp", 9 * kHour, false},    {L"_21_activity.signal", 9 * kHour, false},
        {L"_21_.SIGNAL", 9 * kHour, false}, {L"_21_x.signal.tmp", 9 * kHour, true},
    };
    const FreshFolder folder;
    for (const auto& row : rows) SetAge(folder.Put(row.name, "x"), row.age);
    SweepTempFolder(folder.Path(), kNow);
    for (const auto& row : rows) EXPECT_EQ(IsThere(folder.At(row.name)), !row.isTaken) << row.name;
    EXPECT_TRUE(IsSweepable(L"_21_x", {UINT32_MAX, UINT32_MAX}, kNow)) << "a time that cannot be converted";
}

TEST(TempSweepTest, IsDueAfterThreeHoursWithoutActivity) {
    const FreshFolder folder;
    const String file = folder.At(L"_21_activity.signal");
    EXPECT_TRUE(IsSweepDue(file, kNow)) << "no file";
    folder.Put(L"_21_activity.signal", "");
    for (const auto& [age, isDue] : {std::pair(3 * kHour, false), {3 * kHour + 1, true}, {-kHour, false}}) {
        SetAge(file, age);
        EXPECT_EQ(IsSweepDue(file, kNow), isDue) << age;
    }
    EXPECT_FALSE(IsSweepDue(folder.At(L"absent\\x"), kNow)) << "unknown";
}

class TempManagerTest : public testing::Test {
protected:
    void Make(const wchar_t* folder) { remover_ = std::make_unique<clsTempFileRemover>(folder_.At(folder)); }
    void MakeInFolder() {
        String path = folder_.Path();
        path.TrimRight(L'\\');
        remover_ = std::make_unique<clsTempFileRemover>(path);
    }
    size_t Heard(const wchar_t* text) const {
        size_t count = 0;
        for (const std::wstring& line : listener_.Lines()) count += line.find(text) != std::wstring::npos;
        return count;
    }

    const FreshFolder folder_;
    DebugListener listener_;
    std::unique_ptr<clsTempFileRemover> remover_;
};

TEST_F(TempManagerTest, TriesWhatIsInUseAgainAndDropsWhatIsGone) {
    Make(L"absent");
    EXPECT_EQ(Heard(L"WRN: UTIL: path '"), 1u);
    const String held = folder_.Put(L"held", ""), gone = folder_.At(L"gone"), late = folder_.Put(L"late", "");
    clsAutoCloseFile holder = Hold(held);
    for (const String& path : {held, folder_.Put(L"free", ""), gone, held}) remover_->Add(path);
    EXPECT_EQ(remover_->RunCycle(), 9600);
    EXPECT_FALSE(IsThere(folder_.At(L"free")));
    EXPECT_EQ(Heard(L"WRN: clsTempFileRemover: error deleting temp file '"), 2u);
    EXPECT_EQ(remover_->RunCycle(), 9800);
    for (int i = 0; i < 97; ++i) remover_->Add(held);
    EXPECT_EQ(remover_->RunCycle(), 1000) << "the shortest pause";
    holder.Reset();
    remover_->RunCycle(); // the first deletion leaves nothing to the others
    EXPECT_EQ(remover_->RunCycle(), 10000);
    EXPECT_FALSE(IsThere(held));

    holder = Hold(late);
    for (const String& path : {late, gone, folder_.Put(L"last", "")}) remover_->Add(path);
    remover_.reset();
    EXPECT_FALSE(IsThere(folder_.At(L"last")));
    EXPECT_EQ(Heard(L"late', file will most likely remain as dead corpse in your system"), 1u);
    EXPECT_EQ(Heard(L"gone' is gone!"), 1u);
    EXPECT_FALSE(IsThere(folder_.At(L"absent")));
}

TEST_F(TempManagerTest, SweepsAtItsFirstCycleAndShowsItsActivity) {
    const String left = folder_.Put(L"_21_left", ""), activity = folder_.Put(L"_21_activity.signal", "?");
    SetAge(left, 2 * kHour, Now());
    SetAge(activity, 2 * kHour, Now());
    MakeInFolder();
    EXPECT_EQ(remover_->RunCycle(), 10000);
    EXPECT_TRUE(IsThere(left)) << "somebody is at work";
    EXPECT_NE(folder_.Get(L"_21_activity.signal").find(std::string("2\0000\0002\000", 6)), std::string::npos);

    MakeInFolder();
    SetAge(activity, 4 * kHour, Now());
    remover_->RunCycle();
    EXPECT_FALSE(IsThere(left));
    SetAge(folder_.Put(L"_21_left", ""), 2 * kHour, Now());
    SetAge(activity, 4 * kHour, Now());
    remover_->RunCycle();
    EXPECT_TRUE(IsThere(left)) << "once a day";
    EXPECT_FALSE(IsSweepDue(activity, Now()));
}

TEST_F(TempManagerTest, DeletesAlsoWithoutAnActivityFile) {
    std::filesystem::create_directory(folder_.At(L"_21_activity.signal").Text());
    MakeInFolder();
    remover_->Add(folder_.Put(L"free", ""));
    remover_->RunCycle();
    EXPECT_EQ(Heard(L"cannot create/open activity file '"), 1u);
    EXPECT_FALSE(IsThere(folder_.At(L"free")));
}

// In processes of their own, which have a temp folder of their own.
class TempManagerProcessTest : public testing::Test {
protected:
    TempManagerProcessTest() {
        for (const wchar_t* name : {L"TMP", L"TEMP"}) {
            wchar_t value[MAX_PATH] = L"";
            GetEnvironmentVariableW(name, value, MAX_PATH);
            before_.emplace_back(name, value);
            SetEnvironmentVariableW(name, folder_.Path().Text());
        }
    }
    ~TempManagerProcessTest() override {
        for (const auto& [name, value] : before_) SetEnvironmentVariableW(name.c_str(), value.c_str());
    }

    const FreshFolder folder_;

private:
    std::vector<std::pair<std::wstring, std::wstring>> before_;
};

TEST_F(TempManagerProcessTest, FilesOfADeadProcessGoWithTheNextOne) {
    const std::string name = test::RunChild(L"temp-die").output;
    ASSERT_TRUE(name.starts_with("_21_dead")) << name;
    const String left = folder_.At((L"Velmora\\" + std::wstring(name.begin(), name.end())).c_str());
    const String activity = folder_.At(L"Velmora\\_21_activity.signal");
    ASSERT_TRUE(IsThere(left));
    EXPECT_FALSE(IsThere(activity)) << "a process of less than ten seconds leaves the folder alone";
    SetAge(left, 2 * kHour, Now());
    EXPECT_EQ(test::RunChild(L"temp-work").output, "one thread, deleted");
    EXPECT_FALSE(IsThere(left));
    EXPECT_TRUE(IsThere(activity));
}

TEST_F(TempManagerProcessTest, AManagerLeftOpenDeletesNothingAtTheEnd) {
    const uint64_t start = GetTickCount64();
    EXPECT_EQ(test::RunChild(L"temp-leave").output, "left");
    EXPECT_LT(GetTickCount64() - start, 9000u);
    EXPECT_TRUE(IsThere(folder_.At(L"Velmora\\_21_left.tmp")));
}

TEST_F(TempManagerProcessTest, TheLibraryStaysLoadedWhileItsThreadRuns) {
    EXPECT_EQ(test::RunChild(L"temp-unload").output, "held, gone");
}

} // namespace
} // namespace vxut
