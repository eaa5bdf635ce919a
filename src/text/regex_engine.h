// What clsRegEx runs on: one compiled pattern, and matching within bounds that no subject can stretch.
#pragma once

#include "text/string.h"

#include <cstddef>
#include <cstdint>
#include <memory>

struct pcre2_real_code_16;
struct pcre2_real_match_data_16;
struct pcre2_real_match_context_16;
struct pcre2_real_jit_stack_16;

namespace vxut {

// The time that all matching of one operation may take together. A pattern that is quick on honest text can
// take quadratic time on text made for it; when the time is spent, nothing matches any more.
class clsMatchTime {
public:
    static constexpr uint64_t kMostMilliseconds = 5000;

    explicit clsMatchTime(uint64_t milliseconds = kMostMilliseconds) noexcept : left_(milliseconds) {}

    bool IsSpent() const noexcept { return left_ == 0; }
    void Spend(uint64_t milliseconds) noexcept { left_ -= milliseconds < left_ ? milliseconds : left_; }

private:
    uint64_t left_;
};

class clsRegExEngine {
public:
    // Options are clsRegEx's. On failure the engine is empty, and offset and message tell the first fault.
    bool Compile(const String& pattern, uint32_t options, int& offset, String& message);

    bool IsCompiled() const noexcept { return code_ != nullptr; }
    // Capturing groups of the pattern, the whole match not counted.
    uint32_t GroupCount() const noexcept { return groupCount_; }

    // The number of the last group that took part, plus one; negative for no match and all errors; 0 if there
    // is no room for the result.
    int Match(const wchar_t* subject, size_t length, clsMatchTime& time);

    // A group of the last match; both offsets are kNowhere for one that did not take part.
    static constexpr size_t kNowhere = ~size_t{0};
    size_t Start(uint32_t group) const;
    size_t End(uint32_t group) const;

private:
    struct Deleter {
        void operator()(pcre2_real_code_16* code) const noexcept;
        void operator()(pcre2_real_match_data_16* data) const noexcept;
        void operator()(pcre2_real_match_context_16* context) const noexcept;
        void operator()(pcre2_real_jit_stack_16* stack) const noexcept;
    };
    template <class T>
    using Owner = std::unique_ptr<T, Deleter>;

    bool PrepareMatching(const String& pattern, uint32_t options);
    void MakeMachineCode();
    int MatchFrom(const wchar_t* subject, size_t length, size_t first, size_t last);
    int Run(const wchar_t* subject, size_t length, size_t first);

    Owner<pcre2_real_code_16> code_;
    Owner<pcre2_real_jit_stack_16> stack_;
    Owner<pcre2_real_match_context_16> context_;
    Owner<pcre2_real_match_data_16> data_;
    uint32_t groupCount_ = 0;
    uint32_t matchBits_ = 0;
    bool isStepwise_ = false; // whether a search may go on at a later start with the same outcome
    bool triedMachineCode_ = false;
};

} // namespace vxut
