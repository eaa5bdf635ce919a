#include "faults.h"

#include <atomic>
#include <cstdlib>
#include <iterator>

namespace torture {
namespace {

constexpr auto kDomains = static_cast<unsigned>(Domain::kCount);
constexpr const char* kNames[kDomains] = {"alloc", "file", "system", "stream"};

std::atomic<DWORD> armedThread = 0;
Plan armed;
unsigned calls[kDomains];
unsigned failed = 0;
const char* firstFailed = "";

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
    armed = plan;
    for (unsigned& count : calls) count = 0;
    failed = 0;
    firstFailed = "";
    armedThread = GetCurrentThreadId();
}

void Disarm() { armedThread = 0; }

bool IsArmedHere() { return armedThread == GetCurrentThreadId(); }

bool ShallFail(Domain domain, const char* function) {
    if (!IsArmedHere()) return false;
    const unsigned call = ++calls[static_cast<unsigned>(domain)];
    if (domain != armed.domain || armed.call == 0) return false;
    if (armed.onwards ? call < armed.call : call != armed.call) return false;
    if (++failed == 1) firstFailed = function;
    return true;
}

unsigned CallsOf(Domain domain) { return calls[static_cast<unsigned>(domain)]; }

unsigned FailedCalls() { return failed; }

const char* FirstFailed() { return firstFailed; }

} // namespace torture
