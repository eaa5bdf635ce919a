// vlm crash and vlm watch: processes that die, and what their archives say.
#include "tests/host/vlm_fixture.h"

#include <array>

namespace vlm::test {

namespace {

// The programs under test inherit the folder of the test as that of their logs and temporary files.
class CrashCommands : public VlmTest {
protected:
    void SetUp() override {
        VlmTest::SetUp();
        for (size_t i = 0; i < kNames.size(); ++i) {
            GetEnvironmentVariableW(kNames[i], saved_[i].data(), static_cast<DWORD>(saved_[i].size()));
            SetEnvironmentVariableW(kNames[i], Folder().c_str());
        }
    }
    void TearDown() override {
        for (size_t i = 0; i < kNames.size(); ++i) SetEnvironmentVariableW(kNames[i], saved_[i].data());
        VlmTest::TearDown();
    }

    // A minidump with one thread, an exception and registers.
    static std::string Dump() {
        std::string bytes;
        const auto put = [&](auto number) {
            bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
        };
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_ALL;
        context.Rip = 0x123456789;
        constexpr uint32_t kThreads = 32 + 2 * 12, kException = kThreads + 52, kContext = kException + 168;
        for (const uint32_t word :
             {0x504D444Du, 0xA793u, 2u, 32u, 0u, 0u, 0u, 0u, 3u, 52u, kThreads, 6u, 168u, kException})
            put(word);
        for (const uint32_t word :
             {1u, 7u, 0u, 0u, 0u, 0u, 0u, 0x1000u, 0u, 0u, 0u, uint32_t{sizeof context}, kContext})
            put(word);
        for (const uint32_t word : {7u, 0u, 0xC0000094u, 0u, 0u, 0u, 0x23456789u, 1u, 0u}) put(word);
        bytes.resize(kException + 160);
        put(uint32_t{sizeof context});
        put(kContext);
        return bytes.append(reinterpret_cast<const char*>(&context), sizeof context);
    }

private:
    static constexpr std::array<const wchar_t*, 3> kNames = {L"APPDATA", L"TEMP", L"TMP"};
    std::array<std::array<wchar_t, MAX_PATH>, 3> saved_ = {};
};

} // namespace

TEST_F(CrashCommands, ShowReadsArchivesAndDumps) {
    WriteFile(L"velmora64.dmp", Dump());
    WriteFile(L"text.log", "first\r\nlast");
    Expect({L"zip create a.zip velmora64.dmp text.log --comment note"});
    for (const wchar_t* file : {L"velmora64.dmp", L"a.zip"}) {
        const Answer answer = Run(std::wstring(L"crash show ") + file);
        EXPECT_EQ(answer.exitCode, 0);
        for (const char* text : {"0xc0000094", "  rip                 0x0000000123456789", "  0x0007  stack"})
            EXPECT_PRED_FORMAT2(testing::IsSubstring, text, answer.out);
    }
    const Answer json = Run(L"crash show --json a.zip");
    for (const char* text :
         {R"({"comment":"note","exception":{"code":"0xc0000094","address":"0x0000000123456789","thread":7,)",
          R"("lastLines":["first","last"])"})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, text, json.out);
}

TEST_F(CrashCommands, ShowRefusesWhatIsDamaged) {
    WriteFile(L"a.dmp", Dump());
    Expect({L"zip create a.zip a.dmp"});
    std::string bytes = ReadFile(L"a.zip");
    bytes[bytes.find("a.dmp") + 20] ^= 1; // in the compressed data
    WriteFile(L"damaged.zip", bytes);
    WriteFile(L"text", "text");
    Expect({
        {L"crash show damaged.zip", 1, "", "damaged entry a.dmp"},
        {L"crash show text", 1, "", "neither a crash archive nor a minidump"},
        {L"crash show absent", 1, "", "absent: "},
        {L"crash demo nothing", 2, "", "unknown class: nothing"},
    });
    for (size_t size = 0; size < bytes.size(); size += 37) { // every prefix ends in a message
        WriteFile(L"cut.zip", bytes.substr(0, size));
        EXPECT_EQ(Run(L"crash show cut.zip").exitCode, 1) << size;
        if (size > 400) break;
    }
}

TEST_F(CrashCommands, WatchPacksWhatNoFilterSees) {
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring program = std::filesystem::path(self).parent_path() / L"vlm.exe";
    const Answer answer = Run(L"watch \"" + program + L"\" crash demo fast-fail");
    EXPECT_EQ(static_cast<uint32_t>(answer.exitCode), 0xC0000409u) << answer.errors;
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "exception 0xc0000409: ", answer.out);
    const Answer shown = Run(L"crash show Velmora\\Velmora.dmp.zip");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Exception             0xc0000409", shown.out);
    EXPECT_EQ(Run(L"watch cmd.exe /c exit 7").exitCode, 7);
}

} // namespace vlm::test
