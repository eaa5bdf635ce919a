// A scenario: calls of the library that are repeated while one call after the other to the system fails.
//
// Each run makes a new object in an empty current folder. Prepare(), Check() and the destructor run on the
// main thread and nothing fails in them; Run() runs on a thread of its own and has the failures. A scenario
// is added by one line:
//     const AddScenario<SaveKept> saveKept("save-kept");
#pragma once

#include "faults.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace torture {

// What a run has to answer for. Complaints end up in the report, each with the scenario and the plan.
class Verdict {
public:
    explicit Verdict(const Plan& plan) : plan_(plan) {}

    // Adds a complaint, in printf's format, unless it holds. Returns whether it does.
    bool Expect(bool holds, const char* format, ...);

    // Without a failed call every result has to be right.
    bool AnyFailed() const { return FailedCalls() > 0; }
    const Plan& ThePlan() const { return plan_; }

    const std::vector<std::string>& Complaints() const { return complaints_; }

private:
    Plan plan_;
    std::vector<std::string> complaints_;
};

class Scenario {
public:
    Scenario() = default;
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;
    virtual ~Scenario() = default;

    virtual void Prepare() {}
    virtual void Run() = 0;
    virtual void Check(Verdict& verdict) = 0;
};

struct ScenarioEntry {
    std::function<std::unique_ptr<Scenario>()> make;
    bool hasLog; // its processes write the debug channel to the file kLogFile of the folder above that of a
                 // run
};

inline constexpr wchar_t kLogFile[] = L"debug.log";

// All scenarios by name.
std::map<std::string, ScenarioEntry>& Scenarios();

template <class Type, bool hasLog = false>
struct AddScenario {
    // The arguments go to the constructor of each run's object.
    template <class... Arguments>
    explicit AddScenario(const char* name, Arguments... arguments) {
        Scenarios()[name] = {[arguments...] { return std::make_unique<Type>(arguments...); }, hasLog};
    }
};

// Calls that fail with nothing but a working library: one of each family. Returns the first that did not
// work, or an empty text.
std::string FirstBroken();

} // namespace torture
