#include "listener.h"
#include "profile_sample.h"
#include "scenario.h"
#include "util.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <numeric>

namespace torture {
namespace {

constexpr DWORD kLastError = 4711;
constexpr int kLines = 4;
constexpr int kCalmLine = 99;
constexpr char kMark[] = "torture line ";

// The numbers of the lines that begin with the mark, in the order of the text.
std::vector<int> NumbersOf(const std::string& text) {
    std::vector<int> numbers;
    for (size_t at = text.find(kMark); at != std::string::npos; at = text.find(kMark, at + 1))
        numbers.push_back(std::atoi(text.c_str() + at + sizeof kMark - 1));
    return numbers;
}

// Lines may be lost, but none arrives twice or in another order, and a line that nothing disturbs arrives.
// The caller's last error stays.
class Lines : public Scenario {
public:
    void Run() override {
        SetLastError(kLastError);
        for (int line = 1; line <= kLines; ++line) UtilDebugExt(L"TORTURE", 0, L"torture line %d", line);
        lastError_ = GetLastError();
    }
    void Check(Verdict& verdict) override {
        UtilDebug(L"torture line %d", kCalmLine);
        const std::vector<int> numbers = NumbersOf(Written());
        std::vector<int> all(kLines);
        std::iota(all.begin(), all.end(), 1);
        all.push_back(kCalmLine);
        verdict.Expect(verdict.AnyFailed() || numbers == all, "%zu of %zu lines arrived", numbers.size(),
                       all.size());
        verdict.Expect(
            std::adjacent_find(numbers.begin(), numbers.end(), std::greater_equal<>()) == numbers.end(),
            "lines arrived twice or in another order");
        verdict.Expect(!numbers.empty() && numbers.back() == kCalmLine,
                       "a line that nothing disturbs is lost");
        verdict.Expect(lastError_ == kLastError, "the last error is %lu", lastError_);
    }

protected:
    // All that was written since the start of the run.
    virtual std::string Written() = 0;

private:
    DWORD lastError_ = 0;
};

class LinesToViewer : public Lines {
public:
    void Prepare() override { listener_ = std::make_unique<Listener>(); }

protected:
    std::string Written() override {
        std::string text;
        for (const std::string& record : listener_->Records()) text += record + "\n";
        return text;
    }

private:
    std::unique_ptr<Listener> listener_;
};

class LinesToLog : public Lines {
public:
    void Prepare() override { DeleteFileW(Path().c_str()); }

protected:
    // The log is UTF-16; the lines of the scenario have no other than ASCII characters.
    std::string Written() override {
        std::string text = BytesOf(Path().c_str());
        std::erase(text, '\0');
        return text;
    }

private:
    static std::wstring Path() { return std::wstring(L"..\\") + kLogFile; }
};

const AddScenario<LinesToViewer> linesToViewer("debug-viewer");
const AddScenario<LinesToLog, true> linesToLog("debug-log");

} // namespace
} // namespace torture
