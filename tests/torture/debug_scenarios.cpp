#include "../support/trace_viewer.h"
#include "profile_sample.h"
#include "scenario.h"
#include "util.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <optional>

namespace torture {
namespace {

using vxut::test::TraceViewer;

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
    explicit LinesToViewer(TraceViewer::Mailslot mailslot) : mailslot_(mailslot) {}

    void Prepare() override { viewer_.emplace(mailslot_); }
    void Check(Verdict& verdict) override {
        Lines::Check(verdict);
        const bool isThroughMailslot = viewer_->LinesOfMailslot() > kLines;
        verdict.Expect(verdict.AnyFailed() || isThroughMailslot == (mailslot_ == TraceViewer::Mailslot::kYes),
                       "%zu lines came through the mailslot", viewer_->LinesOfMailslot());
    }

protected:
    std::string Written() override {
        std::string text;
        for (const std::string& line : viewer_->Take()) text += line + "\n";
        return text;
    }

private:
    const TraceViewer::Mailslot mailslot_;
    std::optional<TraceViewer> viewer_;
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

const AddScenario<LinesToViewer> linesToViewer("debug-viewer", TraceViewer::Mailslot::kNo);
const AddScenario<LinesToViewer> linesToMailslot("debug-mailslot", TraceViewer::Mailslot::kYes);
const AddScenario<LinesToLog, true> linesToLog("debug-log");

} // namespace
} // namespace torture
