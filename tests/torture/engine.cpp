#include "engine.h"

#include "ledger.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace torture {
namespace {

namespace fs = std::filesystem;

// A leak shows in every run; what grows once is a cache.
constexpr int kRepeatsOfLeak = 3;

// The current folder of one run: a new one, as a file that a run has left open can be neither deleted nor
// opened.
class RunFolder {
public:
    RunFolder() : path_(fs::current_path() / std::to_string(++made)) {
        fs::create_directory(path_);
        fs::current_path(path_);
    }
    RunFolder(const RunFolder&) = delete;
    RunFolder& operator=(const RunFolder&) = delete;
    ~RunFolder() {
        std::error_code ignored;
        fs::current_path(path_.parent_path(), ignored);
        fs::remove_all(path_, ignored);
    }

private:
    static inline int made = 0;
    fs::path path_;
};

class Engine {
public:
    Engine(const Options& options, Progress& progress)
        : options_(options), progress_(progress), make_(Scenarios().at(options.scenario).make) {}

    void RunAll() {
        if (options_.isCold) return RunPlan(options_.only, Reports::kYes);
        // The first run fills the caches, the second one counts the calls.
        RunPlan({}, Reports::kNo);
        RunWithLeakTest({});
        progress_.allocations = static_cast<LONG>(CallsOf(Domain::kMemory));
        const std::vector<Plan> plans = MakePlans();
        progress_.plans = static_cast<LONG>(plans.size());
        for (size_t i = options_.from; i < plans.size(); ++i) {
            progress_.plan = static_cast<LONG>(i);
            RunWithLeakTest(plans[i]);
        }
    }

private:
    enum class Reports { kNo, kYes };

    std::vector<Plan> MakePlans() const {
        if (options_.only.call > 0) return {options_.only};
        std::vector<Plan> plans;
        for (unsigned domain = 0; domain < static_cast<unsigned>(Domain::kCount); ++domain) {
            const unsigned calls = CallsOf(static_cast<Domain>(domain));
            const unsigned chosen = options_.most > 0 ? std::min(calls, options_.most) : calls;
            for (const bool onwards : {false, true}) {
                for (unsigned i = 0; i < chosen; ++i)
                    plans.push_back({static_cast<Domain>(domain), 1 + i * calls / chosen, onwards});
            }
        }
        return plans;
    }

    void Enter(const char* phase) { std::snprintf(progress_.phase, sizeof progress_.phase, "%s", phase); }

    void Complain(const Plan& plan, const std::string& text) {
        const LONG faults = InterlockedIncrement(&progress_.faults);
        if (faults > kMostPrintedFaults) return;
        std::printf("%s %s%s (%s): %s\n", options_.scenario.c_str(), plan.Text().c_str(),
                    options_.isCold ? " --cold" : "", progress_.firstFailed, text.c_str());
        std::fflush(stdout);
    }

    void RunPlan(const Plan& plan, Reports reports) {
        std::snprintf(progress_.planText, sizeof progress_.planText, "%s", plan.Text().c_str());
        progress_.firstFailed[0] = '\0';
        progress_.started = Now();
        RunAndCheck(plan, reports);
        progress_.started = 0;
        InterlockedIncrement(&progress_.runs);
    }

    void RunAndCheck(const Plan& plan, Reports reports) {
        const RunFolder folder;
        Verdict verdict(plan);
        {
            Enter("prepare");
            const std::unique_ptr<Scenario> scenario = make_();
            scenario->Prepare();
            Enter("run");
            RunOnThread(*scenario, plan);
            std::snprintf(progress_.firstFailed, sizeof progress_.firstFailed, "%s", FirstFailed());
            Enter("check");
            scenario->Check(verdict);
            Enter("close");
        }
        Enter("use of the library afterwards");
        const std::string broken = FirstBroken();
        verdict.Expect(broken.empty(), "afterwards %s does not work", broken.c_str());
        if (reports == Reports::kNo) return;
        for (const std::string& complaint : verdict.Complaints()) Complain(plan, complaint);
    }

    struct ThreadArguments {
        Scenario& scenario;
        const Plan& plan;
        bool hasReturned;
    };

    static DWORD WINAPI RunArmed(void* raw) {
        auto& arguments = *static_cast<ThreadArguments*>(raw);
        Arm(arguments.plan);
        arguments.scenario.Run();
        Disarm();
        arguments.hasReturned = true;
        return 0;
    }

    // A fresh thread for each run, whose first exception is that of the failing call. The locks that it might
    // leave behind would stop the main thread. A stack overflow can end the thread alone: the process must
    // not go on then.
    static void RunOnThread(Scenario& scenario, const Plan& plan) {
        ThreadArguments arguments{scenario, plan, false};
        const HANDLE thread = CreateThread(nullptr, 0, RunArmed, &arguments, 0, nullptr);
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
        if (!arguments.hasReturned) TerminateProcess(GetCurrentProcess(), STATUS_STACK_OVERFLOW);
    }

    void RunWithLeakTest(const Plan& plan) {
        for (int repeat = 0; repeat < kRepeatsOfLeak; ++repeat) {
            const size_t before = LiveCount();
            Mark();
            RunPlan(plan, repeat == 0 ? Reports::kYes : Reports::kNo);
            if (LiveCount() <= before) return;
        }
        Complain(plan, "leaks at each run: " + LiveSinceMark());
    }

    const Options& options_;
    Progress& progress_;
    const std::function<std::unique_ptr<Scenario>()>& make_;
};

} // namespace

void RunScenario(const Options& options, Progress& progress) { Engine(options, progress).RunAll(); }

} // namespace torture
