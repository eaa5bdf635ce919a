#include "faults.h"

#include "../support/failure_counter.h"

#include <cstdlib>
#include <iterator>

namespace torture {
namespace {

constexpr auto kDomains = static_cast<unsigned>(Domain::kCount);
constexpr const char* kNames[kDomains] = {"alloc", "file", "system", "stream"};

vxut::test::FailureCounter counters[kDomains];
unsigned failed = 0;
const char* firstFailed = "";

vxut::test::FailureCounter& CounterOf(Domain domain) { return counters[static_cast<unsigned>(domain)]; }

} // namespace

const char* NameOf(Domain domain) { return kNames[static_cast<unsigned>(domain)]; }

std::string Plan::Text() const {
    if (call == 0) return "none";
    return std::string(NameOf(domain)) + ":" + std::to_string(call) + (onwards ? "+" : "");
}

bool Plan::Parse(const std::string& text) {
    const size_t colon = text.find(':');
    for (unsigned i = 0; i < kDomains && colon != std::string::npos; ++i) {
        if (text.compare(0, colon, kNames[i]) != 0) continue;
        char* end = nullptr;
        const unsigned long number = std::strtoul(text.c_str() + colon + 1, &end, 10);
        const std::string rest = end;
        if (number == 0 || (!rest.empty() && rest != "+")) return false;
        *this = {static_cast<Domain>(i), static_cast<unsigned>(number), rest == "+"};
        return true;
    }
    return false;
}

void Arm(const Plan& plan) {
    failed = 0;
    firstFailed = "";
    for (auto& counter : counters) counter.Arm(vxut::test::FailureCounter::kNever, false);
    CounterOf(plan.domain).Arm(plan.call, plan.onwards);
}

void Disarm() {
    for (auto& counter : counters) counter.Disarm();
}

bool IsArmedHere() { return counters[0].IsArmedHere(); }

bool ShallFail(Domain domain, const char* function) {
    if (!CounterOf(domain).Strikes()) return false;
    if (++failed == 1) firstFailed = function;
    return true;
}

unsigned CallsOf(Domain domain) { return CounterOf(domain).Calls(); }

unsigned FailedCalls() { return failed; }

const char* FirstFailed() { return firstFailed; }

} // namespace torture
