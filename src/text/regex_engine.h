// One compiled pattern of clsRegEx, and searches whose steps, memory and time are bounded.
#pragma once

#include "text/match_budget.h"
#include "text/string.h"

#include <cstddef>
#include <cstdint>
#include <memory>

struct pcre2_real_code_16;
struct pcre2_real_match_data_16;
struct pcre2_real_match_context_16;
struct pcre2_real_jit_stack_16;

namespace vxut {

// Owns the compiled pattern and the result of the last match. For one thread at a time.
class clsRegExEngine {
public:
    // Takes the options of clsRegEx. On failure the engine is empty, and offset and message describe the
    // first fault. Throws std::bad_alloc, which leaves the engine empty too.
    bool Compile(const String& pattern, uint32_t options, int& offset, String& message);

    bool IsCompiled() const noexcept { return code_ != nullptr; }
    // The number of capturing groups of the pattern, the whole match not counted.
    uint32_t GroupCount() const noexcept { return groupCount_; }

    static constexpr int kNoMatch = -1;
    // Precondition: the engine is compiled. Returns the number of the last group that took part, plus one;
    // kNoMatch; a smaller number for a search that was given up or failed; 0 if there are more groups than
    // results. The subject may hold zero units. Throws std::bad_alloc.
    int Match(const wchar_t* subject, size_t length, clsMatchBudget& budget);
    // Returns the reason why Match() returned less than kNoMatch.
    static String MessageOf(int result);

    // The offsets of a group of the last match; kNowhere if the group took no part.
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

    void PrepareMatching(Owner<pcre2_real_code_16> code, const String& pattern, uint32_t options);
    void MakeMachineCode();
    int MatchWithin(clsMatchBudget& budget, const wchar_t* subject, size_t length);
    size_t FirstStarts(size_t length) const;
    int MatchFrom(const wchar_t* subject, size_t length, size_t first, size_t last);
    int Run(const wchar_t* subject, size_t length, size_t first);

    Owner<pcre2_real_code_16> code_;
    Owner<pcre2_real_jit_stack_16> stack_;
    Owner<pcre2_real_match_context_16> context_;
    Owner<pcre2_real_match_data_16> data_;
    uint32_t groupCount_ = 0;
    uint32_t matchBits_ = 0;
    bool isStepwise_ = false; // a search may be continued at a later start with the same outcome
    bool triedMachineCode_ = false;
    bool hasMachineCode_ = false;
    size_t unitsSeen_ = 0; // by the interpreter
};

} // namespace vxut
