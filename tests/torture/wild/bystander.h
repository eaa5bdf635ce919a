// A thread that goes on using the library while another one makes mistakes.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>

namespace vxut::test {

// Each round calls every family of the library, on objects of its own, and looks at the results.
class Bystander {
public:
    explicit Bystander(std::wstring folder);
    // Ends the thread, which must not be in a call that never returns.
    ~Bystander();
    Bystander(const Bystander&) = delete;
    Bystander& operator=(const Bystander&) = delete;

    // Waits until a round was begun and ended. False if a call of it takes longer than kPatience, or has
    // failed: Step() then names it.
    bool AwaitRound() const;
    const char* Step() const { return step_; }
    uint64_t Rounds() const { return rounds_; }
    uint64_t LongestCall() const { return longest_; } // milliseconds

    static constexpr uint64_t kPatience = 5000; // milliseconds

private:
    void Run();
    void UseHeaps();
    void UseDebugChannel();
    void UseProfiles();
    void UseFiles();
    void UseClipboard();
    void UseTheRest();

    // Makes a call of a round; a result of false fails the run.
    template <class Call>
    void Do(const char* step, Call&& call);

    const std::wstring folder_;
    std::atomic<const char*> step_{"start"};
    std::atomic<uint64_t> stepStart_{GetTickCount64()};
    std::atomic<uint64_t> rounds_{0};
    std::atomic<uint64_t> longest_{0};
    std::atomic<bool> hasFailed_{false};
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

} // namespace vxut::test
